#include "plain_block_tree.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace corvane::tests
{
namespace
{
using core::BlockNode;
using core::LevelSizes;

// A node of a block, and where it starts in the block.
struct Cell
{
    int level, node, x, y, z;

    int Edge() const { return 16 >> level; }
    Cell Child(int ch) const
    {
        const int half = Edge() / 2;
        return {level + 1, 8 * node + ch, x + ch % 2 * half, y + ch / 2 % 2 * half, z + ch / 4 * half};
    }
};

void FindHighestNodes(const Cell& cell, int depth, LevelSizes& sizes)
{
    sizes[size_t(cell.level)] = std::max(sizes[size_t(cell.level)], cell.node + 1);
    if (cell.level == 3)
        return;
    for (int ch = 0; ch < 8; ++ch)
        if (cell.Child(ch).z < depth)
            FindHighestNodes(cell.Child(ch), depth, sizes);
}

// One block of a volume: what its cells hold, and what of it can be seen.
class BlockWalk
{
public:
    BlockWalk(const core::VolumeView& volume, int x, int y, int z) : volume_(volume), x_(x), y_(y), z_(z)
    {
        sizes_ = PlainLevelSizes(std::min(16, volume.nz - z));
        int count = 0;
        for (size_t level = 0; level < 4; ++level)
        {
            starts_[level] = count;
            count += sizes_[level];
        }
        block.nodes.assign(size_t(count), {-32768, 32767, 0});
        block.minX = volume.nx;
        block.minY = volume.ny;
        block.minZ = volume.nz;
        block.maxX = block.maxY = block.maxZ = 0;
    }

    void Measure(const Cell& cell)
    {
        BlockNode& node = NodeOf(cell);
        if (cell.level == 3)
        {
            // One voxel more than the cell on each axis, as far as the volume goes.
            for (int z = z_ + cell.z; z < std::min(z_ + cell.z + 3, volume_.nz); ++z)
                for (int y = y_ + cell.y; y < std::min(y_ + cell.y + 3, volume_.ny); ++y)
                    for (int x = x_ + cell.x; x < std::min(x_ + cell.x + 3, volume_.nx); ++x)
                    {
                        const int16_t value = volume_.slices[z][y * volume_.nx + x];
                        node.min = std::min(node.min, value);
                        node.max = std::max(node.max, value);
                    }
            return;
        }
        for (int ch = 0; ch < 8; ++ch)
        {
            if (!Exists(cell.Child(ch)))
                continue;
            Measure(cell.Child(ch));
            node.min = std::min(node.min, NodeOf(cell.Child(ch)).min);
            node.max = std::max(node.max, NodeOf(cell.Child(ch)).max);
        }
    }

    bool Classify(const Cell& cell, const core::LabelView& labels, const VolumePalette& palette)
    {
        BlockNode& node = NodeOf(cell);
        if (cell.level == 3)
        {
            if (!SeesValue(node, palette) || !SeesLabel(cell, labels, palette))
                return false;
            node.mask = 0x00FF;
            block.minX = std::min(block.minX, x_ + cell.x);
            block.minY = std::min(block.minY, y_ + cell.y);
            block.minZ = std::min(block.minZ, z_ + cell.z);
            block.maxX = std::max(block.maxX, x_ + cell.x + 2);
            block.maxY = std::max(block.maxY, y_ + cell.y + 2);
            block.maxZ = std::max(block.maxZ, z_ + cell.z + 2);
            return true;
        }
        for (int ch = 0; ch < 8; ++ch)
            if (Exists(cell.Child(ch)) && Classify(cell.Child(ch), labels, palette))
                node.mask = uint16_t(node.mask | (1 << ch));
        return node.mask != 0;
    }

    PlainBlock block;

private:
    bool Exists(const Cell& cell) const { return z_ + cell.z < volume_.nz; }
    BlockNode& NodeOf(const Cell& cell) { return block.nodes[size_t(starts_[cell.level] + cell.node)]; }

    static bool SeesValue(const BlockNode& node, const VolumePalette& palette)
    {
        for (int64_t value = node.min; value <= node.max; ++value)
        {
            const int64_t index = value - palette.sumStart;
            if (palette.opacitySums && index >= 0 && index < palette.sumLength && palette.opacitySums[index] > 0.01f)
                return true;
        }
        return false;
    }

    bool SeesLabel(const Cell& cell, const core::LabelView& labels, const VolumePalette& palette) const
    {
        for (int z = z_ + cell.z; z < std::min(z_ + cell.z + 3, volume_.nz); ++z)
            for (int y = y_ + cell.y; y < std::min(y_ + cell.y + 3, volume_.ny); ++y)
                for (int x = x_ + cell.x; x < std::min(x_ + cell.x + 3, volume_.nx); ++x)
                {
                    int label = 0;
                    if (labels.slices && x < labels.nx && y < labels.ny && z < labels.nz && labels.slices[z])
                        label = labels.slices[z][y * labels.nx + x];
                    if (label < 64 && palette.entries[label] && palette.entries[label]->visible)
                        return true;
                }
        return false;
    }

    core::VolumeView volume_;
    int x_, y_, z_;
    LevelSizes sizes_;
    int starts_[4];
};

std::vector<PlainBlock> WalkAll(const core::VolumeView& volume, const core::LabelView* labels,
                                const VolumePalette* palette)
{
    std::vector<PlainBlock> blocks;
    for (int z = 0; z < volume.nz; z += 16)
        for (int y = 0; y < volume.ny; y += 16)
            for (int x = 0; x < volume.nx; x += 16)
            {
                BlockWalk walk(volume, x, y, z);
                walk.Measure({0, 0, 0, 0, 0});
                if (palette)
                    walk.Classify({0, 0, 0, 0, 0}, *labels, *palette);
                blocks.push_back(std::move(walk.block));
            }
    return blocks;
}
} // namespace

LevelSizes PlainLevelSizes(int depth)
{
    LevelSizes sizes = {};
    FindHighestNodes({0, 0, 0, 0, 0}, depth == 0 ? 16 : depth, sizes);
    return sizes;
}

std::vector<PlainBlock> PlainRanges(const core::VolumeView& volume) { return WalkAll(volume, nullptr, nullptr); }

std::vector<PlainBlock> PlainVisibility(const core::VolumeView& volume, const core::LabelView& labels,
                                        const VolumePalette& palette)
{
    return WalkAll(volume, &labels, &palette);
}

void ExpectTree(const core::BlockTree& tree, const std::vector<PlainBlock>& blocks)
{
    ASSERT_EQ(tree.blocks.size(), blocks.size());
    for (size_t b = 0; b < blocks.size(); ++b)
    {
        const core::BlockRecord& record = tree.blocks[b];
        const PlainBlock& expected = blocks[b];
        size_t next = 0;
        for (size_t level = 0; level < 4; ++level)
        {
            for (int node = 0; node < (*record.sizes)[level]; ++node, ++next)
            {
                ASSERT_LT(next, expected.nodes.size());
                const BlockNode& is = record.levels[level][node];
                const BlockNode& shouldBe = expected.nodes[next];
                ASSERT_EQ(is.min, shouldBe.min) << "block " << b << ", level " << level << ", node " << node;
                ASSERT_EQ(is.max, shouldBe.max) << "block " << b << ", level " << level << ", node " << node;
                ASSERT_EQ(is.mask, shouldBe.mask) << "block " << b << ", level " << level << ", node " << node;
            }
        }
        ASSERT_EQ(next, expected.nodes.size());
        ASSERT_EQ(record.minX, expected.minX) << "block " << b;
        ASSERT_EQ(record.minY, expected.minY) << "block " << b;
        ASSERT_EQ(record.minZ, expected.minZ) << "block " << b;
        ASSERT_EQ(record.maxX, expected.maxX) << "block " << b;
        ASSERT_EQ(record.maxY, expected.maxY) << "block " << b;
        ASSERT_EQ(record.maxZ, expected.maxZ) << "block " << b;
    }
}
} // namespace corvane::tests
