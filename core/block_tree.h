#ifndef CORVANE_CORE_BLOCK_TREE_H
#define CORVANE_CORE_BLOCK_TREE_H

#include "corvane/Records.h"
#include "views.h"

#include <array>
#include <cstdint>
#include <vector>

// Value ranges and visibility over blocks of 16 x 16 x 16 voxels, each with a four-level tree, so that rays can jump
// over what cannot be seen.
namespace corvane::core
{
constexpr int kBlockEdge = 16; // voxels
constexpr int kLevelCount = 4; // nodes of 16, 8, 4 and 2 voxels edge
constexpr int kLeafLevel = kLevelCount - 1;

// Nodes stored at each level of one block.
using LevelSizes = std::array<int32_t, kLevelCount>;

// One block. Child ch = 4 * dz + 2 * dy + dx of node p stands at 8 * p + ch of the next level, dx, dy and dz being 0
// or 1, the half of the parent's cell.
struct BlockRecord
{
    BlockNode* const* levels; // four pointers into the node pool
    const LevelSizes* sizes;
    // The voxels that can be seen, maxima exclusive; an empty box has minima at the volume's size and maxima at 0.
    int32_t minX, minY, minZ, maxX, maxY, maxZ;
};

// How a volume is cut into blocks.
struct BlockLayout
{
    int32_t nx = 0, ny = 0, nz = 0;   // voxels
    int32_t blocksX = 0, blocksY = 0; // the last ones may reach beyond the volume
    int32_t blocksPerLayer = 0;
    int32_t fullBlockCount = 0;    // blocks of 16 slices, first in the numbering
    int32_t partialBlockCount = 0; // blocks of the last slices where fewer than 16 are left
    int32_t blockCount = 0;        // numbered x fastest, then y, then z
};

// The tree of one volume. Copies are independent.
struct BlockTree : BlockLayout
{
    BlockTree() = default;
    BlockTree(const BlockTree& other);
    BlockTree(BlockTree&&) = default;
    BlockTree& operator=(const BlockTree&) = delete;
    BlockTree& operator=(BlockTree&&) = default;

    std::vector<BlockNode> nodes;
    std::vector<BlockNode*> levels;     // into the nodes, four per block
    std::vector<int32_t> rootMasks;     // copies of the masks of level 0
    std::vector<int32_t> visibleDepths; // what the masks say for each leaf cell, see BlockView
    std::vector<BlockRecord> blocks;
    int16_t lowest = 0, highest = 0; // of all stored values
};

// The level sizes of a block of a depth in slices. Storage is sparse but indexable without translation: each size is
// one more than the highest node number that a block of that depth uses. 0 and 16 or more are a full block.
//   returns  false, with nothing written, for a negative depth
bool GetLevelSizes(int depth, LevelSizes& sizes);

// Allocates the tree of a volume's sizes; ranges are empty and nothing is visible.
//   returns  false, with the tree left as it was, for a size below 1 or too many blocks to number
// Throws what the allocator throws, with the tree left as it was.
bool BuildBlockTree(const KsVolumeData& volume, BlockTree& tree);

// Fills the value ranges, fanned out by block, and clears the masks. False for a tree without blocks.
bool ComputeBlockRanges(const VolumeView& volume, BlockTree& tree);

// Brings masks and visible boxes up to date with labels and palette, fanned out by block. A leaf is visible when
// some voxel of its cell has a label below 64 with a visible table, and some value of its range has a summed opacity
// above 0.01. False for a tree without blocks.
// Throws what the allocator throws, with the tree left as it was.
bool UpdateBlockVisibility(const LabelView& labels, const VolumePalette& palette, BlockTree& tree);
} // namespace corvane::core

#endif
