#include "core/block_tree.h"

#include "failing_allocator.h"
#include "plain_block_tree.h"
#include "random.h"
#include "tests/test_volume.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>
#include <vector>

namespace corvane::core
{
namespace
{
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

// A palette of sums, with a table for each of some labels.
class TestPalette
{
public:
    TestPalette(int32_t start, std::vector<float> sums) : sums_(std::move(sums))
    {
        palette.sumStart = start;
        palette.sumLength = int32_t(sums_.size());
        palette.opacitySums = sums_.data();
        WithLabel(0);
    }
    TestPalette(const TestPalette&) = delete;

    TestPalette& WithLabel(int label, bool visible = true)
    {
        entries_[label].visible = visible;
        palette.entries[label] = &entries_[label];
        return *this;
    }
    TestPalette& WithoutLabel(int label)
    {
        palette.entries[label] = nullptr;
        return *this;
    }

    VolumePalette palette = {};

private:
    std::vector<float> sums_;
    VolumePaletteEntry entries_[64] = {};
};

VolumeView ViewOf(const tests::TestVolume& volume)
{
    return {volume.data.slices, volume.data.sizeX, volume.data.sizeY, volume.data.sizeZ};
}

LabelView ViewOf(const tests::TestLabels& labels)
{
    return {labels.mark.slices, int32_t(labels.mark.sizeX), int32_t(labels.mark.sizeY), int32_t(labels.mark.sizeZ)};
}

constexpr LabelView kNoLabels = {nullptr, 0, 0, 0};

BlockTree TreeOf(const tests::TestVolume& volume)
{
    BlockTree tree;
    EXPECT_TRUE(BuildBlockTree(volume.data, tree));
    EXPECT_TRUE(ComputeBlockRanges(ViewOf(volume), tree));
    return tree;
}

int VisibleLeaves(const BlockTree& tree)
{
    int count = 0;
    for (const BlockRecord& block : tree.blocks)
        for (int node = 0; node < (*block.sizes)[3]; ++node)
            count += block.levels[3][node].mask != 0;
    return count;
}

void ExpectBox(const BlockRecord& block, const std::array<int, 6>& box)
{
    EXPECT_EQ((std::array<int, 6>{block.minX, block.minY, block.minZ, block.maxX, block.maxY, block.maxZ}), box);
}

void ExpectNothingVisible(const BlockTree& tree)
{
    for (const BlockNode& node : tree.nodes)
        ASSERT_EQ(node.mask, 0);
    for (const BlockRecord& block : tree.blocks)
        ExpectBox(block, {tree.nx, tree.ny, tree.nz, 0, 0, 0});
}

// Whether a volume of one value shows anything under a palette.
bool Shows(int value, const TestPalette& palette)
{
    const tests::TestVolume volume = tests::MakeVolume(2, 2, 2, [&](int, int, int) { return value; });
    BlockTree tree = TreeOf(volume);
    EXPECT_TRUE(UpdateBlockVisibility(kNoLabels, palette.palette, tree));
    tests::ExpectTree(tree, tests::PlainVisibility(ViewOf(volume), kNoLabels, palette.palette));
    return VisibleLeaves(tree) > 0;
}

// Whether a volume of one label shows anything under a palette in which every value is opaque.
bool ShowsLabel(int label, TestPalette& palette)
{
    const tests::TestVolume volume = tests::MakeVolume(2, 2, 2, [](int, int, int) { return 5; });
    const tests::TestLabels labels = tests::MakeLabels(2, 2, 2, [&](int, int, int) { return label; });
    BlockTree tree = TreeOf(volume);
    EXPECT_TRUE(UpdateBlockVisibility(ViewOf(labels), palette.palette, tree));
    tests::ExpectTree(tree, tests::PlainVisibility(ViewOf(volume), ViewOf(labels), palette.palette));
    return VisibleLeaves(tree) > 0;
}
} // namespace

TEST(BlockVisibility, IsRefusedForATreeWithoutBlocks)
{
    BlockTree tree;
    EXPECT_FALSE(UpdateBlockVisibility(kNoLabels, TestPalette(0, {1}).palette, tree));
}

TEST(BlockVisibility, MarksTheWayDownToEveryLeafThatAVoxelTouches)
{
    // The last voxel of 17 x 17 x 17 is alone in the eighth block and within reach of one leaf of each other block.
    const tests::TestVolume volume =
        tests::MakeVolume(17, 17, 17, [](int i, int j, int k) { return i == 16 && j == 16 && k == 16 ? 100 : 0; });
    BlockTree tree = TreeOf(volume);
    const TestPalette palette(100, {1});
    ASSERT_TRUE(UpdateBlockVisibility(kNoLabels, palette.palette, tree));
    EXPECT_EQ(VisibleLeaves(tree), 8);

    const BlockRecord& first = tree.blocks[0]; // leaf (14, 14, 14), the last child of the last child of the last child
    EXPECT_EQ(first.levels[0][0].mask, 0x80);
    EXPECT_EQ(first.levels[1][7].mask, 0x80);
    EXPECT_EQ(first.levels[2][63].mask, 0x80);
    EXPECT_EQ(first.levels[3][511].mask, 0xFF);
    EXPECT_EQ(first.levels[3][510].mask, 0);
    ExpectBox(first, {14, 14, 14, 16, 16, 16});

    const BlockRecord& last = tree.blocks[7]; // leaf (16, 16, 16); its box ends at the cell's edge
    EXPECT_EQ(last.levels[0][0].mask, 0x01);
    EXPECT_EQ(last.levels[1][0].mask, 0x01);
    EXPECT_EQ(last.levels[2][0].mask, 0x01);
    EXPECT_EQ(last.levels[3][0].mask, 0xFF);
    ExpectBox(last, {16, 16, 16, 18, 18, 18});
    ExpectBox(tree.blocks[1], {16, 14, 14, 18, 16, 16});
}

TEST(BlockVisibility, ShowsAWholeVolumeWithFullMasks)
{
    const tests::TestVolume volume = tests::MakeVolume(16, 16, 16, [](int, int, int) { return 3; });
    BlockTree tree = TreeOf(volume);
    ASSERT_TRUE(UpdateBlockVisibility(kNoLabels, TestPalette(3, {0.5f}).palette, tree));
    for (const BlockNode& node : tree.nodes)
        EXPECT_EQ(node.mask, 0xFF);
    ExpectBox(tree.blocks[0], {0, 0, 0, 16, 16, 16});
}

// What kernels read side by side says the same as the masks: per leaf cell, x fastest, the cells around it that are
// visible, counted from 8 voxels down to 2.
TEST(BlockVisibility, ListsForEveryLeafHowManyCellsAroundItAreVisible)
{
    tests::Random random(31);
    for (int round = 0; round < 20; ++round)
    {
        const int rarity = random.Between(2, 4000);
        const tests::TestVolume volume =
            tests::MakeVolume(random.Between(1, 40), random.Between(1, 40), random.Between(1, 40),
                              [&](int, int, int) { return random.Below(rarity) == 0 ? 100 : 0; });
        BlockTree tree = TreeOf(volume);
        ASSERT_TRUE(UpdateBlockVisibility(kNoLabels, TestPalette(100, {1}).palette, tree));
        // A second time with another palette: nothing of the first is left.
        ASSERT_TRUE(UpdateBlockVisibility(kNoLabels, TestPalette(round % 2 ? 100 : 0, {1}).palette, tree));
        for (int32_t block = 0; block < tree.blockCount; ++block)
        {
            const BlockRecord& record = tree.blocks[size_t(block)];
            ASSERT_EQ(tree.rootMasks[size_t(block)], record.levels[0][0].mask);
            for (int cell = 0; cell < 512 && record.levels[0][0].mask != 0; ++cell)
            {
                const int x = cell % 8, y = cell / 8 % 8, z = cell / 64;
                int depth = 0;
                for (int node = 0; depth < 3; ++depth)
                {
                    const int half = 2 - depth; // which bit of a cell number tells the half
                    const int child = 4 * (z >> half & 1) + 2 * (y >> half & 1) + (x >> half & 1);
                    if (!(record.levels[depth][node].mask >> child & 1))
                        break;
                    node = 8 * node + child;
                }
                const uint32_t word = uint32_t(tree.visibleDepths[size_t(32 * block + cell / 16)]);
                ASSERT_EQ(int(word >> (2 * (cell % 16)) & 3), depth) << "block " << block << ", cell " << cell;
            }
        }
    }
}

TEST(BlockVisibility, NeedsAnOpacityAboveAHundredth)
{
    EXPECT_FALSE(Shows(5, TestPalette(5, {0.0f})));
    EXPECT_FALSE(Shows(5, TestPalette(5, {0.01f})));
    EXPECT_TRUE(Shows(5, TestPalette(5, {std::nextafter(0.01f, 1.0f)})));
    EXPECT_TRUE(Shows(5, TestPalette(5, {64.0f})));
    EXPECT_FALSE(Shows(5, TestPalette(5, {-1.0f})));
    EXPECT_FALSE(Shows(5, TestPalette(5, {kNaN})));
}

TEST(BlockVisibility, SeesASingleValueOnlyWhereItStands)
{
    for (const int value : {-32768, -32767, -1, 0, 1, 32766, 32767})
    {
        const TestPalette palette(value, {1});
        EXPECT_TRUE(Shows(value, palette));
        EXPECT_FALSE(Shows(value > -32768 ? value - 1 : value + 1, palette));
        EXPECT_FALSE(Shows(value < 32767 ? value + 1 : value - 1, palette));
    }
}

TEST(BlockVisibility, LooksAtEveryValueBetweenTheMinimumAndTheMaximum)
{
    const tests::TestVolume volume = tests::MakeVolume(2, 1, 1, [](int i, int, int) { return i ? 32767 : -32768; });
    for (const int value : {-32768, -5, 32767})
    {
        BlockTree tree = TreeOf(volume);
        ASSERT_TRUE(UpdateBlockVisibility(kNoLabels, TestPalette(value, {1}).palette, tree));
        // The whole range lies in the leaf of both voxels; there is no other.
        EXPECT_EQ(VisibleLeaves(tree), 1) << value;
    }
}

TEST(BlockVisibility, ReadsSumsOutsideTheStoredValuesNever)
{
    EXPECT_TRUE(Shows(-32768, TestPalette(-40000, std::vector<float>(100000, 1.0f))));
    EXPECT_TRUE(Shows(32767, TestPalette(-40000, std::vector<float>(100000, 1.0f))));
    EXPECT_FALSE(Shows(32767, TestPalette(40000, std::vector<float>(10, 1.0f))));
    EXPECT_FALSE(Shows(-32768, TestPalette(-40000, std::vector<float>(7232, 1.0f)))); // up to -32769
    EXPECT_TRUE(Shows(-32768, TestPalette(-40000, std::vector<float>(7233, 1.0f))));
    const int32_t limits[2] = {std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()};
    for (const int32_t limit : limits)
        for (const int value : {-32768, 0, 32767})
            EXPECT_FALSE(Shows(value, TestPalette(limit, std::vector<float>(10, 1.0f))));
}

TEST(BlockVisibility, ShowsNothingWithoutSums)
{
    TestPalette withoutTable(-100, std::vector<float>(200, 1.0f));
    withoutTable.palette.opacitySums = nullptr;
    EXPECT_FALSE(Shows(5, withoutTable));
    TestPalette withoutLength(-100, std::vector<float>(200, 1.0f));
    withoutLength.palette.sumLength = 0;
    EXPECT_FALSE(Shows(5, withoutLength));
    TestPalette negativeLength(-100, std::vector<float>(200, 1.0f));
    negativeLength.palette.sumLength = -200;
    EXPECT_FALSE(Shows(5, negativeLength));
}

TEST(BlockVisibility, ShowsNothingWithoutATableOfAVisibleLabel)
{
    TestPalette palette(0, std::vector<float>(10, 1.0f));
    EXPECT_TRUE(Shows(5, palette));
    palette.WithLabel(0, false);
    EXPECT_FALSE(Shows(5, palette));
    palette.WithoutLabel(0);
    EXPECT_FALSE(Shows(5, palette));
}

TEST(BlockVisibility, AsksEachLabelForItsOwnTable)
{
    TestPalette palette(0, std::vector<float>(10, 1.0f));
    palette.WithoutLabel(0).WithLabel(3).WithLabel(4, false).WithLabel(63);
    for (int label = 0; label < 256; ++label)
        EXPECT_EQ(ShowsLabel(label, palette), label == 3 || label == 63) << label;
}

TEST(BlockVisibility, CountsNoLabelFromSixtyFourOnUnderAnyPalette)
{
    TestPalette palette(0, std::vector<float>(10, 1.0f));
    for (int label = 0; label < 64; ++label)
        palette.WithLabel(label);
    for (int label = 0; label < 256; ++label)
        EXPECT_EQ(ShowsLabel(label, palette), label < 64) << label;
}

TEST(BlockVisibility, SeesALabelOneVoxelBeyondTheLeaf)
{
    const tests::TestVolume volume = tests::MakeVolume(32, 32, 32, [](int, int, int) { return 5; });
    const tests::TestLabels labels =
        tests::MakeLabels(32, 32, 32, [](int i, int j, int k) { return i == 16 && j == 16 && k == 16 ? 9 : 64; });
    TestPalette palette(0, std::vector<float>(10, 1.0f));
    palette.WithLabel(9);
    BlockTree tree = TreeOf(volume);
    ASSERT_TRUE(UpdateBlockVisibility(ViewOf(labels), palette.palette, tree));
    EXPECT_EQ(VisibleLeaves(tree), 8);
    ExpectBox(tree.blocks[0], {14, 14, 14, 16, 16, 16});
    ExpectBox(tree.blocks[7], {16, 16, 16, 18, 18, 18});
}

TEST(BlockVisibility, TakesVoxelsWithoutALabelForLabelZero)
{
    const tests::TestVolume volume = tests::MakeVolume(20, 20, 20, [](int, int, int) { return 5; });
    TestPalette palette(0, std::vector<float>(10, 1.0f));
    // All labels that are there are cut away, so what is seen are the voxels that have none.
    tests::TestLabels smaller = tests::MakeLabels(12, 15, 9, [](int, int, int) { return 64; });
    BlockTree tree = TreeOf(volume);
    ASSERT_TRUE(UpdateBlockVisibility(ViewOf(smaller), palette.palette, tree));
    tests::ExpectTree(tree, tests::PlainVisibility(ViewOf(volume), ViewOf(smaller), palette.palette));
    EXPECT_EQ(tree.blocks[0].levels[3][0].mask, 0);

    tests::TestLabels gap = tests::MakeLabels(20, 20, 20, [](int, int, int) { return 64; });
    gap.slices[7] = nullptr;
    ASSERT_TRUE(UpdateBlockVisibility(ViewOf(gap), palette.palette, tree));
    tests::ExpectTree(tree, tests::PlainVisibility(ViewOf(volume), ViewOf(gap), palette.palette));
    ExpectBox(tree.blocks[0], {0, 0, 6, 16, 16, 8}); // the one leaf layer that reaches slice 7

    ASSERT_TRUE(UpdateBlockVisibility({nullptr, 20, 20, 20}, palette.palette, tree));
    EXPECT_EQ(VisibleLeaves(tree), 1000);
}

TEST(BlockVisibility, IsTakenBackWhenThePaletteChanges)
{
    const tests::TestVolume volume = tests::MakeVolume(20, 18, 33, [](int i, int j, int k) { return i + j + k; });
    BlockTree tree = TreeOf(volume);
    const std::vector<tests::PlainBlock> ranges = tests::PlainRanges(ViewOf(volume));
    ASSERT_TRUE(UpdateBlockVisibility(kNoLabels, TestPalette(0, std::vector<float>(100, 1.0f)).palette, tree));
    EXPECT_GT(VisibleLeaves(tree), 0);
    ASSERT_TRUE(UpdateBlockVisibility(kNoLabels, TestPalette(0, std::vector<float>(100, 0.01f)).palette, tree));
    ExpectNothingVisible(tree);
    tests::ExpectTree(tree, ranges); // ranges are as they were
    ASSERT_TRUE(UpdateBlockVisibility(kNoLabels, TestPalette(0, std::vector<float>(100, 1.0f)).palette, tree));
    ASSERT_TRUE(UpdateBlockVisibility(kNoLabels, VolumePalette{}, tree));
    ExpectNothingVisible(tree);
}

TEST(BlockVisibility, GoesWhenRangesAreComputedAgain)
{
    const tests::TestVolume volume = tests::MakeVolume(20, 18, 33, [](int i, int j, int k) { return i + j + k; });
    BlockTree tree = TreeOf(volume);
    ASSERT_TRUE(UpdateBlockVisibility(kNoLabels, TestPalette(0, std::vector<float>(100, 1.0f)).palette, tree));
    ASSERT_TRUE(ComputeBlockRanges(ViewOf(volume), tree));
    for (const BlockNode& node : tree.nodes)
        ASSERT_EQ(node.mask, 0);
}

TEST(BlockVisibility, AgreesWithAPlainVersionOnVolumesOfAnySize)
{
    std::vector<std::array<int, 3>> sizes = {{1, 1, 1},  {16, 16, 16}, {17, 17, 17}, {16, 16, 32},
                                             {33, 5, 3}, {2, 3, 1},    {15, 1, 33},  {40, 40, 40}};
    tests::Random random(40);
    for (int n = 0; n < 60; ++n)
        sizes.push_back({random.Between(1, 40), random.Between(1, 40), random.Between(1, 40)});
    for (const auto& [nx, ny, nz] : sizes)
    {
        SCOPED_TRACE(testing::Message() << nx << " x " << ny << " x " << nz);
        // A slope with a little noise: some leaves are seen by their values, others not; likewise by their labels.
        const tests::TestVolume volume = tests::MakeVolume(
            nx, ny, nz, [&](int i, int j, int k) { return 10 * (i - j + k) + random.Between(-3, 3); });
        const int labelX = random.Between(1, nx), labelY = random.Between(1, ny), labelZ = random.Between(1, nz);
        tests::TestLabels labels = tests::MakeLabels(
            labelX, labelY, labelZ,
            [&](int i, int j, int k) { return (i / 7 + j / 5 + k / 6) % 4 == 0 ? random.Below(4) : 64; });
        if (random.Below(3) == 0)
            labels.slices[size_t(random.Below(labelZ))] = nullptr;
        BlockTree tree = TreeOf(volume);
        for (int n = 0; n < 4; ++n)
        {
            std::vector<float> sums(size_t(random.Between(1, 400)), 0.0f);
            for (float& sum : sums)
                sum = random.Below(50) == 0 ? float(random.Real(0, 0.03)) : 0.0f;
            TestPalette palette(random.Between(-400, 400), std::move(sums));
            for (int label = 0; label < 4; ++label)
            {
                palette.WithLabel(label, random.Below(2));
                if (random.Below(4) == 0)
                    palette.WithoutLabel(label);
            }
            for (const LabelView& view : {ViewOf(labels), kNoLabels})
            {
                const std::vector<tests::PlainBlock> expected =
                    tests::PlainVisibility(ViewOf(volume), view, palette.palette);
                ASSERT_TRUE(UpdateBlockVisibility(view, palette.palette, tree));
                ASSERT_NO_FATAL_FAILURE(tests::ExpectTree(tree, expected));
                ASSERT_TRUE(UpdateBlockVisibility(view, palette.palette, tree)); // over its own result
                ASSERT_NO_FATAL_FAILURE(tests::ExpectTree(tree, expected));
            }
        }
    }
}

TEST(BlockVisibility, IsCompleteOrLeftAsItWasWhenThereIsNoMemory)
{
    const tests::TestVolume volume = tests::MakeVolume(40, 18, 33, [](int i, int j, int k) { return i + j + k; });
    const tests::TestLabels labels = tests::MakeLabels(40, 18, 33, [](int i, int, int) { return i < 9 ? 64 : 0; });
    const TestPalette before(0, std::vector<float>(20, 1.0f)), after(30, std::vector<float>(20, 1.0f));
    const std::vector<tests::PlainBlock> old = tests::PlainVisibility(ViewOf(volume), kNoLabels, before.palette);
    const std::vector<tests::PlainBlock> updated =
        tests::PlainVisibility(ViewOf(volume), ViewOf(labels), after.palette);
    bool failed = true;
    for (int allowed = 0; failed; ++allowed)
    {
        ASSERT_LT(allowed, 1000);
        BlockTree tree = TreeOf(volume);
        ASSERT_TRUE(UpdateBlockVisibility(kNoLabels, before.palette, tree));
        bool done = false;
        tests::FailAllocationAfter(allowed);
        try
        {
            done = UpdateBlockVisibility(ViewOf(labels), after.palette, tree);
        }
        catch (const std::bad_alloc&)
        {
        }
        failed = tests::StopFailingAllocations();
        ASSERT_NO_FATAL_FAILURE(tests::ExpectTree(tree, done ? updated : old)) << allowed;
    }
}
} // namespace corvane::core
