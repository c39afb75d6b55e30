#ifndef CORVANE_ENGINE3D_STATE_H
#define CORVANE_ENGINE3D_STATE_H

#include "camera/orthographic_camera.h"
#include "camera/perspective_camera.h"
#include "core/geometry.h"
#include "corvane/Engine3D.h"
#include "corvane/Render3D.h"
#include "label_volume.h"
#include "palette_record.h"
#include "palette_tables.h"
#include "trevik/Cuda3D.h"

#include <memory>
#include <new>
#include <vector>

namespace corvane::engine3d
{
// Ends a renderer whose class has operations to replace but is never derived from: the qualified name says so.
struct EndGpu
{
    void operator()(Cuda3D* gpu) const
    {
        gpu->Cuda3D::~Cuda3D();
        ::operator delete(gpu);
    }
};

// Whether an upload to the GPU brings the blend images, too. Only volume renderings show them.
enum class BlendImages
{
    Sent,
    NotSent,
};

// Everything that an engine holds. The renderers keep shallow copies of labels and tables, so these are changed first
// and freed last.
struct EngineState
{
    // Behind a pointer because the library that supplies the class may be another one than this was built with: only
    // its constructor and destructor are called by name.
    std::unique_ptr<Cuda3D, EndGpu> gpu{new Cuda3D};
    bool gpuEnabled = false; // the host wants it
    bool gpuHasData = false; // it has taken the volume: from then on it is told every change
    Render3D render;

    camera::OrthographicCamera orthographic;
    camera::PerspectiveCamera perspective{2.0, 2.0}; // 90 degrees wide at a distance of 1 mm
    camera::Camera* active = &orthographic;          // the one that rotations turn
    KsRender renderType = KsRenderParallel;
    float viewAngle = 45.0f; // degrees

    KsVolumeData volume = {}; // the slice table tells whether there is a volume
    PaletteTables tables;
    PaletteRecord palette;
    LabelVolume labels;
    core::VolumeGeometry geometry = {};
    std::vector<KsVolumeData> attachedVolumes; // for a GPU that takes the volume later
    std::vector<KsBlendImage> blendImages;     // the same

    // Hand the current tables or labels to the renderers.
    void ForwardPalette();
    void ForwardLabels();

    // Whether the GPU draws the next image. A volume that it is to draw and does not hold is uploaded first, with what
    // goes with it; it may refuse.
    bool DrawsOnGpu(BlendImages blends);
};
} // namespace corvane::engine3d

struct Engine3D::State : corvane::engine3d::EngineState
{
};

#endif
