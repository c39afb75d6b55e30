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

// Neighbouring pixels of one row of an image.
struct PixelRun
{
    int64_t row, column, endColumn;
};

// Calls run(PixelRun) for pieces of rows that make up the pixels [first, end), numbered along the rows: strip after
// strip of columns, each from the first row to the last, because the rays of neighbouring rows meet the same voxels
// while those are in the caches.
template <class Run>
void InStrips(int64_t columns, int64_t first, int64_t end, const Run& run)
{
    constexpr int64_t kStrip = 32; // pixels
    const int64_t firstRow = first / columns, endRow = (end + columns - 1) / columns;
    for (int64_t left = 0; left < columns; left += kStrip)
    {
        const int64_t right = left + kStrip < columns ? left + kStrip : columns;
        for (int64_t row = firstRow; row < endRow; ++row)
        {
            const int64_t from = first - row * columns, to = end - row * columns;
            run(PixelRun{row, from > left ? from : left, to < right ? to : right});
        }
    }
}

// Patient positions of the pixels from a column on.
inline VectorPack PixelsFrom(const render3d::ParallelRays& rays, int64_t row, int64_t column)
{
    IntPack lanes;
    for (int lane = 0; lane < kLanes; ++lane)
        lanes[lane] = lane;
    const FloatPack columns = ToFloat(lanes + int32_t(column)), rows = FloatPack{} + float(row);
    const auto at = [&](float position, float columnStep, float rowStep)
    { return position + columns * columnStep + rows * rowStep; };
    return {at(rays.position.x, rays.columnStep.x, rays.rowStep.x),
            at(rays.position.y, rays.columnStep.y, rays.rowStep.y),
            at(rays.position.z, rays.columnStep.z, rays.rowStep.z)};
}

// The rays of the first pixels of a run, as many as fit the pack.
inline ParallelPack RaysFrom(const render3d::Scene& scene, const render3d::ParallelRays& rays, const PixelRun& run)
{
    ParallelPack pack = {};
    for (int lane = 0; lane < kLanes && run.column + lane < run.endColumn; ++lane)
        pack.live[lane] = scene.anyHits ? -1 : 0;
    const ClippedPack clipped(scene, PixelsFrom(rays, run.row, run.column), InAllLanes(rays.patientDirection),
                              InAllLanes(rays.direction), pack.live);
    if (!Any(pack.live))
        return pack;
    pack.start = clipped.start;
    pack.entry = clipped.entry;
    const FloatPack farthest = FloatPack{} + rays.farthest;
    const FloatPack exit = Smaller(farthest, rays.standsStill ? FloatPack{} + 1.0f : clipped.exitDistance);
    pack.exitDistance = EndOfRay(exit, pack.entry.distance, FloatPack{} + rays.stepLength);
    pack.live &= pack.entry.distance < pack.exitDistance;
    return pack;
}

} // namespace corvane::KERNEL_ISA

#endif
