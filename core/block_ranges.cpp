#include "block_cells.h"
#include "fan_out.h"

#include <algorithm>

namespace corvane::core
{
namespace
{
constexpr int kBlocksPerRun = 16;                         // so that a run's ranges stay in the first-level cache
constexpr int kRunWidth = kBlocksPerRun * kBlockEdge + 2; // voxels: the leaves reach one, the loops below two

// Neighbouring blocks along x that are scanned together: memory is read in long pieces of rows, each once.
struct BlockRun
{
    const BlockRecord* blocks;
    int count;
    BlockExtent extent; // of the first block
};

// Lowest and highest values of columns of voxels, side by side along x.
struct RangeRow
{
    int16_t lowest[kRunWidth];
    int16_t highest[kRunWidth];
};

void TakeRangeOf(const int16_t* a, const int16_t* b, const int16_t* c, int width, RangeRow& range)
{
    for (int x = 0; x < width; ++x)
    {
        range.lowest[x] = std::min(std::min(a[x], b[x]), c[x]);
        range.highest[x] = std::max(std::max(a[x], b[x]), c[x]);
    }
}

void Widen(RangeRow& range, const RangeRow& by, int width)
{
    for (int x = 0; x < width; ++x)
    {
        range.lowest[x] = std::min(range.lowest[x], by.lowest[x]);
        range.highest[x] = std::max(range.highest[x], by.highest[x]);
    }
}

// The leaves of one row of cells, from the ranges over the rows and slices that they reach.
void StoreLeaves(const BlockRun& run, const RangeRow& range, int cellY, int cellZ)
{
    for (int block = 0; block < run.count; ++block)
    {
        const int16_t* low = range.lowest + size_t(block) * kBlockEdge;
        const int16_t* high = range.highest + size_t(block) * kBlockEdge;
        int16_t lowest[kBlockEdge], highest[kBlockEdge];
        for (int x = 0; x < kBlockEdge; ++x)
        {
            lowest[x] = std::min(std::min(low[x], low[x + 1]), low[x + 2]);
            highest[x] = std::max(std::max(high[x], high[x + 1]), high[x + 2]);
        }
        BlockNode* leaves = run.blocks[block].levels[kLeafLevel] + NodeOf(0, cellY, cellZ);
        for (int x = 0; x < kBlockEdge; x += 2) // cells are two voxels wide
            leaves[NodeOf(x / 2, 0, 0)] = {highest[x], lowest[x], 0};
    }
}

// The leaves of a run of blocks, slice by slice. A slice of an even number is the last one that the cells before it
// reach, and the first one of the cells that it lies in.
void ScanLeaves(const VolumeView& volume, const BlockRun& run)
{
    const BlockExtent& extent = run.extent;
    const int width = std::min(run.count * kBlockEdge + 1, extent.leftX);
    const int rows = std::min(kBlockEdge + 1, extent.leftY), slices = std::min(kBlockEdge + 1, extent.leftZ);
    const int cellsY = std::min(kCellsPerAxis, (rows + 1) / 2);
    RangeRow ranges[2][kCellsPerAxis]; // of the cells that are under way, and of those that begin
    for (RangeRow(&half)[kCellsPerAxis] : ranges)
    {
        for (RangeRow& range : half)
        {
            std::fill(range.lowest + width, range.lowest + kRunWidth, kNoMinimum);
            std::fill(range.highest + width, range.highest + kRunWidth, kNoMaximum);
        }
    }
    int current = 0;
    for (int slice = 0; slice < slices; ++slice)
    {
        const bool begins = slice % 2 == 0;
        const int16_t* corner =
            volume.slices[extent.z + slice] + size_t(extent.y) * size_t(volume.nx) + size_t(extent.x);
        const auto rowAt = [&](int row) { return corner + size_t(std::min(row, rows - 1)) * size_t(volume.nx); };
        for (int cellY = 0; cellY < cellsY; ++cellY)
        {
            RangeRow& underWay = ranges[current][cellY];
            RangeRow& range = ranges[1 - current][cellY];
            TakeRangeOf(rowAt(2 * cellY), rowAt(2 * cellY + 1), rowAt(2 * cellY + 2), width, range);
            if (slice > 0)
                Widen(underWay, range, width);
            if (slice > 0 && begins)
                StoreLeaves(run, underWay, cellY, slice / 2 - 1);
        }
        if (begins)
            current = 1 - current;
    }
    if (slices <= kBlockEdge)
        for (int cellY = 0; cellY < cellsY; ++cellY)
            StoreLeaves(run, ranges[current][cellY], cellY, (slices - 1) / 2);
}

void TakeRangesOfChildren(const BlockRecord& record)
{
    for (int level = kLeafLevel; level > 0; --level)
    {
        const int count = (*record.sizes)[level];
        for (int parent = 0; 8 * parent < count; ++parent)
        {
            const BlockNode* children = record.levels[level] + size_t(8) * parent;
            BlockNode node = kEmptyNode;
            for (int child = 0; child < std::min(8, count - 8 * parent); ++child)
            {
                node.max = std::max(node.max, children[child].max);
                node.min = std::min(node.min, children[child].min);
            }
            record.levels[level - 1][parent] = node;
        }
    }
}
} // namespace

bool ComputeBlockRanges(const VolumeView& volume, BlockTree& tree)
{
    if (tree.blocks.empty())
        return false;
    FanOut(tree.blockCount,
           [&](int64_t first, int64_t end) noexcept
           {
               while (first < end)
               {
                   const int64_t leftInRow = tree.blocksX - first % tree.blocksX;
                   const BlockRun run = {tree.blocks.data() + first,
                                         int(std::min<int64_t>({end - first, leftInRow, kBlocksPerRun})),
                                         ExtentOf(tree, first)};
                   ScanLeaves(volume, run);
                   for (int block = 0; block < run.count; ++block)
                   {
                       TakeRangesOfChildren(run.blocks[block]);
                       tree.rootMasks[size_t(first + block)] = 0;
                   }
                   first += run.count;
               }
           });
    tree.lowest = kNoMinimum;
    tree.highest = kNoMaximum;
    for (const BlockRecord& block : tree.blocks)
    {
        tree.lowest = std::min(tree.lowest, block.levels[0][0].min);
        tree.highest = std::max(tree.highest, block.levels[0][0].max);
    }
    return true;
}
} // namespace corvane::core
