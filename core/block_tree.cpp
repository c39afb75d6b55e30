#include "block_tree.h"

#include "block_cells.h"
#include "fan_out.h"

#include <algorithm>
#include <limits>

namespace corvane::core
{
namespace
{
constexpr uint16_t kAllChildren = 0x00FF;
constexpr float kVisibleOpacity = 0.01f; // an opacity at or below it is not worth a sample
constexpr int kValueCount = 65536;
constexpr int kLowestValue = std::numeric_limits<int16_t>::min();

constexpr LevelSizes SizesOfDepth(int depth)
{
    LevelSizes sizes = {};
    for (int level = 0; level < kLevelCount; ++level)
    {
        const int edge = kBlockEdge >> level;
        const int lastInPlane = (1 << level) - 1;
        sizes[level] = NodeOf(lastInPlane, lastInPlane, (depth - 1) / edge) + 1;
    }
    return sizes;
}

// By depth, so that records of every tree can point to one place.
constexpr std::array<LevelSizes, kBlockEdge + 1> kSizesByDepth = []
{
    std::array<LevelSizes, kBlockEdge + 1> table = {};
    for (int depth = 1; depth <= kBlockEdge; ++depth)
        table[depth] = SizesOfDepth(depth);
    table[0] = table[kBlockEdge];
    return table;
}();

constexpr int64_t SumOf(const LevelSizes& sizes) { return int64_t(sizes[0]) + sizes[1] + sizes[2] + sizes[3]; }

// How many visible values lie below each stored value: whether a range holds one is then one subtraction.
class VisibleValues
{
public:
    explicit VisibleValues(const VolumePalette& palette) : below_(kValueCount + 1)
    {
        for (int value = 0; value < kValueCount; ++value)
        {
            const int64_t index = int64_t(value) + kLowestValue - palette.sumStart;
            const bool visible = palette.opacitySums && index >= 0 && index < palette.sumLength &&
                                 palette.opacitySums[index] > kVisibleOpacity;
            below_[value + 1] = below_[value] + int(visible);
        }
    }

    bool AnyIn(const BlockNode& node) const
    {
        return node.min <= node.max && below_[node.max - kLowestValue + 1] > below_[node.min - kLowestValue];
    }

private:
    std::vector<int32_t> below_;
};

// Whether labels can be seen, by label byte.
class VisibleLabels
{
public:
    VisibleLabels(const LabelView& labels, const VolumePalette& palette) : labels_(labels)
    {
        for (int label = 0; label < 64; ++label)
            visible_[label] = palette.entries[label] && palette.entries[label]->visible;
    }

    // Any visible label among the voxels that a leaf reaches.
    bool AnyIn(const BlockExtent& extent, int x, int y, int z) const
    {
        const int endX = std::min(x + kReach, extent.leftX);
        const int endY = std::min(y + kReach, extent.leftY);
        const int endZ = std::min(z + kReach, extent.leftZ);
        for (int k = extent.z + z; k < extent.z + endZ; ++k)
            for (int j = extent.y + y; j < extent.y + endY; ++j)
                for (int i = extent.x + x; i < extent.x + endX; ++i)
                    if (visible_[LabelAt(i, j, k)])
                        return true;
        return false;
    }

private:
    uint8_t LabelAt(int i, int j, int k) const
    {
        const bool inside = labels_.slices && i < labels_.nx && j < labels_.ny && k < labels_.nz && labels_.slices[k];
        return inside ? labels_.slices[k][size_t(j) * size_t(labels_.nx) + size_t(i)] : 0;
    }

