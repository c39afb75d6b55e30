#ifndef CORVANE_RENDER3D_KERNELS_RAY_WALK_H
#define CORVANE_RENDER3D_KERNELS_RAY_WALK_H

#include "core/simd/pack.h"
#include "kernels.h"

// The walk of a pack of rays over the block tree, cell by cell.
namespace corvane::KERNEL_ISA
{
constexpr float kBoundsExit = 0.0001f;    // a smaller direction component does not bound a cell
constexpr float kFarthestCell = 10000.0f; // voxels
constexpr float kSkipNudge = 0.001f;      // how far behind an empty cell's face a ray goes on

// Rays in voxel-index space.
struct RayPack
{
    VectorPack start, direction, step, nudge;
    FloatPack stepLength, exitDistance;
};

// Where rays stand, and how often each may still jump. A ray crosses at most half as many cell faces along an axis as
// there are voxels, so one that jumps more often than it has voxels to cross is turning on the spot.
struct PlacePack
{
    VectorPack position;
    FloatPack distance;
    IntPack jumpsLeft;
};

// Cells around voxels, and whether rays are to be sampled in them or jump over them.
struct CellPack
{
    IntPack edge; // voxels
    IntPack sampled;
};

inline RayPack LoadRays(const render3d::RayBatch& rays, int first, core::Vec3f inverseRelativeSpacing)
{
    RayPack pack = {
        {LoadFloats(rays.startX + first), LoadFloats(rays.startY + first), LoadFloats(rays.startZ + first)},
        {LoadFloats(rays.directionX + first), LoadFloats(rays.directionY + first), LoadFloats(rays.directionZ + first)},
        {LoadFloats(rays.stepX + first), LoadFloats(rays.stepY + first), LoadFloats(rays.stepZ + first)},
        {},
        LoadFloats(rays.stepLength + first),
        LoadFloats(rays.exitDistance + first)};
    const auto nudge = [](FloatPack direction, float length)
    { return direction < 0.0f ? -length : FloatPack{} + length; };
    pack.nudge = {nudge(pack.direction.x, kSkipNudge * inverseRelativeSpacing.x),
                  nudge(pack.direction.y, kSkipNudge * inverseRelativeSpacing.y),
                  nudge(pack.direction.z, kSkipNudge * inverseRelativeSpacing.z)};
    return pack;
}

inline PlacePack EntryOf(const render3d::RayBatch& rays, int first, const core::VolumeView& volume)
{
    const int64_t jumps = int64_t(volume.nx) + volume.ny + volume.nz + 64;
    return {{LoadFloats(rays.entryX + first), LoadFloats(rays.entryY + first), LoadFloats(rays.entryZ + first)},
            LoadFloats(rays.entryDistance + first),
            IntPack{} + int32_t(jumps < INT32_MAX ? jumps : INT32_MAX)};
}

// One step of the rays, sampled or not.
inline void Advance(const RayPack& rays, PlacePack& place)
{
    place.position.x += rays.step.x;
    place.position.y += rays.step.y;
    place.position.z += rays.step.z;
}

// The distance along one axis at which rays leave the cells of given edges around voxels.
inline FloatPack ExitAlong(FloatPack start, FloatPack along, IntPack voxel, IntPack edge)
{
    const FloatPack low = ToFloat(voxel & -edge);
    const FloatPack face = along > kBoundsExit ? low + ToFloat(edge) : low;
    const IntPack bounds = (along > kBoundsExit) | (along < -kBoundsExit);
    return bounds ? (face - start) / along : FloatPack{} + kFarthestCell;
}

inline FloatPack Smaller(FloatPack a, FloatPack b) { return a < b ? a : b; }

// For how many steps rays may be sampled before asking again: until they leave the leaf, at least one.
inline IntPack StepsUntil(FloatPack exit, FloatPack distance, FloatPack stepLength)
{
    constexpr float kMostSteps = 1000000.0f; // more than any cell holds; the ray ends at its exit anyway
    const FloatPack quotient = (exit - distance) / stepLength;
    const FloatPack steps = quotient > 1.0f ? Smaller(quotient, FloatPack{} + kMostSteps) : FloatPack{} + 1.0f;
    const IntPack whole = ToInt(steps);
    return whole - (ToFloat(whole) < steps); // rounded up: a comparison gives -1
}

// Moves the asking rays, over cells that are of no interest, to where they stand in one that is to be sampled, and sets
// for how many steps. Takes the lanes that have nothing more to see out of `live`.
//   cellsAround  (asking, i, j, k) -> CellPack: the largest cells of no interest, or the leaf cells to be sampled
template <class CellsAround>
inline void FindRuns(const render3d::Scene& scene, const RayPack& rays, IntPack asking, PlacePack& place,
                     IntPack& steps, IntPack& live, const CellsAround& cellsAround)
{
    const float sizeX = float(scene.volume.nx), sizeY = float(scene.volume.ny), sizeZ = float(scene.volume.nz);
    for (;;)
    {
        const VectorPack p = place.position;
        const IntPack inside = (p.x >= 0.0f) & (p.x < sizeX) & (p.y >= 0.0f) & (p.y < sizeY) & (p.z >= 0.0f) &
                               (p.z < sizeZ) & (place.distance < rays.exitDistance);
        live &= ~asking | inside;
        asking &= inside;
        if (!Any(asking))
            return;

        const IntPack i = ToInt(p.x), j = ToInt(p.y), k = ToInt(p.z);
        const CellPack cells = cellsAround(asking, i, j, k);
        FloatPack exit = FloatPack{} + kFarthestCell;
        exit = Smaller(ExitAlong(rays.start.x, rays.direction.x, i, cells.edge), exit);
        exit = Smaller(ExitAlong(rays.start.y, rays.direction.y, j, cells.edge), exit);
        exit = Smaller(ExitAlong(rays.start.z, rays.direction.z, k, cells.edge), exit);
        const IntPack found = asking & cells.sampled;
        steps = found ? StepsUntil(exit, place.distance, rays.stepLength) : steps;
        // On a scale where floating-point numbers lie too far apart for a step to get ahead, the ray ends.
        live &= ~found | (place.distance + rays.stepLength > place.distance);
        asking &= ~found;

        // A jump that would not get ahead becomes a step.
        const IntPack jumps = exit + kSkipNudge > place.distance;
        const FloatPack next = jumps ? exit + kSkipNudge : place.distance + rays.stepLength;
        const IntPack moves = (next > place.distance) & (place.jumpsLeft > 0);
        live &= ~asking | moves;
        asking &= moves;
        place.jumpsLeft += asking; // a set lane is -1
        place.distance = asking ? next : place.distance;
        const auto moved = [&](FloatPack from, FloatPack start, FloatPack direction, FloatPack nudge, FloatPack step)
        { return asking ? (jumps ? start + exit * direction + nudge : from + step) : from; };
        place.position = {moved(p.x, rays.start.x, rays.direction.x, rays.nudge.x, rays.step.x),
                          moved(p.y, rays.start.y, rays.direction.y, rays.nudge.y, rays.step.y),
                          moved(p.z, rays.start.z, rays.direction.z, rays.nudge.z, rays.step.z)};
    }
}
} // namespace corvane::KERNEL_ISA

#endif
