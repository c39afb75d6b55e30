#include "corvane/RenderMPR.h"

#include "plain_planes.h"
#include "random_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace corvane::tests
{
namespace
{
constexpr uint8_t kGuard = 0xEE;

TestVolume MakeAir(int sizeX, int sizeY, int sizeZ)
{
    return MakeVolume(sizeX, sizeY, sizeZ, [](int, int, int) { return -1000; });
}

// Label rows are visited where they start a few voxels from the volume's first one; elsewhere they are mostly empty.
PnImageParam MakeLabelledPlane(Random& random, const KsVolumeData& volume)
{
    PnImageParam plane = MakeRandomPlane(random, volume);
    const double start[3] = {random.Real(0.5, 6), random.Real(0.5, 6), random.Real(0.5, 6)};
    PatientPlace(volume, start, plane.position);
    return plane;
}

bool Mark(RenderMPR& render, const PnImageParam& plane, std::vector<uint8_t>& bytes)
{
    bytes.assign(size_t(plane.rows) * plane.columns, kGuard);
    KsImageMark image = {bytes.data(), plane};
    return render.Marking(&image);
}
} // namespace

TEST(Marking, EqualsThePlainVersionOnRandomVolumesAndPlanes)
{
    Random random(21);
    size_t labelled = 0;
    for (int round = 0; round < 1500; ++round)
    {
        const int sizeX = random.Between(1, 60), sizeY = random.Between(1, 60), sizeZ = random.Between(1, 60);
        TestVolume volume = MakeAir(sizeX, sizeY, sizeZ);
        PlaceAtRandom(random, volume.data);
        TestLabels labels = MakeLabels(sizeX, sizeY, sizeZ, [&](int, int, int) { return random.Between(1, 255); });
        RenderMPR render;
        ASSERT_TRUE(render.InitData(volume.data));
        ASSERT_TRUE(render.SetMarkData(labels.mark));
        std::vector<uint8_t> bytes;
        for (int view = 0; view < 3; ++view)
        {
            const PnImageParam plane =
                view == 0 ? MakeRandomPlane(random, volume.data) : MakeLabelledPlane(random, volume.data);
            ASSERT_TRUE(Mark(render, plane, bytes));
            ASSERT_EQ(bytes, PlainLabels(volume.data, labels.mark, plane)) << "round " << round << ", view " << view;
            labelled += bytes.size() - size_t(std::count(bytes.begin(), bytes.end(), 0));
        }
    }
    EXPECT_GT(labelled, 5000u);
}

// Unit spacing, a row along +x from (0.5, 9, 9). Clipping takes the row direction (1, 0, 0) as the start in voxels and
// the start (0.5, 9, 9) as the direction there. The patient row enters its box at x = 1.0, which counts as
// |(1, 9, 9) - (1, 0, 0)| = 12.7 voxels, and leaves it at x = 18.0, |(18, 9, 9) - (1, 0, 0)| = 21.2 voxels. In voxels
// the bounds are met between 1.01 / 9 = 0.1 and 197.99 / 9 = 22.0. Columns 13 to 21 are visited, to x = 21.5.
TEST(Marking, StopsAtTheVolumesEndWhereItsSpanRunsPastIt)
{
    const TestVolume volume = MakeAir(20, 200, 200);
    TestLabels labels = MakeLabels(20, 200, 200, [](int i, int, int) { return 100 + i; });
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    ASSERT_TRUE(render.SetMarkData(labels.mark));
    const PnImageParam plane = AxialPlane(0.5, 9, 9, 1, 60, 1);
    std::vector<uint8_t> bytes;
    ASSERT_TRUE(Mark(render, plane, bytes));
    for (int column = 0; column < 60; ++column)
    {
        // Nearest to 0.5 + column is voxel 1 + column; the last one is 19.
        const int expected = column >= 13 && column <= 18 ? 101 + column : 0;
        EXPECT_EQ(bytes[size_t(column)], expected) << column;
    }
    EXPECT_EQ(bytes, PlainLabels(volume.data, labels.mark, plane));
}

TEST(Marking, PassesEveryByteExactly)
{
    const TestVolume volume = MakeAir(40, 40, 40);
    for (int label = 0; label < 256; ++label)
    {
        TestLabels labels = MakeLabels(40, 40, 40, [=](int, int, int) { return label; });
        RenderMPR render;
        ASSERT_TRUE(render.InitData(volume.data));
        ASSERT_TRUE(render.SetMarkData(labels.mark));
        std::vector<uint8_t> bytes;
        ASSERT_TRUE(Mark(render, AxialPlane(2, 2, 2, 4, 40, 1), bytes));
        // Labels are not mixed, not masked: the byte or the background.
        const auto visited = std::count(bytes.begin(), bytes.end(), uint8_t(label));
        EXPECT_GT(visited, 0) << label;
        EXPECT_EQ(visited + (label == 0 ? 0 : std::count(bytes.begin(), bytes.end(), 0)), 160) << label;
    }
}

TEST(Marking, TakesTheNearestVoxel)
{
    const TestVolume volume = MakeAir(40, 40, 40);
    TestLabels labels = MakeLabels(40, 40, 40, [](int i, int j, int k) { return 1 + ((i + 3 * j + 7 * k) % 255); });
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    ASSERT_TRUE(render.SetMarkData(labels.mark));
    for (const double shift : {-0.5, -0.25, 0.0, 0.25, 0.4375})
    {
        const PnImageParam plane = AxialPlane(2 + shift, 2 + shift, 2 + shift, 2, 30, 1);
        std::vector<uint8_t> bytes;
        ASSERT_TRUE(Mark(render, plane, bytes));
        int visited = 0;
        for (int row = 0; row < 2; ++row)
            for (int column = 0; column < 30; ++column)
            {
                const int byte = bytes[size_t(row * 30 + column)];
                visited += byte != 0;
                if (byte != 0)
                {
                    EXPECT_EQ(byte, 1 + ((column + 2 + 3 * (row + 2) + 7 * 2) % 255)) << shift;
                }
            }
        EXPECT_GT(visited, 15) << shift;
    }
}

TEST(Marking, RefusesImagesWithoutBufferRowsOrColumns)
{
    const TestVolume volume = MakeAir(8, 8, 8);
    TestLabels labels = MakeLabels(8, 8, 8, [](int, int, int) { return 3; });
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    std::vector<uint8_t> bytes;
    EXPECT_FALSE(Mark(render, AxialPlane(2, 2, 2, 4, 4, 1), bytes)); // no labels yet
    EXPECT_EQ(bytes, std::vector<uint8_t>(16, kGuard));
    ASSERT_TRUE(render.SetMarkData(labels.mark));
    EXPECT_FALSE(render.Marking(nullptr));
    KsImageMark image = {nullptr, AxialPlane(2, 2, 2, 4, 4, 1)};
    EXPECT_FALSE(render.Marking(&image));
    for (const PnImageParam& plane : {AxialPlane(2, 2, 2, 0, 4, 1), AxialPlane(2, 2, 2, 4, 0, 1)})
    {
        bytes.assign(16, kGuard);
        image = {bytes.data(), plane};
        EXPECT_FALSE(render.Marking(&image));
        EXPECT_EQ(bytes, std::vector<uint8_t>(16, kGuard));
    }
}

TEST(MarkData, OfOtherSizesIsRefusedAndDropsTheLabelsBefore)
{
    const TestVolume volume = MakeAir(9, 8, 7);
    TestLabels good = MakeLabels(9, 8, 7, [](int, int, int) { return 3; });
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    std::vector<uint8_t> bytes;
    const std::array<std::array<uint32_t, 3>, 6> sizes = {
        {{8, 8, 7}, {9, 9, 7}, {9, 8, 6}, {7, 8, 9}, {0, 8, 7}, {0xFFFFFFFFu, 8, 7}}};
    for (const std::array<uint32_t, 3>& size : sizes)
    {
        ASSERT_TRUE(render.SetMarkData(good.mark));
        EXPECT_EQ(render.GetMarkData()->slices, good.mark.slices);
        EXPECT_EQ(render.GetMarkData()->sizeX, 9u);
        EXPECT_EQ(render.GetMarkData()->sizeY, 8u);
        EXPECT_EQ(render.GetMarkData()->sizeZ, 7u);
        KsVolumeMark other = good.mark;
        other.sizeX = size[0], other.sizeY = size[1], other.sizeZ = size[2];
        EXPECT_FALSE(render.SetMarkData(other));
        EXPECT_EQ(render.GetMarkData()->slices, nullptr);
        EXPECT_FALSE(Mark(render, AxialPlane(2, 2, 2, 4, 4, 1), bytes));
        EXPECT_EQ(bytes, std::vector<uint8_t>(16, kGuard));
    }
    ASSERT_TRUE(render.SetMarkData(good.mark));
    KsVolumeMark none = good.mark;
    none.slices = nullptr;
    EXPECT_FALSE(render.SetMarkData(none));
    EXPECT_EQ(render.GetMarkData()->slices, nullptr);
}

TEST(MarkData, CanBeSetToTheRenderersOwnRecord)
{
    const TestVolume volume = MakeAir(8, 8, 8);
    TestLabels labels = MakeLabels(8, 8, 8, [](int, int, int) { return 3; });
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    ASSERT_TRUE(render.SetMarkData(labels.mark));
    EXPECT_TRUE(render.SetMarkData(*render.GetMarkData()));
    EXPECT_EQ(render.GetMarkData()->slices, labels.mark.slices);
    std::vector<uint8_t> bytes;
    EXPECT_TRUE(Mark(render, AxialPlane(2, 2, 2, 4, 4, 1), bytes));
}

TEST(MarkData, IsReadInPlaceAndEditedThroughTheRecord)
{
    const TestVolume volume = MakeAir(40, 40, 40);
    TestLabels first = MakeLabels(40, 40, 40, [](int, int, int) { return 3; });
    TestLabels second = MakeLabels(40, 40, 40, [](int, int, int) { return 9; });
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    ASSERT_TRUE(render.SetMarkData(first.mark));
    std::vector<uint8_t> bytes;
    const PnImageParam plane = AxialPlane(2, 2, 2, 1, 40, 1);
    ASSERT_TRUE(Mark(render, plane, bytes));
    EXPECT_EQ(*std::max_element(bytes.begin(), bytes.end()), 3);
    for (std::vector<uint8_t>& slice : first.labels)
        std::fill(slice.begin(), slice.end(), uint8_t(200));
    ASSERT_TRUE(Mark(render, plane, bytes));
    EXPECT_EQ(*std::max_element(bytes.begin(), bytes.end()), 200);
    render.GetMarkData()->slices = second.mark.slices;
    ASSERT_TRUE(Mark(render, plane, bytes));
    EXPECT_EQ(*std::max_element(bytes.begin(), bytes.end()), 9);
    render.GetMarkData()->slices = nullptr;
    EXPECT_FALSE(Mark(render, plane, bytes));
}

TEST(MarkData, IsKeptWhenALargerVolumeComesAndNotReadBeyondItsOwnSizes)
{
    Random random(22);
    const TestVolume small = MakeAir(24, 24, 24);
    TestLabels labels = MakeLabels(24, 24, 24, [](int i, int j, int) { return 1 + ((i + j) % 255); });
    RenderMPR render;
    ASSERT_TRUE(render.InitData(small.data));
    ASSERT_TRUE(render.SetMarkData(labels.mark));
    const std::array<std::array<int, 3>, 4> sizes = {{{60, 60, 60}, {60, 24, 24}, {24, 60, 24}, {24, 24, 60}}};
    size_t labelled = 0;
    for (const std::array<int, 3>& size : sizes)
    {
        const TestVolume large = MakeAir(size[0], size[1], size[2]);
        ASSERT_TRUE(render.InitData(large.data));
        EXPECT_EQ(render.GetMarkData()->slices, labels.mark.slices);
        for (int view = 0; view < 300; ++view)
        {
            const PnImageParam plane = MakeLabelledPlane(random, large.data);
            std::vector<uint8_t> bytes;
            ASSERT_TRUE(Mark(render, plane, bytes));
            ASSERT_EQ(bytes, PlainLabels(large.data, labels.mark, plane)) << view;
            labelled += bytes.size() - size_t(std::count(bytes.begin(), bytes.end(), 0));
        }
    }
    EXPECT_GT(labelled, 1000u);
}

TEST(MarkData, WithoutAVolumeGivesPixelsWithoutLabels)
{
    const TestVolume volume = MakeAir(24, 24, 24);
    TestLabels labels = MakeLabels(24, 24, 24, [](int, int, int) { return 8; });
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    ASSERT_TRUE(render.SetMarkData(labels.mark));
    EXPECT_FALSE(render.InitData(KsVolumeData{}));
    EXPECT_EQ(render.GetMarkData()->slices, labels.mark.slices);
    std::vector<uint8_t> bytes;
    EXPECT_TRUE(Mark(render, AxialPlane(2, 2, 2, 4, 20, 1), bytes));
    EXPECT_EQ(bytes, std::vector<uint8_t>(80, uint8_t(0)));
}

TEST(MarkData, WithoutASliceGivesPixelsWithoutLabelsThere)
{
    const TestVolume volume = MakeAir(24, 24, 24);
    TestLabels labels = MakeLabels(24, 24, 24, [](int, int, int) { return 8; });
    labels.slices[5] = nullptr;
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    ASSERT_TRUE(render.SetMarkData(labels.mark));
    std::vector<uint8_t> bytes;
    ASSERT_TRUE(Mark(render, AxialPlane(2, 2, 4, 4, 20, 1), bytes));
    EXPECT_GT(std::count(bytes.begin(), bytes.end(), 8), 0);
    ASSERT_TRUE(Mark(render, AxialPlane(2, 2, 5, 4, 20, 1), bytes));
    EXPECT_EQ(bytes, std::vector<uint8_t>(80, uint8_t(0)));
}
} // namespace corvane::tests
