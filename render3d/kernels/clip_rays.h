#ifndef CORVANE_RENDER3D_KERNELS_CLIP_RAYS_H
#define CORVANE_RENDER3D_KERNELS_CLIP_RAYS_H

#include "ray_walk.h"

// A pack of rays carried from patient space into voxel-index space and clipped to what can be sampled. The same
// numbers, in the same order, as core::ClipRay computes for one ray.
namespace corvane::KERNEL_ISA
{
inline FloatPack DotOf(const VectorPack& a, core::Vec3f b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline FloatPack LengthOf(const VectorPack& a) { return Sqrt(a.x * a.x + a.y * a.y + a.z * a.z); }
inline VectorPack Minus(const VectorPack& a, const VectorPack& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }

inline VectorPack PointOn(const VectorPack& start, FloatPack distance, const VectorPack& direction)
{
    return {start.x + distance * direction.x, start.y + distance * direction.y, start.z + distance * direction.z};
}

inline VectorPack IndexStepOf(const render3d::PatientFrame& frame, const VectorPack& step)
{
    const FloatPack along = DotOf(step, frame.normal) / frame.sliceInFrame.z;
    return {(DotOf(step, frame.row) - frame.sliceInFrame.x * along) / frame.spacing.x,
            (DotOf(step, frame.column) - frame.sliceInFrame.y * along) / frame.spacing.y, along / frame.spacing.z};
}

inline VectorPack IndexOf(const render3d::PatientFrame& frame, const VectorPack& p)
{
    return IndexStepOf(frame, {p.x - frame.origin.x, p.y - frame.origin.y, p.z - frame.origin.z});
}

// Where rays enter and leave a box, as ray parameters. The exit leaves out axes that a ray is nearly parallel to.
struct BoxCrossing
{
    IntPack hit;
    FloatPack entry = {}, exit = FloatPack{} + kFarthestCell;

    BoxCrossing(const render3d::ClipBounds& box, const VectorPack& start, const VectorPack& direction)
        : hit(IntPack{} - 1)
    {
        FloatPack end = FloatPack{} + __builtin_inff();
        Clip(box.min.x, box.max.x, start.x, direction.x, end);
        Clip(box.min.y, box.max.y, start.y, direction.y, end);
        Clip(box.min.z, box.max.z, start.z, direction.z, end);
        hit &= (entry <= end) & (exit >= 0.0f);
    }

private:
    // Every comparison is written so that a number that is not finite fails it.
    void Clip(float low, float high, FloatPack start, FloatPack along, FloatPack& end)
    {
        // NOLINTNEXTLINE(misc-redundant-expression): infinity less itself is not 0
        const IntPack finite = along - along == 0.0f, parallel = along == 0.0f, upwards = along > 0.0f;
        if (!Any(~parallel)) // the usual case for the axes of a view along a third: saves the divisions
        {
            hit &= (start >= low) & (start <= high);
            return;
        }
        const IntPack steep = (along > kBoundsExit) | (along < -kBoundsExit);
        const FloatPack lows = FloatPack{} + low, highs = FloatPack{} + high;
        const FloatPack near = ((upwards ? lows : highs) - start) / along;
        const FloatPack far = ((upwards ? highs : lows) - start) / along;
        hit &= finite & ((parallel & (start >= low) & (start <= high)) | (~parallel & (near <= far)));
        entry = (~parallel & (entry < near)) ? near : entry;
        end = (~parallel & (far < end)) ? far : end;
        exit = (steep & (far < exit)) ? far : exit;
    }
};

inline VectorPack Select(IntPack mask, const VectorPack& a, const VectorPack& b)
{
    return {mask ? a.x : b.x, mask ? a.y : b.y, mask ? a.z : b.z};
}

// How far behind an empty cell's face rays go on, along each axis.
inline VectorPack NudgeOf(const VectorPack& direction, core::Vec3f inverseRelativeSpacing)
{
    const auto nudge = [](FloatPack along, float length) { return along < 0.0f ? -length : FloatPack{} + length; };
    return {nudge(direction.x, kSkipNudge * inverseRelativeSpacing.x),
            nudge(direction.y, kSkipNudge * inverseRelativeSpacing.y),
            nudge(direction.z, kSkipNudge * inverseRelativeSpacing.z)};
}

// A ray crosses at most half as many cell faces along an axis as there are voxels.
inline int32_t MostJumps(const core::VolumeView& volume)
{
    const int64_t jumps = int64_t(volume.nx) + volume.ny + volume.nz + 64;
    return jumps < INT32_MAX ? int32_t(jumps) : INT32_MAX;
}

// Where rays start in voxel-index space and are sampled first, and the distance at which they leave. Takes the lanes
// that miss out of `live`; nothing is computed for a pack of which all miss.
struct ClippedPack
{
    VectorPack start = {};
    PlacePack entry = {};
    FloatPack exitDistance = {};

    ClippedPack(const render3d::Scene& scene, const VectorPack& patientStart, const VectorPack& patientDirection,
                const VectorPack& direction, IntPack& live)
    {
        const BoxCrossing box(scene.box, patientStart, patientDirection);
        live &= box.hit;
        if (!Any(live))
            return;
        start = IndexOf(scene.frame, patientStart);
        const BoxCrossing bounds(scene.bounds, start, direction);
        live &= bounds.hit;
        if (!Any(live))
            return;
        const VectorPack boxEntry = IndexOf(scene.frame, PointOn(patientStart, box.entry, patientDirection));
        const VectorPack boxExit = IndexOf(scene.frame, PointOn(patientStart, box.exit, patientDirection));
        const FloatPack boxEntryDistance = LengthOf(Minus(boxEntry, start));
        const FloatPack boxExitDistance = LengthOf(Minus(boxExit, start));
        // Written so that a distance that is not a number is kept, and refused below.
        const IntPack boundsLast = boxEntryDistance <= bounds.entry, boundsFirst = boxExitDistance >= bounds.exit;
        entry.position = Select(boundsLast, PointOn(start, bounds.entry, direction), boxEntry);
        entry.distance = boundsLast ? bounds.entry : boxEntryDistance;
        entry.jumpsLeft = IntPack{} + MostJumps(scene.volume);
        exitDistance = boundsFirst ? bounds.exit : boxExitDistance;
        live &= entry.distance <= exitDistance;
    }
};
} // namespace corvane::KERNEL_ISA

#endif
