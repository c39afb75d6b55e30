#ifndef CORVANE_RENDER3D_KERNELS_CAST_RAYS_H
#define CORVANE_RENDER3D_KERNELS_CAST_RAYS_H

#include "ray_walk.h"

// Rays of any direction, a pack at a time, carried into voxel-index space and clipped to what can be sampled. The same
// numbers, in the same order, as core::ClipRay computes for one ray.
namespace corvane::KERNEL_ISA
{
constexpr float kRenderingStep = 0.33f;   // of the smallest spacing
constexpr float kKeepsFinite = 0.000001f; // added to a length before dividing by it

// Rays where they may be sampled first. The lanes without a ray, or whose ray misses, are not live.
struct CastPack
{
    RayPack rays;
    PlacePack place;
    IntPack live;
};

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
        const IntPack finite = along - along == 0.0f, parallel = along == 0.0f, upwards = along > 0.0f;
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

// A ray that goes nowhere takes one sample where it stands.
inline void SetCourse(const render3d::Scene& scene, const VectorPack& patientDirection, RayPack& rays, IntPack& still)
{
    const VectorPack step = IndexStepOf(scene.frame, patientDirection);
    const FloatPack length = LengthOf(step) + kKeepsFinite;
    const VectorPack d = {step.x / length, step.y / length, step.z / length};
    const core::Vec3f relative = scene.relativeSpacing;
    still = (d.x == 0.0f) & (d.y == 0.0f) & (d.z == 0.0f);
    const FloatPack stepLength = kRenderingStep / LengthOf({d.x * relative.x, d.y * relative.y, d.z * relative.z});
    rays.direction = d;
    rays.step = Select(still, VectorPack{}, VectorPack{stepLength * d.x, stepLength * d.y, stepLength * d.z});
    rays.stepLength = still ? FloatPack{} + 1.0f : stepLength;
    const auto nudge = [](FloatPack direction, float nudged)
    { return direction < 0.0f ? -nudged : FloatPack{} + nudged; };
    rays.nudge = {nudge(d.x, kSkipNudge * scene.inverseRelativeSpacing.x),
                  nudge(d.y, kSkipNudge * scene.inverseRelativeSpacing.y),
                  nudge(d.z, kSkipNudge * scene.inverseRelativeSpacing.z)};
}

inline CastPack CastRays(const render3d::Scene& scene, const render3d::RayBatch& batch, int first)
{
    const VectorPack patientStart = {LoadFloats(batch.startX + first), LoadFloats(batch.startY + first),
                                     LoadFloats(batch.startZ + first)};
    const VectorPack patientDirection = {LoadFloats(batch.directionX + first), LoadFloats(batch.directionY + first),
                                         LoadFloats(batch.directionZ + first)};
    CastPack pack = {};
    for (int lane = 0; lane < kLanes; ++lane)
        pack.live[lane] = scene.anyHits && first + lane < batch.count ? -1 : 0;
    IntPack still;
    SetCourse(scene, patientDirection, pack.rays, still);
    const VectorPack start = pack.rays.start = IndexOf(scene.frame, patientStart);

    const BoxCrossing box(scene.box, patientStart, patientDirection);
    const BoxCrossing bounds(scene.bounds, start, pack.rays.direction);
    const VectorPack boxEntry = IndexOf(scene.frame, PointOn(patientStart, box.entry, patientDirection));
    const VectorPack boxExit = IndexOf(scene.frame, PointOn(patientStart, box.exit, patientDirection));
    const FloatPack boxEntryDistance = LengthOf(Minus(boxEntry, start));
    const FloatPack boxExitDistance = LengthOf(Minus(boxExit, start));
    // Written so that a distance that is not a number is kept, and refused below.
    const IntPack boundsLast = boxEntryDistance <= bounds.entry, boundsFirst = boxExitDistance >= bounds.exit;
    pack.place.position = Select(boundsLast, PointOn(start, bounds.entry, pack.rays.direction), boxEntry);
    pack.place.distance = boundsLast ? bounds.entry : boxEntryDistance;
    const int64_t jumps = int64_t(scene.volume.nx) + scene.volume.ny + scene.volume.nz + 64;
    pack.place.jumpsLeft = IntPack{} + int32_t(jumps < INT32_MAX ? jumps : INT32_MAX);
    const FloatPack exit = boundsFirst ? bounds.exit : boxExitDistance;
    pack.rays.exitDistance = still ? FloatPack{} + 1.0f : exit;
    pack.live &= box.hit & bounds.hit & (pack.place.distance <= exit) & (pack.place.distance < pack.rays.exitDistance);
    return pack;
}
} // namespace corvane::KERNEL_ISA

#endif
