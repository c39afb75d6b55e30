#ifndef CORVANE_RENDER3D_KERNELS_PARALLEL_RAYS_H
#define CORVANE_RENDER3D_KERNELS_PARALLEL_RAYS_H

#include "clip_rays.h"

// The rays of neighbouring pixels of one image plane, a pack at a time, where they may be sampled.
namespace corvane::KERNEL_ISA
{
// Parallel rays in voxel-index space. The lanes without a ray, or whose ray misses, are not live.
struct ParallelPack
{
    VectorPack start;
    PlacePack entry;
    FloatPack exitDistance;
    IntPack live;
};

inline VectorPack InAllLanes(core::Vec3f v) { return {FloatPack{} + v.x, FloatPack{} + v.y, FloatPack{} + v.z}; }

// Patient positions of the pixels from a number on, numbered along the rows of the image.
inline VectorPack PixelsFrom(const render3d::ParallelRays& rays, int64_t pixel)
{
    FloatPack columns, rows;
    int64_t column = pixel % rays.columns, row = pixel / rays.columns;
    for (int lane = 0; lane < kLanes; ++lane)
    {
        columns[lane] = float(column);
        rows[lane] = float(row);
        if (++column == rays.columns)
        {
            column = 0;
            ++row;
        }
    }
    const auto at = [&](float position, float columnStep, float rowStep)
    { return position + columns * columnStep + rows * rowStep; };
    return {at(rays.position.x, rays.columnStep.x, rays.rowStep.x),
            at(rays.position.y, rays.columnStep.y, rays.rowStep.y),
            at(rays.position.z, rays.columnStep.z, rays.rowStep.z)};
}

// The rays of the pixels [first, end), as many as fit the pack.
inline ParallelPack RaysFrom(const render3d::Scene& scene, const render3d::ParallelRays& rays, int64_t first,
                             int64_t end)
{
    ParallelPack pack = {};
    for (int lane = 0; lane < kLanes && first + lane < end; ++lane)
        pack.live[lane] = scene.anyHits ? -1 : 0;
    const VectorPack patientStart = PixelsFrom(rays, first);
    pack.start = IndexOf(scene.frame, patientStart);
    const ClippedPack clipped(scene, patientStart, InAllLanes(rays.patientDirection), pack.start,
                              InAllLanes(rays.direction), pack.live);
    pack.entry = clipped.entry;
    const FloatPack farthest = FloatPack{} + rays.farthest;
    const FloatPack exit = Smaller(farthest, rays.standsStill ? FloatPack{} + 1.0f : clipped.exitDistance);
    pack.exitDistance = EndOfRay(exit, pack.entry.distance, FloatPack{} + rays.stepLength);
    pack.live &= pack.entry.distance < pack.exitDistance;
    return pack;
}
} // namespace corvane::KERNEL_ISA

#endif
