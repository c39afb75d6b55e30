#ifndef CORVANE_RENDER3D_KERNELS_VISIBLE_RUN_H
#define CORVANE_RENDER3D_KERNELS_VISIBLE_RUN_H

#include "ray_walk.h"

namespace corvane::KERNEL_ISA
{
// The largest cells around voxels of the volume that hold nothing visible, or the visible leaf cells around them.
inline CellPack VisibleCells(const core::BlockView& blocks, IntPack i, IntPack j, IntPack k)
{
    const IntPack block = (k >> 4) * blocks.blocksPerLayer + (j >> 4) * blocks.blocksX + (i >> 4);
    const IntPack leaf = (k & 14) << 5 | (j & 14) << 2 | (i & 14) >> 1;
    const IntPack words = Gather(blocks.visibleDepths, block * core::kDepthWords + (leaf >> 4));
    const IntPack depth = (words >> ((leaf & 15) << 1)) & 3;
    const IntPack blockSeen = Gather(blocks.rootMasks, block) != 0;
    const IntPack sampled = blockSeen & (depth == 3);
    return {blockSeen ? (IntPack{} + 8) >> (depth + sampled) : IntPack{} + 16, sampled}; // a set lane is -1
}

// What the walk needs to know of rays to find where they leave cells: along each axis the side that a ray goes to, and
// start and direction. An axis that does not bound a cell has its start so far off that no exit comes sooner.
struct CellExits
{
    struct Axis
    {
        IntPack upwards;
        FloatPack start, direction;

        FloatPack Exit(IntPack voxel, IntPack edge) const
        {
            return (ToFloat((voxel & -edge) + (edge & upwards)) - start) / direction;
        }
    };
    Axis x, y, z;

    explicit CellExits(const RayPack& rays)
        : x(AxisOf(rays.start.x, rays.direction.x)), y(AxisOf(rays.start.y, rays.direction.y)),
          z(AxisOf(rays.start.z, rays.direction.z))
    {
    }

    static Axis AxisOf(FloatPack start, FloatPack along)
    {
        const IntPack upwards = along > kBoundsExit, bounds = upwards | (along < -kBoundsExit);
        return {upwards, bounds ? start : FloatPack{} - __builtin_inff(), bounds ? along : FloatPack{} + 1.0f};
    }

    // The distance at which rays leave the cells of given edges around voxels.
    FloatPack Nearest(IntPack i, IntPack j, IntPack k, IntPack edge) const
    {
        const FloatPack exit = Smaller(x.Exit(i, edge), FloatPack{} + kFarthestCell);
        return Smaller(z.Exit(k, edge), Smaller(y.Exit(j, edge), exit));
    }
};

// Lets every live ray look at the cell where it stands. Those in a visible leaf cell are returned, and for how many
// steps they are to be sampled; the others jump over a cell that holds nothing visible. Takes the lanes that have
// nothing more to see out of `live`.
inline IntPack VisitCells(const render3d::Scene& scene, const RayPack& rays, const CellExits& exits, PlacePack& place,
                          IntPack& live, IntPack& steps)
{
    const VectorPack p = place.position;
    live &= (p.x >= 0.0f) & (p.x < float(scene.volume.nx)) & (p.y >= 0.0f) & (p.y < float(scene.volume.ny)) &
            (p.z >= 0.0f) & (p.z < float(scene.volume.nz)) & (place.distance < rays.exitDistance);
    const IntPack i = live & ToInt(p.x), j = live & ToInt(p.y), k = live & ToInt(p.z);
    const CellPack cells = VisibleCells(scene.blocks, i, j, k);
    const FloatPack exit = exits.Nearest(i, j, k, cells.edge);
    const FloatPack stepped = place.distance + rays.stepLength;
    const IntPack advances = stepped > place.distance;
    const IntPack sampled = live & cells.sampled;
    if (Any(sampled))
        steps = StepsUntil(exit, place.distance, rays.stepLength);

    // A jump that would not get ahead becomes a step. On a scale where floating-point numbers lie too far apart for a
    // step to get ahead, the ray ends.
    const FloatPack behind = exit + kSkipNudge;
    const IntPack jumps = behind > place.distance;
    live &= cells.sampled ? advances : (jumps | advances) & (place.jumpsLeft > 0);
    const IntPack moves = live & ~cells.sampled;
    place.jumpsLeft += moves; // a set lane is -1
    place.distance = moves ? (jumps ? behind : stepped) : place.distance;
    const auto moved = [&](FloatPack from, FloatPack start, FloatPack direction, FloatPack nudge, FloatPack step)
    { return moves ? (jumps ? start + exit * direction + nudge : from + step) : from; };
    place.position = {moved(p.x, rays.start.x, rays.direction.x, rays.nudge.x, rays.step.x),
                      moved(p.y, rays.start.y, rays.direction.y, rays.nudge.y, rays.step.y),
                      moved(p.z, rays.start.z, rays.direction.z, rays.nudge.z, rays.step.z)};
    return live & sampled;
}
} // namespace corvane::KERNEL_ISA

#endif
