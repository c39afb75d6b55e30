#ifndef CORVANE_RENDER3D_KERNELS_NEAREST_VOXELS_H
#define CORVANE_RENDER3D_KERNELS_NEAREST_VOXELS_H

#include "core/simd/sampling.h"
#include "labels.h"
#include "ray_walk.h"

namespace corvane::KERNEL_ISA
{
// The wanted lanes whose voxels have a label that is shown.
inline IntPack ShownLanes(const render3d::Scene& scene, IntPack wanted, IntPack i, IntPack j, IntPack k)
{
    if (!scene.labels.slices)
        return scene.palette->shown[0] ? wanted : IntPack{};
    for (int lane = 0; lane < kLanes; ++lane)
        if (wanted[lane] && !scene.palette->shown[LabelAt(scene.labels, i[lane], j[lane], k[lane])])
            wanted[lane] = 0;
    return wanted;
}

// The nearest voxels of places, and which of the wanted lanes have one inside the volume that is shown.
struct NearestVoxels
{
    IntPack counted;
    IntPack values; // of the counted lanes
};

inline NearestVoxels SampleNearest(const render3d::Scene& scene, IntPack wanted, const VectorPack& p)
{
    const core::VolumeView& volume = scene.volume;
    const FloatPack x = p.x + 0.5f, y = p.y + 0.5f, z = p.z + 0.5f;
    const IntPack inside = wanted & (p.x >= 0.0f) & (x < float(volume.nx)) & (p.y >= 0.0f) & (y < float(volume.ny)) &
                           (p.z >= 0.0f) & (z < float(volume.nz));
    const IntPack i = ToInt(x), j = ToInt(y), k = ToInt(z);
    NearestVoxels voxels = {ShownLanes(scene, inside, i, j, k), {}};
    // Lanes outside read the first voxel.
    const IntPack slice = k & inside, offset = (j * volume.nx + i) & inside;
    for (int lane = 0; lane < kLanes; ++lane)
        voxels.values[lane] = volume.slices[slice[lane]][offset[lane]];
    return voxels;
}
} // namespace corvane::KERNEL_ISA

#endif
