#ifndef CORVANE_RENDER3D_KERNELS_VISIBLE_RUN_H
#define CORVANE_RENDER3D_KERNELS_VISIBLE_RUN_H

#include "ray_walk.h"

namespace corvane::KERNEL_ISA
{
// The largest cells around voxels that hold nothing visible, or the visible leaf cells around them; for the wanted
// lanes, one at a time because each follows its own pointers.
inline CellPack VisibleCells(const core::BlockView& blocks, IntPack wanted, IntPack i, IntPack j, IntPack k)
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
                cells.sampled[lane] = -1;
                break;
            }
            node = 8 * node + child;
            mask = levels[level][node].mask;
        }
    }
    return cells;
}

// FindRuns for what can be seen.
inline void FindVisibleRuns(const render3d::Scene& scene, const RayPack& rays, IntPack asking, PlacePack& place,
                            IntPack& steps, IntPack& live)
{
    FindRuns(scene, rays, asking, place, steps, live,
             [&](IntPack wanted, IntPack i, IntPack j, IntPack k)
             { return VisibleCells(scene.blocks, wanted, i, j, k); });
}
} // namespace corvane::KERNEL_ISA

#endif
