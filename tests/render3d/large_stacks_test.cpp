#include "hazard_scenes.h"
#include "plain_projection.h"
#include "sparse_memory.h"
#include "tests/large_memory.h"

// Stacks of 3,500 slices, one behind another in memory, of which only the pages that somebody writes to exist. The
// voxels of the first are numbered in 32 bits from the first one on, just so; those of the second are too many.
namespace corvane::tests
{
using namespace hazards;

namespace
{
constexpr int kSlices = 3500, kLast = kSlices - 3; // the last slice with neighbours on both sides
constexpr int kBar = 500;                          // slices
constexpr uint64_t kBlockBytes = 3714;             // of the block tree

class LargeStacks : public testing::TestWithParam<int>
{
};

// A bar of 2 x 2 voxels through the last slices at the far edge, and a voxel of its own value in a slice.
void ExpectToSeeTheFarEnd(int side, const int16_t* const* slices)
{
    KsVolumeData volume = {slices, side, side, kSlices, {1, 1, 1}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    TestPalette palette;
    palette.Add(
        0, 100, 3000, [](int) { return 1.0f; },
        [](int value) {
            return Colour{uint8_t(value / 16), 100, 7};
        });
    Render3D render;
    ASSERT_TRUE(render.InitData(volume, {}, palette.palette));

    // Along -z and along +z, through the centres of the voxels at the far edge.
    const double edge = side - 6;
    const PnImageParam fromAbove = {4, 4, 1, 1, {0, 1, 0}, {1, 0, 0}, {edge, edge, kSlices + 5.0}};
    const PnImageParam fromBelow = {4, 4, 1, 1, {1, 0, 0}, {0, 1, 0}, {edge, edge, -5}};
    TestValues highest(fromBelow), mean(fromBelow);
    ASSERT_TRUE(render.ImagingMIP(&highest.image));
    ASSERT_TRUE(render.ImagingAIP(&mean.image));
    TestImage above(fromAbove), below(fromBelow);
    ASSERT_TRUE(render.ImagingVR(&above.image, 0));
    ASSERT_TRUE(render.ImagingVR(&below.image, 0));
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
        {
            const bool bar = row >= 2 && column >= 2;
            const bool voxel = row == 2 && column == 3;
            // Samples stand 0.01 voxels behind the centres along z, after a jump 0.001 and as much along x and y.
            const double most = 0.011 * 800 + 0.002 * 2400;
            EXPECT_NEAR(highest.At(row, column),
                        voxel ? 2400
                        : bar ? 1600
                              : 0,
                        bar ? most : 3)
                << row << ", " << column;
            // One sample in each slice from 1.01 on to 3497.01.
            const int sum = bar ? kBar * 1600 + (voxel ? 800 : 0) : 0;
            EXPECT_EQ(mean.At(row, column), sum / kLast) << row << ", " << column;
            // From above a ray meets the bar's end, from below its beginning.
            EXPECT_EQ(above.At(column, row) & 255, bar ? 255u : 0u) << row << ", " << column;
            EXPECT_EQ(below.At(row, column) & 255, bar ? 255u : 0u) << row << ", " << column;
        }
}

TEST_P(LargeStacks, ShowTheirFarEnd)
{
    const int side = GetParam();
    const uint64_t blocks = uint64_t((side + 15) / 16) * uint64_t((side + 15) / 16) * ((kSlices + 15) / 16);
    if (!HasMemoryFor(blocks * kBlockBytes))
        GTEST_SKIP() << "needs 2 GB of memory, neither Windows nor a sanitizer";
    const size_t sliceSize = size_t(side) * size_t(side), bytes = sliceSize * kSlices * sizeof(int16_t);
    const SparseMemory memory(bytes);
    if (!memory.Start())
        GTEST_SKIP() << "the machine reserves no " << bytes << " bytes";
    int16_t* const voxels = static_cast<int16_t*>(memory.Start());
    std::vector<const int16_t*> slices;
    for (size_t k = 0; k < kSlices; ++k)
        slices.push_back(voxels + k * sliceSize);
    const size_t edge = size_t(side) - 4;
    for (size_t k = kLast - kBar + 1; k <= kLast; ++k)
        for (size_t j = edge; j < edge + 2; ++j)
            for (size_t i = edge; i < edge + 2; ++i)
                voxels[k * sliceSize + j * size_t(side) + i] = 1600;
    voxels[size_t(kLast - 4) * sliceSize + edge * size_t(side) + edge + 1] = 2400;
    ExpectToSeeTheFarEnd(side, slices.data());
}

INSTANTIATE_TEST_SUITE_P(OfVoxelsAround31Bits, LargeStacks, testing::Values(780, 800));
static_assert(int64_t(781) * 780 * kSlices + 780 * 780 < INT32_MAX && int64_t(800) * 800 * kSlices > INT32_MAX);
} // namespace
} // namespace corvane::tests
