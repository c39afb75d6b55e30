#ifndef CORVANE_CORE_BLOCK_CELLS_H
#define CORVANE_CORE_BLOCK_CELLS_H

#include "block_tree.h"

#include <limits>

// How leaf cells lie in a block and blocks in a volume; for the files that fill the tree.
namespace corvane::core
{
constexpr int kCellsPerAxis = kBlockEdge / 2;
constexpr int kReach = 3; // voxels per axis of a leaf's range: its own two and the next one
constexpr int16_t kNoMinimum = std::numeric_limits<int16_t>::max();
constexpr int16_t kNoMaximum = std::numeric_limits<int16_t>::min();
constexpr BlockNode kEmptyNode = {kNoMaximum, kNoMinimum, 0};

// Spreads the three bits of a cell number so that the bits of x, y and z interleave to a node number.
constexpr int Spread(int cell) { return (cell & 1) | ((cell & 2) << 2) | ((cell & 4) << 4); }
constexpr int NodeOf(int cellX, int cellY, int cellZ) { return Spread(cellX) + 2 * Spread(cellY) + 4 * Spread(cellZ); }

// First voxel of a block, and how many of the volume's voxels lie from there on.
struct BlockExtent
{
    int32_t x, y, z;
    int32_t leftX, leftY, leftZ;
};

inline BlockExtent ExtentOf(const BlockTree& tree, int64_t block)
{
    const int32_t x = int32_t(block % tree.blocksX) * kBlockEdge;
    const int32_t y = int32_t(block % tree.blocksPerLayer / tree.blocksX) * kBlockEdge;
    const int32_t z = int32_t(block / tree.blocksPerLayer) * kBlockEdge;
    return {x, y, z, tree.nx - x, tree.ny - y, tree.nz - z};
}
} // namespace corvane::core

#endif
