#include "corvane/EngineMPR.h"
#include "corvane/RenderMPR.h"
#include "owned_image.h"
#include "plain_planes.h"
#include "tests/large_memory.h"
#include "tests/render3d/sparse_memory.h"
#include "tests/test_volume.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>

// Slices, stacks and images whose voxels and pixels need more than 31 bits to number, or nearly so. Planes run through
// voxel centres, or through places that single precision holds exactly.
namespace corvane::tests
{
namespace
{
constexpr int kSize = 2100;
constexpr int16_t kOutside = -1024;

int ValueOf(int i, int j, int k) { return (7 * i + 13 * j + 1009 * k) % 2999; }

KsVolumeData VolumeOf(const std::vector<const int16_t*>& slices, int sizeX, int sizeY)
{
    return {slices.data(), sizeX, sizeY, int(slices.size()), {1, 1, 1}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
}
} // namespace

TEST(LargePlanes, ShowEveryVoxelOf2100Squared)
{
    const TestVolume volume = MakeVolume(kSize, kSize, 2, ValueOf);
    const std::vector<const int16_t*> padded = {volume.slices[0], volume.slices[0], volume.slices[0],
                                                volume.slices[1], volume.slices[1], volume.slices[1]};
    TestLabels labels = MakeLabels(kSize, kSize, 2, [](int i, int j, int k) { return 1 + (i + 3 * j + 5 * k) % 200; });
    labels.slices = {labels.slices[0], labels.slices[0], labels.slices[0],
                     labels.slices[1], labels.slices[1], labels.slices[1]};
    labels.mark = {labels.slices.data(), kSize, kSize, 6};
    RenderMPR render;
    ASSERT_TRUE(render.InitData(VolumeOf(padded, kSize, kSize)));
    ASSERT_TRUE(render.SetMarkData(labels.mark));
    for (int k = 2; k <= 3; ++k)
    {
        const PnImageParam plane = AxialPlane(0, 0, k, kSize, kSize, 1);
        std::vector<int16_t> values(size_t(kSize) * kSize);
        KsImageVAL image = {values.data(), plane};
        ASSERT_TRUE(render.Imaging(&image));
        int64_t wrong = 0;
        for (int j = 0; j < kSize; ++j)
            for (int i = 0; i < kSize; ++i)
            {
                const bool inside = i >= 2 && i <= kSize - 3 && j >= 2 && j <= kSize - 3;
                wrong += values[size_t(j) * kSize + size_t(i)] != (inside ? ValueOf(i, j, k / 3) : kOutside);
            }
        EXPECT_EQ(wrong, 0) << k;

        std::vector<uint8_t> marked(size_t(kSize) * kSize);
        KsImageMark mark = {marked.data(), plane};
        ASSERT_TRUE(render.Marking(&mark));
        EXPECT_TRUE(marked == PlainLabels(VolumeOf(padded, kSize, kSize), labels.mark, plane)) << k;
    }
}

// Two slices alone have no voxel with neighbours on both sides; the engine sizes its images for them all the same.
TEST(LargePlanes, OfTwoSlicesAreSizedAndEmpty)
{
    const TestVolume volume = MakeVolume(kSize, kSize, 2, ValueOf);
    TestLabels labels = MakeLabels(kSize, kSize, 2, [](int, int, int) { return 7; });
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    ASSERT_TRUE(engine.SetMarkData(labels.mark));
    for (const KsMPRType type : {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal})
    {
        OwnedImage image;
        OwnedMark mark;
        ASSERT_TRUE(engine.Imaging(type, &image));
        ASSERT_TRUE(engine.Marking(type, &mark));
        // The corners are 1.1 voxels inside, and those along z have changed places: 2096.8 mm and 1.2.
        const uint32_t rows = type == KsMPRTransverse ? 2097 : 2;
        EXPECT_EQ(image.rows, rows);
        EXPECT_EQ(image.columns, 2097u);
        EXPECT_EQ(std::count(image.values, image.values + image.valueCount, kOutside), int64_t(rows) * 2097);
        EXPECT_EQ(mark.labelCount, rows * 2097);
    }
}

// 46,400 squared are more voxels than 31 bits number. Only the pages that somebody writes to exist.
TEST(LargePlanes, FindTheLastVoxelsOfASliceBeyond31Bits)
{
    constexpr int kLong = 46400;
    constexpr size_t kVoxels = size_t(kLong) * kLong;
    static_assert(kVoxels > size_t(INT32_MAX));
    const SparseMemory memory(2 * kVoxels);
    if (!memory.Start())
        GTEST_SKIP() << "the machine reserves no " << 2 * kVoxels << " bytes";
    int16_t* const slice = static_cast<int16_t*>(memory.Start());
    const std::vector<const int16_t*> slices(5, slice);
    RenderMPR render;
    ASSERT_TRUE(render.InitData(VolumeOf(slices, kLong, kLong)));
    for (const std::array<int, 2>& corner :
         {std::array<int, 2>{2, 2}, {kLong - 18, 2}, {2, kLong - 18}, {kLong - 18, kLong - 18}})
    {
        for (int j = 0; j < 16; ++j)
            for (int i = 0; i < 16; ++i)
                slice[size_t(corner[1] + j) * kLong + size_t(corner[0] + i)] = int16_t(100 + 16 * j + i);
        const PnImageParam plane = AxialPlane(corner[0], corner[1], 2, 16, 16, 1);
        std::vector<int16_t> values(256);
        KsImageVAL image = {values.data(), plane};
        ASSERT_TRUE(render.Imaging(&image));
        for (int j = 0; j < 16; ++j)
            for (int i = 0; i < 16; ++i)
            {
                const bool inside = corner[0] + i <= kLong - 3 && corner[1] + j <= kLong - 3;
                EXPECT_EQ(values[size_t(16 * j + i)], inside ? 100 + 16 * j + i : kOutside) << i << ", " << j;
            }
    }
}

TEST(LargePlanes, FindTheirPlaceAmong3500Slices)
{
    constexpr int kSlices = 3500, kPeriod = 7;
    const TestVolume volume = MakeVolume(40, 30, kPeriod, ValueOf);
    std::vector<const int16_t*> slices;
    for (int k = 0; k < kSlices; ++k)
        slices.push_back(volume.slices[size_t(k % kPeriod)]);
    RenderMPR render;
    ASSERT_TRUE(render.InitData(VolumeOf(slices, 40, 30)));
    // Coronal: columns along x, rows towards the feet, from the uppermost slice down.
    const PnImageParam plane = {kSlices, 40, 1, 1, {1, 0, 0}, {0, 0, -1}, {0, 11, kSlices - 1}};
    std::vector<int16_t> values(size_t(40) * kSlices);
    KsImageVAL image = {values.data(), plane};
    ASSERT_TRUE(render.Imaging(&image));
    for (int row = 0; row < kSlices; ++row)
        for (int i = 0; i < 40; ++i)
        {
            const int k = kSlices - 1 - row;
            const bool inside = i >= 2 && i <= 37 && k >= 2 && k <= kSlices - 3;
            ASSERT_EQ(values[size_t(row) * 40 + size_t(i)], inside ? ValueOf(i, 11, k % kPeriod) : kOutside)
                << k << ", " << i;
        }
}

// 256 pixels to a voxel, 20,000 x 20,000 pixels. Every 4999th pixel of every 4999th row is one of a small image whose
// pixels stand 4999 / 256 mm apart: the same places, exactly.
TEST(LargePlanes, Of20000SquaredPixelsShowWhatSmallOnesShow)
{
    constexpr uint32_t kSide = 20000, kApart = 4999;
    if (!HasMemoryFor(uint64_t(kSide) * kSide * sizeof(int16_t)))
        GTEST_SKIP() << "needs 0.8 GB of memory, neither Windows nor a sanitizer";
    const TestVolume volume = MakeVolume(84, 83, 5, ValueOf);
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    const auto valuesOf = [&](const PnImageParam& plane)
    {
        auto values = std::make_unique<int16_t[]>(size_t(plane.rows) * plane.columns);
        KsImageVAL image = {values.get(), plane};
        EXPECT_TRUE(render.Imaging(&image));
        return values;
    };
    // From 1.5 voxels on, which is inside, to 1.5 + 19999 / 256 = 79.6 voxels: every pixel lies in the volume.
    const auto large = valuesOf(AxialPlane(1.5, 1.5, 2.25, kSide, kSide, 1.0 / 256));
    const auto small = valuesOf(AxialPlane(1.5, 1.5, 2.25, 5, 5, kApart / 256.0));
    for (size_t row = 0; row < 5; ++row)
        for (size_t column = 0; column < 5; ++column)
        {
            const int16_t value = large[row * kApart * kSide + column * kApart];
            EXPECT_EQ(value, small[5 * row + column]) << row << ", " << column;
            EXPECT_NE(value, kOutside);
        }
    // The last rows pixel for pixel.
    const double down = 1.5 + (kSide - 3) / 256.0;
    const auto last = valuesOf(AxialPlane(1.5, down, 2.25, 3, kSide, 1.0 / 256));
    EXPECT_TRUE(std::equal(last.get(), last.get() + 3 * kSide, large.get() + size_t(kSide - 3) * kSide));
}
} // namespace corvane::tests
