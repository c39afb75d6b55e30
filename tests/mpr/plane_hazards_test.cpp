#include "corvane/RenderMPR.h"

#include "plain_planes.h"
#include "random_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

// Planes and volumes that make no sense, or next to none: nothing is read outside the volume, and a pixel shows what
// lies at its place or the background.
namespace corvane::tests
{
namespace
{
constexpr int16_t kOutside = -1024;
constexpr double kNan = NAN, kInfinity = INFINITY;

TestVolume MakeConstant(int sizeX, int sizeY, int sizeZ)
{
    return MakeVolume(sizeX, sizeY, sizeZ, [](int, int, int) { return 500; });
}

// Renders a plane of a volume, values and labels; the labels are 7 everywhere.
struct Rendered
{
    std::vector<int16_t> values;
    std::vector<uint8_t> labels;
};

Rendered RenderBoth(const KsVolumeData& volume, const PnImageParam& plane)
{
    const size_t pixels = size_t(plane.rows) * plane.columns;
    Rendered result = {std::vector<int16_t>(pixels, int16_t(0x5A5A)), std::vector<uint8_t>(pixels, uint8_t(0xEE))};
    TestLabels labels = MakeLabels(volume.sizeX, volume.sizeY, volume.sizeZ, [](int, int, int) { return 7; });
    RenderMPR render;
    EXPECT_TRUE(render.InitData(volume));
    EXPECT_TRUE(render.SetMarkData(labels.mark));
    KsImageVAL image = {result.values.data(), plane};
    EXPECT_TRUE(render.Imaging(&image));
    KsImageMark mark = {result.labels.data(), plane};
    EXPECT_TRUE(render.Marking(&mark));
    return result;
}

bool AreAll(const std::vector<int16_t>& values, int16_t value)
{
    return std::count(values.begin(), values.end(), value) == int64_t(values.size());
}

// Every pixel is the constant volume's or background; returns whether any is the volume's.
bool ShowsOnlyTheVolume(const Rendered& image)
{
    const int64_t volume = std::count(image.values.begin(), image.values.end(), 500);
    EXPECT_EQ(volume + std::count(image.values.begin(), image.values.end(), kOutside), int64_t(image.values.size()));
    EXPECT_EQ(std::count(image.labels.begin(), image.labels.end(), 7) +
                  std::count(image.labels.begin(), image.labels.end(), 0),
              int64_t(image.labels.size()));
    return volume > 0;
}

// Whether a volume with the given spacing along some axes (bits) gives images of background.
bool GivesBackground(float spacing, int axes, bool loadedBefore)
{
    TestVolume volume = MakeConstant(20, 20, 20);
    RenderMPR render;
    if (loadedBefore)
    {
        EXPECT_TRUE(render.InitData(volume.data));
    }
    for (int axis = 0; axis < 3; ++axis)
        if (axes >> axis & 1)
        {
            volume.data.spacing[axis] = spacing;
            volume.data.origin[axis] = 10.0f; // with spacing -1 patient 0 lies in the middle
        }
    EXPECT_TRUE(render.InitData(volume.data));
    for (const double z : {0.0, 5.0, 10.0})
    {
        std::vector<int16_t> values(30 * 60);
        KsImageVAL image = {values.data(), AxialPlane(-5, 0, z, 30, 60, 0.5)};
        EXPECT_TRUE(render.Imaging(&image));
        if (!AreAll(values, kOutside))
            return false;
    }
    return true;
}
} // namespace

TEST(PlaneHazards, ColumnsWithoutDistanceShowTheVolumeOrBackground)
{
    const TestVolume volume = MakeConstant(12, 12, 12);
    for (const double spacing : {0.0, -0.0, 1e-30, 1e-300, 5e-324, -1e-30})
        for (const double x : {-3.0, 5.0, 20.0})
        {
            PnImageParam plane = AxialPlane(x, 3, 5, 4, 70, 1);
            plane.columnSpacing = spacing;
            const Rendered image = RenderBoth(volume.data, plane);
            const bool visible = ShowsOnlyTheVolume(image);
            EXPECT_TRUE(x == 5.0 || !visible) << spacing << ", " << x;
        }
}

TEST(PlaneHazards, TinyColumnsThatStillCountShowTheVolumeInEveryPixel)
{
    const TestVolume volume = MakeConstant(12, 12, 12);
    PnImageParam plane = AxialPlane(5, 3, 5, 4, 300, 1);
    plane.columnSpacing = 1e-12;
    EXPECT_TRUE(AreAll(RenderBoth(volume.data, plane).values, 500));
}

TEST(PlaneHazards, NegativeColumnSpacingStaysInsideTheVolume)
{
    const TestVolume volume = MakeVolume(30, 12, 12, [](int i, int, int) { return 10 * i; });
    TestLabels labels = MakeLabels(30, 12, 12, [](int i, int, int) { return 1 + i; });
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    ASSERT_TRUE(render.SetMarkData(labels.mark));
    for (const double x : {-5.0, 2.0, 5.0, 15.0, 27.0, 40.0})
    {
        PnImageParam plane = AxialPlane(x, 2, 5, 5, 90, 1);
        plane.columnSpacing = -0.5;
        std::vector<int16_t> values(450);
        KsImageVAL image = {values.data(), plane};
        ASSERT_TRUE(render.Imaging(&image));
        EXPECT_EQ(values, PlainImage(volume.data, plane)) << x;
        for (int column = 0; column < 90; ++column)
            if (values[size_t(column)] != kOutside)
            {
                EXPECT_EQ(values[size_t(column)], int16_t(10 * (x - 0.5 * column) + 0.5)) << x << ", " << column;
            }
        std::vector<uint8_t> bytes(450);
        KsImageMark mark = {bytes.data(), plane};
        ASSERT_TRUE(render.Marking(&mark));
        EXPECT_EQ(bytes, PlainLabels(volume.data, labels.mark, plane)) << x;
    }
}

TEST(PlaneHazards, RowDirectionZeroShowsTheVolumeOrBackground)
{
    const TestVolume volume = MakeConstant(12, 12, 12);
    for (const double x : {-3.0, 5.0, 20.0})
    {
        PnImageParam plane = AxialPlane(x, 0, 5, 12, 70, 1);
        plane.rowDirection[0] = 0;
        EXPECT_TRUE(!ShowsOnlyTheVolume(RenderBoth(volume.data, plane)) || x == 5.0);
    }
}

TEST(PlaneHazards, ColumnDirectionZeroRepeatsTheRow)
{
    const TestVolume volume = MakeVolume(12, 12, 12, [](int i, int, int) { return 10 * i; });
    PnImageParam plane = AxialPlane(0, 5, 5, 3, 12, 1);
    plane.columnDirection[1] = 0;
    const Rendered image = RenderBoth(volume.data, plane);
    for (size_t pixel = 0; pixel < 36; ++pixel)
    {
        const int x = int(pixel % 12);
        EXPECT_EQ(image.values[pixel], x > 1 && x < 10 ? 10 * x : kOutside) << pixel;
    }
}

TEST(PlaneHazards, RowsParallelToColumnsShowTheSameLineShifted)
{
    const TestVolume volume = MakeVolume(12, 12, 12, [](int i, int, int) { return 10 * i; });
    PnImageParam plane = AxialPlane(0, 5, 5, 8, 12, 1);
    plane.columnDirection[0] = 1;
    plane.columnDirection[1] = 0;
    const Rendered image = RenderBoth(volume.data, plane);
    for (size_t pixel = 0; pixel < 96; ++pixel)
    {
        const int x = int(pixel % 12 + pixel / 12);
        EXPECT_EQ(image.values[pixel], x > 1 && x < 10 ? 10 * x : kOutside) << pixel;
    }
}

TEST(PlaneHazards, NumbersThatAreNotFiniteShowTheVolumeOrBackground)
{
    const TestVolume volume = MakeConstant(12, 12, 12);
    const PnImageParam good = AxialPlane(0, 0, 5, 12, 20, 1);
    for (const double bad : {kNan, -kNan, kInfinity, -kInfinity, 1e300, -1e300, 1e39})
    {
        SCOPED_TRACE(bad);
        for (int axis = 0; axis < 3; ++axis)
        {
            PnImageParam plane = good;
            plane.position[axis] = bad;
            EXPECT_TRUE(AreAll(RenderBoth(volume.data, plane).values, kOutside));
            plane = good;
            plane.rowDirection[axis] = bad;
            ShowsOnlyTheVolume(RenderBoth(volume.data, plane));
            plane = good;
            plane.columnDirection[axis] = bad;
            const Rendered image = RenderBoth(volume.data, plane);
            ShowsOnlyTheVolume(image);
            EXPECT_EQ(std::count(image.values.begin() + 20, image.values.end(), kOutside), 220) << axis;
        }
        PnImageParam plane = good;
        plane.columnSpacing = bad;
        ShowsOnlyTheVolume(RenderBoth(volume.data, plane));
        plane = good;
        plane.position[1] = 5; // so that the first row shows the volume
        plane.rowSpacing = bad;
        const Rendered image = RenderBoth(volume.data, plane);
        EXPECT_TRUE(ShowsOnlyTheVolume(image));
        EXPECT_EQ(std::count(image.values.begin() + 20, image.values.end(), kOutside), 220);
    }
    for (int axis = 0; axis < 3; ++axis)
    {
        PnImageParam plane = good;
        plane.rowDirection[axis] = kNan;
        EXPECT_TRUE(AreAll(RenderBoth(volume.data, plane).values, kOutside)) << axis;
    }
}

TEST(PlaneHazards, VolumesWithNumbersThatAreNotFiniteGiveBackground)
{
    const PnImageParam plane = AxialPlane(0, 0, 5, 12, 20, 1);
    for (const float bad : {NAN, INFINITY, -INFINITY})
        for (int number = 0; number < 12; ++number)
        {
            TestVolume volume = MakeConstant(12, 12, 12);
            float* const fields[4] = {volume.data.origin, volume.data.rowDirection, volume.data.columnDirection,
                                      volume.data.sliceDirection};
            fields[number / 3][number % 3] = bad;
            EXPECT_TRUE(AreAll(RenderBoth(volume.data, plane).values, kOutside)) << bad << ", " << number;
        }
}

TEST(PlaneHazards, SliceDirectionInThePlaneOfRowsAndColumnsGivesBackground)
{
    const float directions[4][3] = {{1, 0, 0}, {0, 1, 0}, {0.6f, -0.8f, 0}, {0, 0, 0}};
    for (const auto& direction : directions)
    {
        TestVolume volume = MakeConstant(12, 12, 12);
        std::copy_n(direction, 3, volume.data.sliceDirection);
        for (const double z : {0.0, 3.0, -2.0})
        {
            EXPECT_TRUE(AreAll(RenderBoth(volume.data, AxialPlane(0, 0, z, 12, 20, 1)).values, kOutside));
            PnImageParam coronal = AxialPlane(0, 5, z, 12, 20, 1);
            coronal.columnDirection[1] = 0;
            coronal.columnDirection[2] = 1;
            EXPECT_TRUE(AreAll(RenderBoth(volume.data, coronal).values, kOutside));
        }
    }
}

TEST(PlaneHazards, RowDirectionsThatAreTheColumnDirectionGiveBackground)
{
    TestVolume volume = MakeConstant(12, 12, 12);
    std::copy_n(volume.data.rowDirection, 3, volume.data.columnDirection);
    EXPECT_TRUE(AreAll(RenderBoth(volume.data, AxialPlane(0, 0, 5, 12, 20, 1)).values, kOutside));
}

// 27 mm in 9.4 million steps: the places, added up in single precision, are off by more than the margin that clipping
// leaves.
TEST(PlaneHazards, MillionsOfTinyColumnsNeverLeaveTheVolume)
{
    const TestVolume volume = MakeVolume(30, 8, 8, [](int i, int, int) { return 100 * i; });
    TestLabels labels = MakeLabels(30, 8, 8, [](int i, int, int) { return 1 + i; });
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    ASSERT_TRUE(render.SetMarkData(labels.mark));
    PnImageParam plane = AxialPlane(1.5, 3, 3, 1, 9400000, 1);
    plane.columnSpacing = 2.9e-6;
    std::vector<int16_t> values(plane.columns);
    KsImageVAL image = {values.data(), plane};
    ASSERT_TRUE(render.Imaging(&image));
    EXPECT_TRUE(values == PlainImage(volume.data, plane));
    std::vector<uint8_t> bytes(plane.columns);
    KsImageMark mark = {bytes.data(), plane};
    ASSERT_TRUE(render.Marking(&mark));
    EXPECT_TRUE(bytes == PlainLabels(volume.data, labels.mark, plane));
}

// Exits are looked for within 10000 of a row's start: of this row from x = -9990 that is up to x = 10.
TEST(PlaneHazards, RowsEndTenThousandVoxelsFromTheirStart)
{
    const TestVolume volume = MakeConstant(40, 8, 8);
    const PnImageParam plane = AxialPlane(-9990, 3, 3, 1, 10100, 1);
    const Rendered image = RenderBoth(volume.data, plane);
    for (int column = 9980; column < 10100; ++column)
    {
        const bool visible = column >= 9992 && column <= 10000;
        EXPECT_EQ(image.values[size_t(column)], visible ? 500 : kOutside) << column;
    }
    EXPECT_EQ(image.values, PlainImage(volume.data, plane));
}

TEST(PlaneHazards, VolumesTooThinToSampleGiveBackground)
{
    for (int thin = 1; thin <= 3; ++thin)
        for (int axis = 0; axis < 3; ++axis)
        {
            int size[3] = {9, 9, 9};
            size[axis] = thin;
            const TestVolume volume = MakeConstant(size[0], size[1], size[2]);
            for (double place = -1; place < 4; place += 0.25)
            {
                PnImageParam plane = AxialPlane(-2, -2, 4, 24, 24, 0.5);
                plane.position[axis] += place;
                EXPECT_TRUE(AreAll(RenderBoth(volume.data, plane).values, kOutside)) << thin << " along " << axis;
            }
        }
    const TestVolume one = MakeConstant(1, 1, 1);
    EXPECT_TRUE(AreAll(RenderBoth(one.data, AxialPlane(-1, -1, 0, 5, 5, 0.5)).values, kOutside));
}

TEST(PlaneHazards, AVolumeOfFiveVoxelsIsSampledAroundItsMiddle)
{
    const TestVolume volume = MakeConstant(5, 5, 5);
    const Rendered image = RenderBoth(volume.data, AxialPlane(0, 0, 2, 5, 5, 1));
    for (size_t pixel = 0; pixel < 25; ++pixel)
        EXPECT_EQ(image.values[pixel], pixel == 12 ? 500 : kOutside) << pixel;
}

TEST(PlaneHazards, SpacingsThatAreNotPositiveGiveBackground)
{
    for (const bool loadedBefore : {false, true}) // the boxes are then those of the volume before
        for (const float spacing : {0.0f, -0.0f, -1.0f, -1e-30f, NAN, -INFINITY})
            for (int axes = 1; axes < 8; ++axes) // which of the three spacings it is
                EXPECT_TRUE(GivesBackground(spacing, axes, loadedBefore))
                    << "spacing " << spacing << ", axes " << axes << ", loaded before " << loadedBefore;
}

TEST(PlaneHazards, InfiniteSpacingsGiveBackground)
{
    for (int axes = 1; axes < 8; ++axes)
        EXPECT_TRUE(GivesBackground(INFINITY, axes, false) && GivesBackground(INFINITY, axes, true)) << axes;
}
} // namespace corvane::tests
