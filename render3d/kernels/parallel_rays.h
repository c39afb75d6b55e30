#ifndef CORVANE_RENDER3D_KERNELS_PARALLEL_RAYS_H
#define CORVANE_RENDER3D_KERNELS_PARALLEL_RAYS_H

#include "ray_walk.h"

// The rays of neighbouring pixels of one image plane, a pack at a time, clipped to what can be sampled. The same
// numbers, in the same order, as core::ClipRay computes for one ray.
namespace corvane::KERNEL_ISA
{
// Parallel rays in voxel-index space, where they may be sampled. The lanes without a ray are not live.
struct ParallelPack
{
    VectorPack start;
    PlacePack entry;
    FloatPack exitDistance;
    IntPack live;
};

// How far behind an empty cell's face rays go on, along each axis.
inline core::Vec3f NudgeOf(const render3d::ParallelRays& rays, core::Vec3f inverseRelativeSpacing)
{
    const auto nudge = [](float direction, float length) { return direction < 0.0f ? -length : length; };
    return {nudge(rays.direction.x, kSkipNudge * inverseRelativeSpacing.x),
            nudge(rays.direction.y, kSkipNudge * inverseRelativeSpacing.y),
            nudge(rays.direction.z, kSkipNudge * inverseRelativeSpacing.z)};
}

inline VectorPack PointAt(const VectorPack& start, FloatPack distance, core::Vec3f direction)
{
    return {start.x + distance * direction.x, start.y + distance * direction.y, start.z + distance * direction.z};
}

inline FloatPack Dot(const VectorPack& a, core::Vec3f b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

inline FloatPack DistanceBetween(const VectorPack& a, const VectorPack& b)
{
    const FloatPack x = a.x - b.x, y = a.y - b.y, z = a.z - b.z;
    return Sqrt(x * x + y * y + z * z);
}

inline VectorPack PatientToIndex(const render3d::PatientFrame& frame, const VectorPack& patient)
{
    const VectorPack step = {patient.x - frame.origin.x, patient.y - frame.origin.y, patient.z - frame.origin.z};
    const FloatPack along = Dot(step, frame.normal) / frame.sliceInFrame.z;
    return {(Dot(step, frame.row) - frame.sliceInFrame.x * along) / frame.spacing.x,
            (Dot(step, frame.column) - frame.sliceInFrame.y * along) / frame.spacing.y, along / frame.spacing.z};
}

// Where rays of one direction are inside a box, as ray parameters.
struct Stretch
{
    FloatPack entry = FloatPack{};
    FloatPack exit = FloatPack{} + __builtin_inff();
    FloatPack exitOfSteepAxes = FloatPack{} + kFarthestCell; // without the axes that the rays are parallel to
};

// Every comparison is written so that a number that is not finite fails it.
inline void ClipAxis(float low, float high, FloatPack start, float along, Stretch& inside, IntPack& hit)
{
    if (!(along - along == 0.0f))
    {
        hit = IntPack{};
        return;
    }
    if (along == 0.0f)
    {
        hit &= (start >= low) & (start <= high);
        return;
    }
    const FloatPack nearParameter = ((along > 0.0f ? low : high) - start) / along;
    const FloatPack farParameter = ((along > 0.0f ? high : low) - start) / along;
    hit &= nearParameter <= farParameter;
    inside.entry = inside.entry < nearParameter ? nearParameter : inside.entry;
    inside.exit = Smaller(farParameter, inside.exit);
    if (along > kBoundsExit || along < -kBoundsExit)
        inside.exitOfSteepAxes = Smaller(farParameter, inside.exitOfSteepAxes);
}

inline Stretch ClipBox(const render3d::ClipBounds& box, const VectorPack& start, core::Vec3f direction, IntPack& hit)
{
    Stretch inside;
    ClipAxis(box.min.x, box.max.x, start.x, direction.x, inside, hit);
    ClipAxis(box.min.y, box.max.y, start.y, direction.y, inside, hit);
    ClipAxis(box.min.z, box.max.z, start.z, direction.z, inside, hit);
    hit &= (inside.entry <= inside.exit) & (inside.exitOfSteepAxes >= 0.0f);
    return inside;
}

// A ray crosses at most half as many cell faces along an axis as there are voxels.
inline int32_t MostJumps(const core::VolumeView& volume)
{
    const int64_t jumps = int64_t(volume.nx) + volume.ny + volume.nz + 64;
    return jumps < INT32_MAX ? int32_t(jumps) : INT32_MAX;
}

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
        pack.live[lane] = rays.anyHits ? -1 : 0;
    const VectorPack patientStart = PixelsFrom(rays, first);
    const Stretch box = ClipBox(rays.box, patientStart, rays.patientDirection, pack.live);
    if (!Any(pack.live))
        return pack;
    pack.start = PatientToIndex(rays.frame, patientStart);
    const Stretch bounds = ClipBox(rays.bounds, pack.start, rays.direction, pack.live);
    if (!Any(pack.live))
        return pack;

    const VectorPack boxEntry = PatientToIndex(rays.frame, PointAt(patientStart, box.entry, rays.patientDirection));
    const VectorPack boxExit =
        PatientToIndex(rays.frame, PointAt(patientStart, box.exitOfSteepAxes, rays.patientDirection));
    const VectorPack boundsEntry = PointAt(pack.start, bounds.entry, rays.direction);
    const FloatPack entryDistance = DistanceBetween(boxEntry, pack.start);
    const FloatPack exitDistance = DistanceBetween(boxExit, pack.start);
    const IntPack boundsFirst = entryDistance <= bounds.entry;
    pack.entry.position = {boundsFirst ? boundsEntry.x : boxEntry.x, boundsFirst ? boundsEntry.y : boxEntry.y,
                           boundsFirst ? boundsEntry.z : boxEntry.z};
    pack.entry.distance = boundsFirst ? bounds.entry : entryDistance;
    pack.entry.jumpsLeft = IntPack{} + MostJumps(scene.volume);
    const FloatPack exit = exitDistance >= bounds.exitOfSteepAxes ? bounds.exitOfSteepAxes : exitDistance;
    pack.live &= pack.entry.distance <= exit;
    const FloatPack farthest = FloatPack{} + rays.farthest;
    pack.exitDistance = rays.standsStill ? farthest : Smaller(farthest, exit);
    pack.live &= pack.entry.distance < pack.exitDistance;
    return pack;
}
} // namespace corvane::KERNEL_ISA

#endif