    LabelView labels_;
    std::array<bool, 256> visible_ = {};
};

void ClassifyBlock(const VisibleValues& values, const VisibleLabels& labels, BlockTree& tree, int64_t block)
{
    const BlockExtent extent = ExtentOf(tree, block);
    BlockRecord& record = tree.blocks[size_t(block)];
    record.minX = tree.nx;
    record.minY = tree.ny;
    record.minZ = tree.nz;
    record.maxX = record.maxY = record.maxZ = 0;
    for (int level = 0; level < kLevelCount; ++level)
        for (int node = 0; node < (*record.sizes)[level]; ++node)
            record.levels[level][node].mask = 0;
    if (!values.AnyIn(record.levels[0][0]))
        return;

    for (int cellZ = 0; cellZ < kCellsPerAxis && 2 * cellZ < extent.leftZ; ++cellZ)
    {
        for (int cellY = 0; cellY < kCellsPerAxis && 2 * cellY < extent.leftY; ++cellY)
        {
            for (int cellX = 0; cellX < kCellsPerAxis && 2 * cellX < extent.leftX; ++cellX)
            {
                const int node = NodeOf(cellX, cellY, cellZ);
                BlockNode& leaf = record.levels[kLeafLevel][node];
                const int x = 2 * cellX, y = 2 * cellY, z = 2 * cellZ;
                if (!values.AnyIn(leaf) || !labels.AnyIn(extent, x, y, z))
                    continue;
                leaf.mask = kAllChildren;
                for (int level = kLeafLevel, child = node; level > 0; --level, child /= 8)
                    record.levels[level - 1][child / 8].mask |= uint16_t(1 << (child % 8));
                // The cell's edge, not limited to the volume.
                record.minX = std::min(record.minX, extent.x + x);
                record.minY = std::min(record.minY, extent.y + y);
                record.minZ = std::min(record.minZ, extent.z + z);
                record.maxX = std::max(record.maxX, extent.x + x + 2);
                record.maxY = std::max(record.maxY, extent.y + y + 2);
                record.maxZ = std::max(record.maxZ, extent.z + z + 2);
            }
        }
    }
}
// How many of the cells of 8, 4 and 2 voxels around a leaf cell are visible. Only visible cells are sure to be stored.
uint32_t DepthOf(const BlockRecord& record, int leaf)
{
    uint32_t depth = 0;
    for (int level = 1; level <= kLeafLevel; ++level, ++depth)
    {
        const int child = leaf >> (3 * (kLeafLevel - level));
        if (!((record.levels[level - 1][child / 8].mask >> (child % 8)) & 1))
            break;
    }
    return depth;
}

void ListVisibleDepths(const BlockRecord& record, int32_t* words)
{
    constexpr int kCellsPerWord = 16; // two rows along x
    for (int word = 0; word < kDepthWords; ++word)
    {
        uint32_t bits = 0;
        for (int cell = 0; cell < kCellsPerWord; ++cell)
        {
            const int number = word * kCellsPerWord + cell;
            bits |= DepthOf(record, NodeOf(number & 7, (number >> 3) & 7, number >> 6)) << (2 * cell);
        }
        words[word] = int32_t(bits);
    }
}
} // namespace

BlockTree::BlockTree(const BlockTree& other)
    : BlockLayout(other), nodes(other.nodes), levels(other.levels), rootMasks(other.rootMasks),
      visibleDepths(other.visibleDepths), blocks(other.blocks), lowest(other.lowest), highest(other.highest)
{
    // The copied pointers name the other tree's nodes and levels.
    for (BlockNode*& level : levels)
        level = nodes.data() + (level - other.nodes.data());
    for (BlockRecord& block : blocks)
        block.levels = levels.data() + (block.levels - other.levels.data());
}

bool GetLevelSizes(int depth, LevelSizes& sizes)
{
    if (depth < 0)
        return false;
    sizes = kSizesByDepth[std::min(depth, kBlockEdge)];
    return true;
}

bool BuildBlockTree(const KsVolumeData& volume, BlockTree& tree)
{
    if (volume.sizeX < 1 || volume.sizeY < 1 || volume.sizeZ < 1)
        return false;
    const int64_t blocksX = (int64_t(volume.sizeX) + kBlockEdge - 1) / kBlockEdge;
    const int64_t blocksY = (int64_t(volume.sizeY) + kBlockEdge - 1) / kBlockEdge;
    const int64_t fullLayers = volume.sizeZ / kBlockEdge;
    const int rest = volume.sizeZ % kBlockEdge;
    // Divided rather than multiplied: three large sizes overflow 64 bits.
    const int64_t layers = fullLayers + (rest > 0 ? 1 : 0);
    if (blocksX * blocksY > std::numeric_limits<int32_t>::max() / layers)
        return false;

    BlockTree built;
    built.nx = volume.sizeX;
    built.ny = volume.sizeY;
    built.nz = volume.sizeZ;
    built.blocksX = int32_t(blocksX);
    built.blocksY = int32_t(blocksY);
    built.blocksPerLayer = int32_t(blocksX * blocksY);
    built.fullBlockCount = int32_t(built.blocksPerLayer * fullLayers);
    built.partialBlockCount = rest > 0 ? built.blocksPerLayer : 0;
    built.blockCount = built.fullBlockCount + built.partialBlockCount;

    const LevelSizes& full = kSizesByDepth[kBlockEdge];
    const LevelSizes& partial = kSizesByDepth[size_t(rest)];
    built.nodes.assign(size_t(SumOf(full) * built.fullBlockCount + SumOf(partial) * built.partialBlockCount),
                       kEmptyNode);
    built.levels.resize(size_t(kLevelCount) * size_t(built.blockCount));
    built.rootMasks.resize(size_t(built.blockCount));
    built.visibleDepths.resize(size_t(kDepthWords) * size_t(built.blockCount));
    built.blocks.resize(size_t(built.blockCount));
    BlockNode* next = built.nodes.data();
    for (int32_t block = 0; block < built.blockCount; ++block)
    {
        BlockRecord& record = built.blocks[size_t(block)];
        BlockNode** levels = built.levels.data() + size_t(kLevelCount) * size_t(block);
        record.levels = levels;
        record.sizes = block < built.fullBlockCount ? &full : &partial;
        record.minX = built.nx;
        record.minY = built.ny;
        record.minZ = built.nz;
        record.maxX = record.maxY = record.maxZ = 0;
        for (int level = 0; level < kLevelCount; ++level)
        {
            levels[level] = next;
            next += (*record.sizes)[size_t(level)];
        }
    }
    tree = std::move(built);
    return true;
}

bool UpdateBlockVisibility(const LabelView& labels, const VolumePalette& palette, BlockTree& tree)
{
    if (tree.blocks.empty())
        return false;
    const VisibleValues visibleValues(palette);
    const VisibleLabels visibleLabels(labels, palette);
    FanOut(tree.blockCount,
           [&](int64_t first, int64_t end) noexcept
           {
               for (int64_t block = first; block < end; ++block)
               {
                   ClassifyBlock(visibleValues, visibleLabels, tree, block);
                   const BlockRecord& record = tree.blocks[size_t(block)];
                   tree.rootMasks[size_t(block)] = record.levels[0][0].mask;
                   if (record.levels[0][0].mask != 0)
                       ListVisibleDepths(record, tree.visibleDepths.data() + kDepthWords * block);
               }
           });
    return true;
}
} // namespace corvane::core
