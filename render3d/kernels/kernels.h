#ifndef CORVANE_RENDER3D_KERNELS_KERNELS_H
#define CORVANE_RENDER3D_KERNELS_KERNELS_H

#include "core/views.h"

#include <cstdint>
#include <span>

// The kernels of the 3D renderer, compiled once per instruction set and reached through one table.
namespace corvane::render3d
{
// How a volume lies in patient space; see core/geometry.h.
struct PatientFrame
{
    core::Vec3f origin, spacing;
    core::Vec3f row, column, normal;
    core::Vec3f sliceInFrame; // slice direction along row, column and normal
};

// A box with faces perpendicular to the axes.
struct ClipBounds
{
    core::Vec3f min, max;
};

// What every ray of a frame sees. All borrowed for the frame.
struct Scene
{
    core::VolumeView volume; // every slice valid
    core::LabelView labels;
    core::BlockView blocks; // brought up to date with labels and palette
    const core::PaletteView* palette;
    core::Directions directions;        // of the volume
    core::Vec3f relativeSpacing;        // spacing / smallest spacing
    core::Vec3f inverseRelativeSpacing; // smallest spacing / spacing
    PatientFrame frame;
    ClipBounds box;    // patient: what is to be seen
    ClipBounds bounds; // where samples have all their neighbours
    bool anyHits;      // false: the volume has no extent, every ray misses
};

// A flat image where it crosses a ray.
struct BlendLayer
{
    float depth; // distance from the ray's start, voxels
    float opacity;
    uint8_t red, green, blue;
};

constexpr int kMostBlendLayers = 4;
constexpr int kRaysPerBatch = 32; // a whole number of pairs of packs of every instruction set

// A few rays in patient space, one array per number so that kernels load neighbours side by side.
struct RayBatch
{
    int count;
    float startX[kRaysPerBatch], startY[kRaysPerBatch], startZ[kRaysPerBatch];
    float directionX[kRaysPerBatch], directionY[kRaysPerBatch], directionZ[kRaysPerBatch]; // unit vectors, or 0
    BlendLayer layers[kRaysPerBatch][kMostBlendLayers];                                    // by depth
    int layerCount[kRaysPerBatch];
};

// The rays of the pixels of an image, all perpendicular to it. Directions and lengths are in voxel-index space where
// nothing else is said.
struct ParallelRays
{
    core::Vec3f position, columnStep, rowStep; // patient: the first pixel, and on to the next column and row
    int64_t columns;                           // pixels of a row
    core::Vec3f patientDirection;
    core::Vec3f direction, step; // a unit vector, or 0 for rays that stand still
    float stepLength;
    float farthest; // from the start, where rays end at the latest
    bool standsStill;
    int32_t lowest, highest; // stored values of the volume
};

struct KernelTable
{
    const char* instructionSet; // the name of the copy's namespace

    // Composites the visible samples, in steps of a third of the smallest spacing, and the blend layers of each ray
    // front to back into a pixel: bits 0 to 7 coverage, 8 to 15 red, 16 to 23 green, 24 to 31 blue. Never reads outside
    // the volume, and ends for every input.
    void (*integrateRays)(const Scene& scene, const RayBatch& rays, uint32_t* pixels);

    // Highest, lowest and mean stored value of the samples, whose label is shown, on the rays of the pixels from
    // `first` to before `end`; -1024 for a ray without any, and at the least for the highest and the mean. Writes
    // values[first] to values[end - 1]. The same promises as above.
    using Projection = void (*)(const Scene& scene, const ParallelRays& rays, int64_t first, int64_t end,
                                int16_t* values);
    Projection projectMaximum, projectMinimum, projectAverage;
};

// The copies that this machine runs, the fastest last.
std::span<const KernelTable* const> AvailableKernels();

// The fastest of them.
const KernelTable& Kernels();
} // namespace corvane::render3d

#endif
