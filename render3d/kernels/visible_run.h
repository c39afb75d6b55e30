#ifndef CORVANE_RENDER3D_KERNELS_VISIBLE_RUN_H
#define CORVANE_RENDER3D_KERNELS_VISIBLE_RUN_H

#include "core/simd/pack.h"
#include "kernels.h"

// The walk of a pack of rays over the block tree.
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

// The largest cells around voxels that hold nothing visible, or the visible leaf cells around them.
struct CellPack
{
    IntPack edge; // voxels
    IntPack visible;
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

// The cells of the wanted lanes; one lane at a time because each follows its own pointers.
inline CellPack CellsAround(const core::BlockView& blocks, IntPack wanted, IntPack i, IntPack j, IntPack k)
{
    const IntPack block = (k >> 4) * blocks.blocksPerLayer + (j >> 4) * blocks.blocksX + (i >> 4);
    CellPack cells = {IntPack{} + 16, {}};
    for (int lane = 0; lane < kLanes; ++lane)
    {
        if (!wanted[lane])
            continue;
        int mask = blocks.rootMasks[block[lane]];
        if (mask == 0)
            continue;
        const core::BlockNode* const* levels = blocks.levels + 4 * int64_t(block[lane]);
        int node = 0;
        for (int level = 1; level <= 3; ++level)
        {
            const int bit = 4 - level;
            const int child = ((k[lane] >> bit) & 1) * 4 + ((j[lane] >> bit) & 1) * 2 + ((i[lane] >> bit) & 1);
            cells.edge[lane] = 16 >> level;
            if (!((mask >> child) & 1))
                break;
            if (level == 3)
            {
                cells.visible[lane] = -1;
                break;
            }
            node = 8 * node + child;
            mask = levels[level][node].mask;
        }
    }
    return cells;
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

// Moves the asking rays over empty cells to where they stand in visible ones, and sets for how many steps they may be
// sampled. Takes the lanes that have nothing more to see out of `live`.
inline void FindRuns(const render3d::Scene& scene, const RayPack& rays, IntPack asking, PlacePack& place,
                     IntPack& steps, IntPack& live)
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
        const CellPack cells = CellsAround(scene.blocks, asking, i, j, k);
        FloatPack exit = FloatPack{} + kFarthestCell;
        exit = Smaller(ExitAlong(rays.start.x, rays.direction.x, i, cells.edge), exit);
        exit = Smaller(ExitAlong(rays.start.y, rays.direction.y, j, cells.edge), exit);
        exit = Smaller(ExitAlong(rays.start.z, rays.direction.z, k, cells.edge), exit);
        const IntPack found = asking & cells.visible;
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
