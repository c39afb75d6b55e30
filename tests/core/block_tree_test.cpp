#include "core/block_tree.h"

#include "failing_allocator.h"
#include "plain_block_tree.h"
#include "random.h"
#include "tests/test_volume.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <utility>
#include <vector>

namespace corvane::core
{
namespace
{
constexpr int32_t kLargest = std::numeric_limits<int32_t>::max();

// A record of sizes only: building a tree reads no voxel.
KsVolumeData Sized(int32_t nx, int32_t ny, int32_t nz)
{
    return {nullptr, nx, ny, nz, {1, 1, 1}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
}

VolumeView ViewOf(const tests::TestVolume& volume)
{
    return {volume.data.slices, volume.data.sizeX, volume.data.sizeY, volume.data.sizeZ};
}

tests::TestVolume Noise(int nx, int ny, int nz, uint32_t seed)
{
    tests::Random random(seed);
    return tests::MakeVolume(nx, ny, nz, [&](int, int, int) { return random.Between(-32768, 32767); });
}

BlockTree RangesOf(const tests::TestVolume& volume)
{
    BlockTree tree;
    EXPECT_TRUE(BuildBlockTree(volume.data, tree));
    EXPECT_TRUE(ComputeBlockRanges(ViewOf(volume), tree));
    return tree;
}

void ExpectNode(const BlockTree& tree, int block, int level, int node, int min, int max)
{
    const BlockNode& is = tree.blocks[size_t(block)].levels[level][node];
    EXPECT_EQ(is.min, min) << "block " << block << ", level " << level << ", node " << node;
    EXPECT_EQ(is.max, max) << "block " << block << ", level " << level << ", node " << node;
}
} // namespace

template <class Element>
size_t BytesOf(const std::vector<Element>& elements)
{
    return elements.capacity() * sizeof(Element);
}

// What the library keeps for each voxel: no copy of it, and less than a byte for the tree.
TEST(BlockTree, Takes3714BytesForEachBlockOf4096Voxels)
{
    BlockTree tree;
    ASSERT_TRUE(BuildBlockTree(Sized(64, 48, 80), tree));
    const size_t blocks = 4 * 3 * 5, voxels = 64 * 48 * 80;
    EXPECT_EQ(size_t(tree.blockCount), blocks);
    const size_t bytes = BytesOf(tree.nodes) + BytesOf(tree.levels) + BytesOf(tree.rootMasks) +
                         BytesOf(tree.visibleDepths) + BytesOf(tree.blocks);
    EXPECT_LE(bytes, blocks * 3714);
    EXPECT_LT(double(bytes) / double(voxels), 0.91);
}

TEST(LevelSizes, AreThoseOfAFullBlockForNoDepthAndForSixteenOrMore)
{
    for (const int depth : {0, 16, 17, 100, kLargest})
    {
        LevelSizes sizes = {};
        ASSERT_TRUE(GetLevelSizes(depth, sizes));
        EXPECT_EQ(sizes, (LevelSizes{1, 8, 64, 512})) << depth;
    }
}

TEST(LevelSizes, EndAfterTheHighestNodeThatAPartialBlockUses)
{
    LevelSizes sizes = {};
    ASSERT_TRUE(GetLevelSizes(1, sizes));
    EXPECT_EQ(sizes, (LevelSizes{1, 4, 28, 220}));
    ASSERT_TRUE(GetLevelSizes(9, sizes));
    EXPECT_EQ(sizes, (LevelSizes{1, 8, 60, 476}));
    for (int depth = 1; depth <= 16; ++depth)
    {
        ASSERT_TRUE(GetLevelSizes(depth, sizes));
        EXPECT_EQ(sizes, tests::PlainLevelSizes(depth)) << depth;
    }
}

TEST(LevelSizes, AreRefusedForANegativeDepth)
{
    for (const int depth : {-1, -16, std::numeric_limits<int>::min()})
    {
        LevelSizes sizes = {9, 9, 9, 9};
        EXPECT_FALSE(GetLevelSizes(depth, sizes));
        EXPECT_EQ(sizes, (LevelSizes{9, 9, 9, 9}));
    }
}

TEST(BuildBlockTree, GivesOneFullBlockToSixteenVoxelsPerAxis)
{
    BlockTree tree;
    ASSERT_TRUE(BuildBlockTree(Sized(16, 16, 16), tree));
    EXPECT_EQ(tree.blockCount, 1);
    EXPECT_EQ(tree.fullBlockCount, 1);
    EXPECT_EQ(tree.partialBlockCount, 0);
    EXPECT_EQ(tree.nodes.size(), 585u);
    EXPECT_EQ(*tree.blocks[0].sizes, (LevelSizes{1, 8, 64, 512}));
}

TEST(BuildBlockTree, AddsALayerOfDepthOneForTheSeventeenthSlice)
{
    BlockTree tree;
    ASSERT_TRUE(BuildBlockTree(Sized(17, 17, 17), tree));
    EXPECT_EQ(tree.blocksX, 2);
    EXPECT_EQ(tree.blocksY, 2);
    EXPECT_EQ(tree.blocksPerLayer, 4);
    EXPECT_EQ(tree.fullBlockCount, 4);
    EXPECT_EQ(tree.partialBlockCount, 4);
    EXPECT_EQ(tree.blockCount, 8);
    EXPECT_EQ(tree.nodes.size(), size_t(4 * 585 + 4 * (1 + 4 + 28 + 220)));
    EXPECT_EQ(*tree.blocks[3].sizes, (LevelSizes{1, 8, 64, 512}));
    EXPECT_EQ(*tree.blocks[4].sizes, (LevelSizes{1, 4, 28, 220}));
}

TEST(BuildBlockTree, HasNoPartialLayerForAMultipleOfSixteenSlices)
{
    for (const int slices : {16, 32, 160})
    {
        BlockTree tree;
        ASSERT_TRUE(BuildBlockTree(Sized(5, 33, slices), tree));
        EXPECT_EQ(tree.partialBlockCount, 0);
        EXPECT_EQ(tree.fullBlockCount, 1 * 3 * slices / 16);
        EXPECT_EQ(tree.nodes.size(), size_t(585 * 3 * slices / 16));
    }
}

TEST(BuildBlockTree, HasOnlyAPartialLayerForFewerThanSixteenSlices)
{
    BlockTree tree;
    ASSERT_TRUE(BuildBlockTree(Sized(1, 1, 1), tree));
    EXPECT_EQ(tree.fullBlockCount, 0);
    EXPECT_EQ(tree.partialBlockCount, 1);
    EXPECT_EQ(tree.blockCount, 1);
    EXPECT_EQ(tree.nodes.size(), size_t(1 + 4 + 28 + 220));
}

TEST(BuildBlockTree, LaysBlocksAndLevelsOneAfterTheOther)
{
    tests::Random random(30);
    for (int n = 0; n < 200; ++n)
    {
        const int nx = random.Between(1, 70), ny = random.Between(1, 70), nz = random.Between(1, 70);
        BlockTree tree;
        ASSERT_TRUE(BuildBlockTree(Sized(nx, ny, nz), tree));
        const int blocksX = (nx + 15) / 16, blocksY = (ny + 15) / 16;
        const int full = blocksX * blocksY * (nz / 16), partial = nz % 16 > 0 ? blocksX * blocksY : 0;
        ASSERT_EQ(tree.nx, nx);
        ASSERT_EQ(tree.ny, ny);
        ASSERT_EQ(tree.nz, nz);
        ASSERT_EQ(tree.blocksX, blocksX);
        ASSERT_EQ(tree.blocksY, blocksY);
        ASSERT_EQ(tree.blocksPerLayer, blocksX * blocksY);
        ASSERT_EQ(tree.fullBlockCount, full);
        ASSERT_EQ(tree.partialBlockCount, partial);
        ASSERT_EQ(tree.blockCount, full + partial);
        ASSERT_EQ(tree.blocks.size(), size_t(full + partial));

        const BlockNode* next = tree.nodes.data();
        for (int b = 0; b < full + partial; ++b)
        {
            const BlockRecord& record = tree.blocks[size_t(b)];
            const LevelSizes sizes = tests::PlainLevelSizes(b < full ? 16 : nz % 16);
            ASSERT_EQ(*record.sizes, sizes);
            for (size_t level = 0; level < 4; ++level)
            {
                ASSERT_EQ(record.levels[level], next) << "block " << b << ", level " << level;
                next += sizes[level];
            }
        }
        ASSERT_EQ(next, tree.nodes.data() + tree.nodes.size());
    }
}

TEST(BuildBlockTree, StartsWithEmptyRangesAndNothingVisible)
{
    BlockTree tree;
    ASSERT_TRUE(BuildBlockTree(Sized(20, 18, 21), tree));
    for (const BlockNode& node : tree.nodes)
    {
        ASSERT_GT(node.min, node.max);
        ASSERT_EQ(node.mask, 0);
    }
    for (const BlockRecord& block : tree.blocks)
    {
        EXPECT_EQ(block.minX, 20);
        EXPECT_EQ(block.minY, 18);
        EXPECT_EQ(block.minZ, 21);
        EXPECT_EQ(block.maxX, 0);
        EXPECT_EQ(block.maxY, 0);
        EXPECT_EQ(block.maxZ, 0);
    }
}

TEST(BuildBlockTree, RefusesASizeBelowOneAndMoreBlocksThanItCanNumber)
{
    const tests::TestVolume volume = Noise(20, 5, 17, 31);
    BlockTree tree = RangesOf(volume);
    const std::vector<tests::PlainBlock> before = tests::PlainRanges(ViewOf(volume));
    // 2^31 blocks are the fewest that are too many: 2^27 along x, 16 along y; 2^9 * 2^9 * 2^13.
    for (const KsVolumeData& refused :
         {Sized(0, 5, 5), Sized(5, 0, 5), Sized(5, 5, 0), Sized(-1, 5, 5), Sized(5, -16, 5), Sized(5, 5, -kLargest - 1),
          Sized(kLargest, kLargest, kLargest), Sized(kLargest, kLargest, 1), Sized(1, kLargest, kLargest),
          Sized(kLargest, 1, kLargest), Sized(kLargest, 256, 16), Sized(kLargest, 241, 1), Sized(kLargest, 1, 256),
          Sized(8192, 8192, 131072), Sized(8192, 8192, 131072 - 15)})
    {
        EXPECT_FALSE(BuildBlockTree(refused, tree))
            << refused.sizeX << " x " << refused.sizeY << " x " << refused.sizeZ;
        EXPECT_EQ(tree.nx, 20);
        tests::ExpectTree(tree, before);
    }
}

TEST(BuildBlockTree, AsksForMemoryForAsManyBlocksAsItCanNumber)
{
    for (const KsVolumeData& huge : {Sized(kLargest, 240, 16), Sized(8192, 8192, 131072 - 16)})
    {
        BlockTree tree;
        tests::FailAllocationAfter(0);
        EXPECT_THROW(BuildBlockTree(huge, tree), std::bad_alloc);
        EXPECT_TRUE(tests::StopFailingAllocations());
    }
}

TEST(BuildBlockTree, LeavesTheTreeAsItWasWhenThereIsNoMemory)
{
    const tests::TestVolume volume = Noise(20, 5, 17, 32);
    const std::vector<tests::PlainBlock> before = tests::PlainRanges(ViewOf(volume));
    BlockTree tree = RangesOf(volume);
    for (int allowed = 0;; ++allowed)
    {
        ASSERT_LT(allowed, 100);
        bool built = false;
        tests::FailAllocationAfter(allowed);
        try
        {
            built = BuildBlockTree(Sized(40, 40, 40), tree);
        }
        catch (const std::bad_alloc&)
        {
        }
        const bool failed = tests::StopFailingAllocations();
        ASSERT_NE(built, failed);
        if (built)
            break;
        ASSERT_EQ(tree.nx, 20);
        ASSERT_NO_FATAL_FAILURE(tests::ExpectTree(tree, before));
    }
    EXPECT_EQ(tree.blockCount, 27);
}

TEST(BuildBlockTree, ReplacesTheTreeOfAnotherVolume)
{
    BlockTree tree = RangesOf(Noise(40, 40, 40, 33));
    const tests::TestVolume smaller = Noise(3, 20, 9, 34);
    ASSERT_TRUE(BuildBlockTree(smaller.data, tree));
    ASSERT_TRUE(ComputeBlockRanges(ViewOf(smaller), tree));
    tests::ExpectTree(tree, tests::PlainRanges(ViewOf(smaller)));
}

TEST(BlockTree, KeepsItsNodesWhenItIsMoved)
{
    const tests::TestVolume volume = Noise(20, 5, 17, 35);
    BlockTree first = RangesOf(volume);
    const BlockTree second = std::move(first);
    tests::ExpectTree(second, tests::PlainRanges(ViewOf(volume)));
}

TEST(ComputeBlockRanges, RefusesATreeWithoutBlocks)
{
    BlockTree tree;
    EXPECT_FALSE(ComputeBlockRanges({nullptr, 0, 0, 0}, tree));
}

TEST(ComputeBlockRanges, PutsAVoxelIntoEveryCellThatInterpolatesIt)
{
    // One bright voxel at (8, 3, 15) of 20 x 16 x 20. Along x it is the first of the leaf at 8 and the reach of the
    // one at 6; along y the second of the one at 2; along z the second of the one at 14.
    const tests::TestVolume volume =
        tests::MakeVolume(20, 16, 20, [](int i, int j, int k) { return i == 8 && j == 3 && k == 15 ? 500 : -7; });
    const BlockTree tree = RangesOf(volume);
    // Leaf (8, 2, 14): halves of 16: x high, y low, z high: 5; of 8: x low, y low, z high: 4; of 4: x low, y high,
    // z high: 6. Node numbers 5, 8 * 5 + 4 = 44, 8 * 44 + 6 = 358.
    ExpectNode(tree, 0, 0, 0, -7, 500);
    ExpectNode(tree, 0, 1, 5, -7, 500);
    ExpectNode(tree, 0, 2, 44, -7, 500);
    ExpectNode(tree, 0, 3, 358, -7, 500);
    // Leaf (6, 2, 14): x low, high, high; y low, low, high; z high, high, high: 4, 37, 303.
    ExpectNode(tree, 0, 1, 4, -7, 500);
    ExpectNode(tree, 0, 2, 37, -7, 500);
    ExpectNode(tree, 0, 3, 303, -7, 500);
    // No other leaf, and nothing in the neighbouring blocks.
    int leaves = 0;
    for (int node = 0; node < 512; ++node)
        leaves += tree.blocks[0].levels[3][node].max == 500;
    EXPECT_EQ(leaves, 2);
    for (int block = 1; block < tree.blockCount; ++block)
        ExpectNode(tree, block, 0, 0, -7, -7);
}

TEST(ComputeBlockRanges, ReachesOneVoxelIntoTheNextBlock)
{
    // The first voxel of the eighth block is the last one that the leaves at 14 of the seven others reach.
    const tests::TestVolume volume =
        tests::MakeVolume(32, 32, 32, [](int i, int j, int k) { return i == 16 && j == 16 && k == 16 ? -500 : 7; });
    const BlockTree tree = RangesOf(volume);
    for (int block = 0; block < 8; ++block)
        ExpectNode(tree, block, 0, 0, -500, 7);
    ExpectNode(tree, 0, 3, 511, -500, 7);
    ExpectNode(tree, 7, 3, 0, -500, 7);
    ExpectNode(tree, 0, 3, 510, 7, 7);
    ExpectNode(tree, 7, 3, 1, 7, 7);
}

TEST(ComputeBlockRanges, HoldsTheLimitsOfStoredValues)
{
    for (const int value : {-32768, 32767, 0})
    {
        const tests::TestVolume volume = tests::MakeVolume(18, 3, 5, [&](int, int, int) { return value; });
        const BlockTree tree = RangesOf(volume);
        ExpectNode(tree, 0, 0, 0, value, value);
        ExpectNode(tree, 1, 0, 0, value, value);
        tests::ExpectTree(tree, tests::PlainRanges(ViewOf(volume)));
    }
}

TEST(ComputeBlockRanges, TellsTheLowestAndTheHighestValueOfTheVolume)
{
    const tests::TestVolume volume =
        tests::MakeVolume(35, 20, 18,
                          [](int i, int j, int k) {
                              return i == 34 && j == 19 && k == 17 ? 900 : k == 0 && i == 16 ? -7 : 3;
                          });
    BlockTree tree = RangesOf(volume);
    EXPECT_EQ(tree.lowest, -7);
    EXPECT_EQ(tree.highest, 900);
    const BlockTree copy(tree);
    EXPECT_EQ(copy.lowest, -7);
    EXPECT_EQ(copy.highest, 900);
}

TEST(ComputeBlockRanges, LeavesCellsWithoutVoxelsEmpty)
{
    const tests::TestVolume volume = tests::MakeVolume(3, 1, 1, [](int i, int, int) { return 10 * i; });
    const BlockTree tree = RangesOf(volume);
    ExpectNode(tree, 0, 3, 0, 0, 20);         // voxels 0 to 2
    ExpectNode(tree, 0, 3, 1, 20, 20);        // voxel 2
    ExpectNode(tree, 0, 3, 2, 32767, -32768); // y from 2 on
    ExpectNode(tree, 0, 3, 8, 32767, -32768); // x from 4 on
    ExpectNode(tree, 0, 1, 1, 32767, -32768);
}

TEST(ComputeBlockRanges, AgreesWithAPlainVersionOnVolumesOfAnySize)
{
    std::vector<std::array<int, 3>> sizes = {{1, 1, 1},    {16, 16, 16}, {17, 17, 17}, {16, 16, 32}, {33, 5, 3},
                                             {2, 3, 1},    {15, 1, 33},  {40, 40, 40}, {1, 40, 1},   {1, 1, 40},
                                             {40, 16, 31}, {18, 18, 18}, {3, 33, 47},  {34, 2, 15}};
    tests::Random random(36);
    for (int n = 0; n < 60; ++n)
        sizes.push_back({random.Between(1, 40), random.Between(1, 40), random.Between(1, 40)});
    for (const auto& [nx, ny, nz] : sizes)
    {
        SCOPED_TRACE(testing::Message() << nx << " x " << ny << " x " << nz);
        const tests::TestVolume volume = Noise(nx, ny, nz, uint32_t(nx * 10000 + ny * 100 + nz));
        BlockTree tree = RangesOf(volume);
        const std::vector<tests::PlainBlock> expected = tests::PlainRanges(ViewOf(volume));
        ASSERT_NO_FATAL_FAILURE(tests::ExpectTree(tree, expected));
        // A second time, over the first result.
        ASSERT_TRUE(ComputeBlockRanges(ViewOf(volume), tree));
        ASSERT_NO_FATAL_FAILURE(tests::ExpectTree(tree, expected));
    }
}
} // namespace corvane::core
