#ifndef CORVANE_RENDER3D_KERNELS_CAST_RAYS_H
#define CORVANE_RENDER3D_KERNELS_CAST_RAYS_H

#include "clip_rays.h"

// Rays of any direction, a pack at a time, where they may be sampled.
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
    rays.nudge = NudgeOf(d, scene.inverseRelativeSpacing);
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

    const ClippedPack clipped(scene, patientStart, patientDirection, pack.rays.direction, pack.live);
    pack.rays.start = clipped.start;
    pack.place = clipped.entry;
    const FloatPack end = EndOfRay(clipped.exitDistance, pack.place.distance, pack.rays.stepLength);
    pack.rays.exitDistance = still ? FloatPack{} + 1.0f : end;
    pack.live &= pack.place.distance < pack.rays.exitDistance;
    return pack;
}
} // namespace corvane::KERNEL_ISA

#endif
