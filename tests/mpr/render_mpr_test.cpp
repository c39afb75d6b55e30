#include "corvane/RenderMPR.h"

#include "plain_planes.h"
#include "random_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace corvane::tests
{
namespace
{
constexpr int16_t kGuard = 0x5A5A;

TestVolume MakeRamp(int sizeX, int sizeY, int sizeZ)
{
    return MakeVolume(sizeX, sizeY, sizeZ, [](int i, int j, int k) { return 3 * i + 50 * j + 400 * k; });
}

// Renders a plane and tells the result; the values start as the guard pattern.
bool Render(RenderMPR& render, const PnImageParam& plane, std::vector<int16_t>& values)
{
    values.assign(size_t(plane.rows) * plane.columns, kGuard);
    KsImageVAL image = {values.data(), plane};
    return render.Imaging(&image);
}

void ExpectRefusedUntouched(RenderMPR& render, PnImageParam plane)
{
    std::vector<int16_t> values(64, kGuard);
    KsImageVAL image = {values.data(), plane};
    EXPECT_FALSE(render.Imaging(&image));
    EXPECT_EQ(values, std::vector<int16_t>(64, kGuard));
    EXPECT_EQ(image.values, values.data());
}
} // namespace

TEST(RenderMPR, RefusesEverythingBeforeItHasAVolume)
{
    RenderMPR render;
    std::vector<int16_t> values;
    EXPECT_FALSE(Render(render, AxialPlane(2, 2, 2, 4, 4, 1), values));
    EXPECT_EQ(values, std::vector<int16_t>(16, kGuard));

    float low[3] = {1, 2, 3}, high[3] = {4, 5, 6}, vertexes[8][3] = {};
    vertexes[7][2] = 9;
    EXPECT_FALSE(render.GetBoundingBox(low, high));
    EXPECT_EQ(low[0], 1);
    EXPECT_EQ(high[2], 6);
    EXPECT_FALSE(render.GetBoundingVertexes(vertexes));
    EXPECT_EQ(vertexes[7][2], 9);

    const double directions[6] = {1, 0, 0, 0, 1, 0}, center[3] = {};
    double origin[3] = {7, 8, 9}, rowExtent = 10, columnExtent = 11;
    EXPECT_FALSE(render.GetMPRSize(directions, center, origin, rowExtent, columnExtent));
    EXPECT_EQ(origin[1], 8);
    EXPECT_EQ(rowExtent, 10);
    EXPECT_EQ(columnExtent, 11);

    TestLabels labels = MakeLabels(2, 2, 2, [](int, int, int) { return 1; });
    EXPECT_FALSE(render.SetMarkData(labels.mark));
    ASSERT_NE(render.GetMarkData(), nullptr);
    EXPECT_EQ(render.GetMarkData()->slices, nullptr);
}

TEST(RenderMPR, RefusesAVolumeWithoutSlicesAndForgetsTheOneBefore)
{
    const TestVolume good = MakeRamp(8, 8, 8);
    std::vector<int16_t> values;
    for (int fault = 0; fault < 8; ++fault)
    {
        SCOPED_TRACE(fault);
        TestVolume bad = MakeRamp(8, 8, 8);
        switch (fault)
        {
        case 0:
            bad.data.slices = nullptr;
            break;
        case 1:
            bad.data.sizeX = 0;
            break;
        case 2:
            bad.data.sizeY = 0;
            break;
        case 3:
            bad.data.sizeZ = 0;
            break;
        case 4:
            bad.data.sizeX = -8;
            break;
        case 5:
            bad.data.sizeZ = INT32_MIN;
            break;
        case 6:
            bad.slices[0] = nullptr;
            break;
        case 7:
            bad.slices[7] = nullptr;
            break;
        }
        RenderMPR render;
        ASSERT_TRUE(render.InitData(good.data));
        ASSERT_TRUE(Render(render, AxialPlane(2, 2, 2, 4, 4, 1), values));
        EXPECT_FALSE(render.InitData(bad.data));
        EXPECT_FALSE(Render(render, AxialPlane(2, 2, 2, 4, 4, 1), values));
        EXPECT_EQ(values, std::vector<int16_t>(16, kGuard));
        EXPECT_TRUE(render.InitData(good.data));
        EXPECT_TRUE(Render(render, AxialPlane(2, 2, 2, 4, 4, 1), values));
    }
}

TEST(RenderMPR, CopiesTheRecordAndReadsTheVoxelsInPlace)
{
    TestVolume volume = MakeRamp(8, 8, 8);
    RenderMPR render;
    KsVolumeData record = volume.data;
    ASSERT_TRUE(render.InitData(record));
    record = {};
    std::vector<int16_t> values;
    ASSERT_TRUE(Render(render, AxialPlane(3, 3, 3, 1, 1, 1), values));
    EXPECT_EQ(values[0], 9 + 150 + 1200);
    volume.voxels[3][3 * 8 + 3] = 77;
    ASSERT_TRUE(Render(render, AxialPlane(3, 3, 3, 1, 1, 1), values));
    EXPECT_EQ(values[0], 77);
}

TEST(RenderMPR, SamplesAnAxialPlanePixelByPixel)
{
    const TestVolume volume = MakeRamp(10, 9, 8);
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    std::vector<int16_t> values;
    // Half-voxel places in x and z: 3 x + 50 y + 400 z, plus 0.5, truncated. Sampling runs from 1.01 to size - 2.01.
    ASSERT_TRUE(Render(render, AxialPlane(0.5, 0, 2.5, 9, 10, 1), values));
    for (int row = 0; row < 9; ++row)
        for (int column = 0; column < 10; ++column)
        {
            const double x = column + 0.5, y = row;
            const bool inside = x > 1.01 && x < 7.99 && y > 1.01 && y < 6.99;
            const int16_t expected = inside ? int16_t(3 * x + 50 * y + 1000 + 0.5) : int16_t(-1024);
            EXPECT_EQ(values[size_t(row * 10 + column)], expected) << row << ", " << column;
        }
}

TEST(RenderMPR, GivesBackgroundAndTrueForAPlaneThatMissesTheVolume)
{
    const TestVolume volume = MakeRamp(10, 10, 10);
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    TestLabels labels = MakeLabels(10, 10, 10, [](int, int, int) { return 5; });
    ASSERT_TRUE(render.SetMarkData(labels.mark));
    std::vector<int16_t> values;
    std::vector<uint8_t> bytes;
    for (const PnImageParam& plane :
         {AxialPlane(0, 0, 50, 5, 7, 1), AxialPlane(0, 0, -3, 5, 7, 1), AxialPlane(30, 0, 5, 5, 7, 1),
          AxialPlane(-30, 0, 5, 5, 7, 1), AxialPlane(0, 30, 5, 5, 7, 1), AxialPlane(0, -30, 5, 5, 7, 1)})
    {
        EXPECT_TRUE(Render(render, plane, values));
        EXPECT_EQ(values, std::vector<int16_t>(35, int16_t(-1024)));
        bytes.assign(35, 0xEE);
        KsImageMark image = {bytes.data(), plane};
        EXPECT_TRUE(render.Marking(&image));
        EXPECT_EQ(bytes, std::vector<uint8_t>(35, uint8_t(0)));
    }
}

TEST(RenderMPR, RefusesImagesWithoutBufferRowsOrColumns)
{
    const TestVolume volume = MakeRamp(8, 8, 8);
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    EXPECT_FALSE(render.Imaging(nullptr));
    EXPECT_FALSE(render.Imaging(volume.data, nullptr));
    KsImageVAL noBuffer = {nullptr, AxialPlane(2, 2, 2, 4, 4, 1)};
    EXPECT_FALSE(render.Imaging(&noBuffer));
    EXPECT_FALSE(render.Imaging(volume.data, &noBuffer));
    ExpectRefusedUntouched(render, AxialPlane(2, 2, 2, 0, 4, 1));
    ExpectRefusedUntouched(render, AxialPlane(2, 2, 2, 4, 0, 1));
}

TEST(RenderMPR, RefusesRowsAndColumnsBeyondThirtyOneBits)
{
    const TestVolume volume = MakeRamp(8, 8, 8);
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    TestLabels labels = MakeLabels(8, 8, 8, [](int, int, int) { return 5; });
    ASSERT_TRUE(render.SetMarkData(labels.mark));
    for (const uint32_t many : {0x80000000u, 0xFFFFFFFFu})
    {
        ExpectRefusedUntouched(render, AxialPlane(2, 2, 2, many, 1, 1));
        ExpectRefusedUntouched(render, AxialPlane(2, 2, 2, 1, many, 1));
        ExpectRefusedUntouched(render, AxialPlane(2, 2, 2, many, many, 1));
        for (const auto& [rows, columns] : {std::pair(many, 1u), std::pair(1u, many), std::pair(many, many)})
        {
            std::vector<uint8_t> bytes(16, 0xEE);
            KsImageMark image = {bytes.data(), AxialPlane(2, 2, 2, rows, columns, 1)};
            EXPECT_FALSE(render.Marking(&image));
            EXPECT_EQ(bytes, std::vector<uint8_t>(16, uint8_t(0xEE)));
        }
    }
}

TEST(RenderMPR, TakesTheVoxelsOfAnotherVolumeOnlyWhenTheSizesAreTheSame)
{
    const TestVolume stored = MakeRamp(9, 8, 7);
    TestVolume other = MakeVolume(9, 8, 7, [](int i, int j, int k) { return -3 * i - 50 * j + 100 * k; });
    other.data.spacing[0] = 25.0f; // the geometry is that of the stored volume
    other.data.origin[1] = 1000.0f;
    RenderMPR render;
    ASSERT_TRUE(render.InitData(stored.data));
    const PnImageParam plane = AxialPlane(2, 2, 3, 4, 5, 1);
    std::vector<int16_t> values(20, kGuard);
    KsImageVAL image = {values.data(), plane};
    ASSERT_TRUE(render.Imaging(other.data, &image));
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 5; ++column)
        {
            const double value = -3 * (column + 2) - 50 * (row + 2) + 300 + 0.5;
            EXPECT_EQ(values[size_t(row * 5 + column)], int16_t(value)) << row << ", " << column;
        }
    // Only for that call.
    ASSERT_TRUE(render.Imaging(&image));
    EXPECT_EQ(values[0], 6 + 100 + 1200);

    const std::vector<int16_t> untouched(20, kGuard);
    const std::array<std::array<int, 3>, 4> sizes = {{{8, 8, 7}, {9, 9, 7}, {9, 8, 6}, {7, 8, 9}}};
    for (const std::array<int, 3>& size : sizes)
    {
        const TestVolume different = MakeRamp(size[0], size[1], size[2]);
        std::fill(values.begin(), values.end(), kGuard);
        EXPECT_FALSE(render.Imaging(different.data, &image));
        EXPECT_EQ(values, untouched);
    }
    KsVolumeData empty = stored.data;
    empty.slices = nullptr;
    EXPECT_FALSE(render.Imaging(empty, &image));
    TestVolume gap = MakeRamp(9, 8, 7);
    gap.slices[3] = nullptr;
    EXPECT_FALSE(render.Imaging(gap.data, &image));
    EXPECT_EQ(values, untouched);
    render.Clear();
    EXPECT_FALSE(render.Imaging(stored.data, &image));
    EXPECT_EQ(values, untouched);
}

