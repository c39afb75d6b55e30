#ifndef CORVANE_TESTS_CORE_PLAIN_BLOCK_TREE_H
#define CORVANE_TESTS_CORE_PLAIN_BLOCK_TREE_H

#include "core/block_tree.h"

#include <cstdint>
#include <vector>

// Block trees as they are defined, in the plainest way, to compare with.
namespace corvane::tests
{
// One more than the highest node number that a block of a depth has at each level, found by walking it.
core::LevelSizes PlainLevelSizes(int depth);

// What a tree must hold: for each block its nodes, level after level, and its visible box.
struct PlainBlock
{
    std::vector<core::BlockNode> nodes;
    int32_t minX, minY, minZ, maxX, maxY, maxZ;
};

// Ranges only: masks are 0, boxes empty.
std::vector<PlainBlock> PlainRanges(const core::VolumeView& volume);

// Ranges, masks and boxes.
std::vector<PlainBlock> PlainVisibility(const core::VolumeView& volume, const core::LabelView& labels,
                                        const VolumePalette& palette);

// Compares every node and box; reports the first difference as a test failure.
void ExpectTree(const core::BlockTree& tree, const std::vector<PlainBlock>& blocks);
} // namespace corvane::tests

#endif