TEST(RenderMPR, OffersNoSlabs)
{
    const TestVolume volume = MakeRamp(8, 8, 8);
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    std::vector<int16_t> values(16, kGuard);
    KsImageVAL image = {values.data(), AxialPlane(2, 2, 2, 4, 4, 1)};
    for (KsImageVAL* target : {&image, static_cast<KsImageVAL*>(nullptr)})
        for (const float thickness : {-1.0f, 0.0f, 5.0f, std::nanf("")})
        {
            EXPECT_FALSE(render.ImagingMIP(thickness, target));
            EXPECT_FALSE(render.ImagingMinIP(thickness, target));
            EXPECT_FALSE(render.ImagingAIP(thickness, target));
        }
    EXPECT_EQ(values, std::vector<int16_t>(16, kGuard));
}

TEST(RenderMPR, ForgetsVolumeAndLabelsOnClear)
{
    const TestVolume volume = MakeRamp(8, 8, 8);
    TestLabels labels = MakeLabels(8, 8, 8, [](int, int, int) { return 1; });
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    ASSERT_TRUE(render.SetMarkData(labels.mark));
    render.Clear();
    std::vector<int16_t> values;
    EXPECT_FALSE(Render(render, AxialPlane(2, 2, 2, 4, 4, 1), values));
    EXPECT_EQ(render.GetMarkData()->slices, nullptr);
    ASSERT_TRUE(render.InitData(volume.data));
    EXPECT_TRUE(Render(render, AxialPlane(2, 2, 2, 4, 4, 1), values));
    EXPECT_EQ(render.GetMarkData()->slices, nullptr);
    render.Clear();
    render.Clear();
}
} // namespace corvane::tests
