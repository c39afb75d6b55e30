#include "corvane/EngineMPR.h"

#include "plain_planes.h"
#include "random_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

// The geometry of the engine's images and how many of them fit through a volume.
namespace corvane::tests
{
namespace
{
constexpr KsMPRType kTypes[] = {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal};

TestVolume MakeBlank(int sizeX, int sizeY, int sizeZ)
{
    return MakeVolume(sizeX, sizeY, sizeZ, [](int, int, int) { return 0; });
}

void ExpectVector(const double* actual, double x, double y, double z, double allowed)
{
    EXPECT_NEAR(actual[0], x, allowed);
    EXPECT_NEAR(actual[1], y, allowed);
    EXPECT_NEAR(actual[2], z, allowed);
}

// Distances of the volume's corners from a point along a direction: the least and the greatest.
std::pair<float, float> CornerDistances(const KsVolumeData& volume, const double* point, const double* normal)
{
    const PlainGeometry geometry = PlainGeometryOf(volume);
    std::pair<float, float> range = {INFINITY, -INFINITY};
    for (const auto& corner : geometry.corners)
    {
        const float distance =
            float((double(corner[0]) - point[0]) * normal[0] + (double(corner[1]) - point[1]) * normal[1] +
                  (double(corner[2]) - point[2]) * normal[2]);
        range.first = std::min(range.first, distance);
        range.second = std::max(range.second, distance);
    }
    return range;
}
} // namespace

TEST(EngineImageParam, CoversTheVolumeWithPixelsOfTheSmallestSpacing)
{
    TestVolume volume = MakeBlank(24, 20, 16);
    volume.data.spacing[0] = 0.7f;
    volume.data.spacing[1] = 0.5f;
    volume.data.spacing[2] = 2.0f;
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    // Sampled from 1.1 voxels to size - 2.1: x 0.77 to 15.33 mm, y 0.55 to 8.95, z 2.2 to 27.8.
    PnImageParam param;
    ASSERT_TRUE(engine.GetImageParam(KsMPRTransverse, param));
    EXPECT_EQ(param.rowSpacing, 0.5);
    EXPECT_EQ(param.columnSpacing, 0.5);
    EXPECT_EQ(param.columns, 30u); // 14.56 / 0.5 = 29.1
    EXPECT_EQ(param.rows, 17u);    // 8.4 / 0.5 = 16.8
    ExpectVector(param.rowDirection, 1, 0, 0, 0);
    ExpectVector(param.columnDirection, 0, 1, 0, 0);
    ExpectVector(param.position, 0.77, 0.55, 15.0, 1e-5);

    ASSERT_TRUE(engine.GetImageParam(KsMPRSagittal, param));
    EXPECT_EQ(param.rowSpacing, 0.5);
    EXPECT_EQ(param.columnSpacing, 0.5);
    EXPECT_EQ(param.columns, 17u);
    EXPECT_EQ(param.rows, 52u); // 25.6 / 0.5 = 51.2
    ExpectVector(param.rowDirection, 0, 1, 0, 0);
    ExpectVector(param.columnDirection, 0, 0, -1, 0);
    ExpectVector(param.position, 8.05, 0.55, 27.8, 1e-5);

    ASSERT_TRUE(engine.GetImageParam(KsMPRCoronal, param));
    EXPECT_EQ(param.columns, 30u);
    EXPECT_EQ(param.rows, 52u);
    ExpectVector(param.rowDirection, 1, 0, 0, 0);
    ExpectVector(param.columnDirection, 0, 0, -1, 0);
    ExpectVector(param.position, 0.77, 4.75, 27.8, 1e-5);
}

TEST(EngineImageParam, GoesThroughThePointThatThePlanesShare)
{
    const TestVolume volume = MakeBlank(24, 20, 16);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    const double point[3] = {3, 4, 5};
    ASSERT_TRUE(engine.SetOrigin(point));
    PnImageParam param;
    ASSERT_TRUE(engine.GetImageParam(KsMPRTransverse, param));
    ExpectVector(param.position, 1.1, 1.1, 5, 1e-5);
    ASSERT_TRUE(engine.GetImageParam(KsMPRSagittal, param));
    ExpectVector(param.position, 3, 1.1, 13.9, 1e-5);
    ASSERT_TRUE(engine.GetImageParam(KsMPRCoronal, param));
    ExpectVector(param.position, 1.1, 4, 13.9, 1e-5);
}

TEST(EngineImageParam, IsRefusedWithoutAVolumeAndForUnknownPlanes)
{
    const TestVolume volume = MakeBlank(24, 20, 16);
    EngineMPR engine;
    PnImageParam param, before;
    std::memset(&before, 0x5A, sizeof before);
    const auto expectRefused = [&](int type)
    {
        param = before;
        EXPECT_FALSE(engine.GetImageParam(KsMPRType(type), param)) << type;
        EXPECT_EQ(std::memcmp(&param, &before, sizeof param), 0) << type;
    };
    for (const int type : {1, 2, 3})
        expectRefused(type);
    engine.Reset();
    for (const int type : {1, 2, 3})
        expectRefused(type);
    ASSERT_TRUE(engine.InitData(volume.data));
    EXPECT_TRUE(engine.GetImageParam(KsMPRTransverse, param));
    for (const int type : {0, 4, -1, 1000000})
        expectRefused(type);
    KsVolumeData refused = volume.data; // with slices, but without size
    refused.sizeX = 0;
    EXPECT_FALSE(engine.InitData(refused));
    for (const int type : {1, 2, 3})
        expectRefused(type);
    ASSERT_TRUE(engine.InitData(volume.data));
    engine.Clear();
    for (const int type : {1, 2, 3})
        expectRefused(type);
}

// With a row direction that is far too long the image would have 10^13 columns.
TEST(EngineImageCount, IsZeroWhereItsImageCannotBeCountedInPixels)
{
    const TestVolume volume = MakeBlank(24, 20, 16);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    KsMPRParam planes;
    ASSERT_TRUE(engine.GetParams(planes));
    planes.transverse.rowDirection[0] = 1e12;
    ASSERT_TRUE(engine.SetParams(planes));
    PnImageParam param, before;
    std::memset(&before, 0x5A, sizeof before);
    param = before;
    EXPECT_FALSE(engine.GetImageParam(KsMPRTransverse, param));
    EXPECT_EQ(engine.GetImageCount(KsMPRTransverse, 1, &param), 0);
    EXPECT_EQ(std::memcmp(&param, &before, sizeof param), 0);
    EXPECT_GT(engine.GetImageCount(KsMPRTransverse, 1, nullptr), 0); // the slices themselves can be counted
    EXPECT_GT(engine.GetImageCount(KsMPRCoronal, 1, &param), 0);     // the other planes are sound
}

TEST(EngineImageCount, StartsAtACountOfSlicesWithThePointInsideTheVolume)
{
    const TestVolume volume = MakeBlank(24, 20, 16);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    // Along z from the middle, 7.5: from -6.4 to 6.4. The start is the truncated number of slices, taken as mm.
    struct Case
    {
        float spacing;
        int count;
        double start;
    };
    const Case cases[] = {
        {1.0f, 12, -6.0},   // trunc(-6.4) = -6; (6.4 + 6) / 1 = 12.4
        {2.0f, 4, -3.0},    // trunc(-3.2) = -3; (6.4 + 3) / 2 = 4.7
        {0.5f, 36, -12.0},  // trunc(-12.8) = -12; (6.4 + 12) / 0.5 = 36.8
        {4.0f, 1, -1.0},    // trunc(-1.6) = -1; (6.4 + 1) / 4 = 1.85
        {0.25f, 125, -25.0} // trunc(-25.6) = -25; (6.4 + 25) / 0.25 = 125.6
    };
    for (const Case& expected : cases)
    {
        PnImageParam param = {};
        EXPECT_EQ(engine.GetImageCount(KsMPRTransverse, expected.spacing, &param), expected.count) << expected.spacing;
        EXPECT_EQ(engine.GetImageCount(KsMPRTransverse, expected.spacing, nullptr), expected.count);
        ExpectVector(param.position, 1.1, 1.1, 7.5 + expected.start, 1e-5);
        EXPECT_EQ(param.columns, 21u); // 20.8
        EXPECT_EQ(param.rows, 17u);    // 16.8
        EXPECT_EQ(param.rowSpacing, 1.0);
        EXPECT_EQ(param.columnSpacing, 1.0);
        ExpectVector(param.rowDirection, 1, 0, 0, 0);
        ExpectVector(param.columnDirection, 0, 1, 0, 0);
    }
}

TEST(EngineImageCount, StartsAtTheFirstFaceWithThePointOutsideTheVolume)
{
    const TestVolume volume = MakeBlank(24, 20, 16);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const double z : {-10.0, 30.0})
    {
        const double point[3] = {5, 5, z};
        ASSERT_TRUE(engine.SetOrigin(point));
        PnImageParam param = {};
        EXPECT_EQ(engine.GetImageCount(KsMPRTransverse, 2.0f, &param), 6); // 12.8 / 2 = 6.4
        ExpectVector(param.position, 1.1, 1.1, 1.1, 1e-5);
    }
    // The coronal normal is +y, the sagittal one -x: there the first face is the one of the greatest x.
    const double point[3] = {-50, -50, 5};
    ASSERT_TRUE(engine.SetOrigin(point));
    PnImageParam param = {};
    EXPECT_EQ(engine.GetImageCount(KsMPRCoronal, 3.0f, &param), 5); // 16.8 / 3 = 5.6
    ExpectVector(param.position, 1.1, 1.1, 13.9, 1e-5);
    EXPECT_EQ(engine.GetImageCount(KsMPRSagittal, 3.0f, &param), 6); // 20.8 / 3 = 6.9
    ExpectVector(param.position, 21.9, 1.1, 13.9, 1e-5);
}

TEST(EngineImageCount, TakesAPointOnAFaceAsOutside)
{
    const TestVolume volume = MakeBlank(24, 20, 16);
    const PlainGeometry geometry = PlainGeometryOf(volume.data);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const float face : {geometry.boxLow[2], geometry.boxHigh[2]})
    {
        const double point[3] = {5, 5, double(face)};
        ASSERT_TRUE(engine.SetOrigin(point));
        PnImageParam param = {};
        EXPECT_EQ(engine.GetImageCount(KsMPRTransverse, 2.0f, &param), 6); // 12.8 / 2 = 6.4
        ExpectVector(param.position, 1.1, 1.1, 1.1, 1e-5);
    }
}

TEST(EngineImageCount, AgreesWithTheCornersOnTurnedPlanesOfTiltedVolumes)
{
    Random random(41);
    int inside = 0, outside = 0;
    for (int round = 0; round < 500; ++round)
    {
        TestVolume volume = MakeBlank(random.Between(4, 30), random.Between(4, 30), random.Between(4, 30));
        PlaceAtRandom(random, volume.data);
        EngineMPR engine;
        ASSERT_TRUE(engine.InitData(volume.data));
        ASSERT_TRUE(engine.Rotate(KsMPRTransverse, float(random.Real(-3, 3))));
        ASSERT_TRUE(engine.Rotate(KsMPRSagittal, float(random.Real(-3, 3))));
        double point[3], normal[3];
        ASSERT_TRUE(engine.GetOrigin(point));
        for (double& place : point)
            place += random.Real(-30, 30);
        ASSERT_TRUE(engine.SetOrigin(point));
        const KsMPRType type = kTypes[random.Below(3)];
        ASSERT_TRUE(engine.GetDirect(type, normal));

        const float spacing = float(random.Real(0.02, 4));
        const auto [low, high] = CornerDistances(volume.data, point, normal);
        const bool isInside = low * high < 0.0f;
        ++(isInside ? inside : outside);
        const float start = isInside ? std::trunc(low / spacing) : low;
        const int expected = int((high - start) / spacing);
        PnImageParam param = {};
        ASSERT_EQ(engine.GetImageCount(type, spacing, &param), expected) << round;
        if (expected < 1)
            continue;
        // The first slice lies `start` along the normal from the shared point.
        double along = 0;
        for (int axis = 0; axis < 3; ++axis)
            along += (param.position[axis] - point[axis]) * normal[axis];
        ASSERT_NEAR(along, double(start), 1e-9) << round;
        // It is the same picture as that of a plane through that point.
        for (int axis = 0; axis < 3; ++axis)
            point[axis] += double(start) * normal[axis];
        ASSERT_TRUE(engine.SetOrigin(point));
        PnImageParam there = {};
        ASSERT_TRUE(engine.GetImageParam(type, there));
        ASSERT_EQ(std::memcmp(&there, &param, sizeof param), 0) << round;
    }
    EXPECT_GT(inside, 50);
    EXPECT_GT(outside, 50);
}

TEST(EngineImageCount, DividesInSinglePrecision)
{
    const TestVolume volume = MakeBlank(24, 20, 16);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    const double point[3] = {5, 5, -10}, normal[3] = {0, 0, 1};
    ASSERT_TRUE(engine.SetOrigin(point));
    const auto [low, high] = CornerDistances(volume.data, point, normal);
    int different = 0;
    for (int count = 2; count < 1000; ++count)
    {
        // Spacings that divide the volume almost evenly: the last bit of the quotient decides.
        const float spacing = std::nextafter((high - low) / float(count), 1000.0f);
        const int expected = int((high - low) / spacing);
        EXPECT_EQ(engine.GetImageCount(KsMPRTransverse, spacing, nullptr), expected) << count;
        different += expected != int(double(high - low) / double(spacing));
    }
    EXPECT_GT(different, 0);
}

TEST(EngineImageCount, IsZeroWithoutAVolumeForUnknownPlanesAndForSpacingsBelowOneHundredth)
{
    const TestVolume volume = MakeBlank(24, 20, 16);
    EngineMPR engine;
    PnImageParam param, before;
    std::memset(&before, 0x5A, sizeof before);
    const auto expectZero = [&](int type, float spacing)
    {
        param = before;
        EXPECT_EQ(engine.GetImageCount(KsMPRType(type), spacing, &param), 0) << type << ", " << spacing;
        EXPECT_EQ(std::memcmp(&param, &before, sizeof param), 0) << type << ", " << spacing;
        EXPECT_EQ(engine.GetImageCount(KsMPRType(type), spacing, nullptr), 0) << type << ", " << spacing;
    };
    expectZero(1, 1.0f);
    ASSERT_TRUE(engine.InitData(volume.data));
    const float nan = std::numeric_limits<float>::quiet_NaN(), infinity = std::numeric_limits<float>::infinity();
    for (const int type : {0, 4, -1, 1000000})
        expectZero(type, 1.0f);
    for (const float spacing : {0.005f, std::nextafter(0.01f, 0.0f), 0.0f, -0.0f, -1.0f, -infinity, nan, -nan})
        expectZero(1, spacing);
    expectZero(1, 100.0f); // wider than the volume
    expectZero(1, infinity);
    EXPECT_GT(engine.GetImageCount(KsMPRTransverse, 0.01f, nullptr), 0); // 0.01 itself is enough
    KsVolumeData refused = volume.data;                                  // with slices, but without size
    refused.sizeX = 0;
    EXPECT_FALSE(engine.InitData(refused));
    expectZero(1, 1.0f);
    ASSERT_TRUE(engine.InitData(volume.data));
    engine.Clear();
    expectZero(1, 1.0f);
}

TEST(EngineImageCount, FollowsAnotherVolume)
{
    const TestVolume first = MakeBlank(24, 20, 16), second = MakeBlank(24, 20, 32);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(first.data));
    EXPECT_EQ(engine.GetImageCount(KsMPRTransverse, 2.0f, nullptr), 4);
    ASSERT_TRUE(engine.InitData(second.data));
    EXPECT_EQ(engine.GetImageCount(KsMPRTransverse, 2.0f, nullptr), 10); // 14.4: trunc(-7.2) = -7, 21.4 / 2
}

TEST(EngineImageCount, SurvivesPointsThatAreNotFinite)
{
    const TestVolume volume = MakeBlank(24, 20, 16);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const double bad : {double(NAN), double(INFINITY), -double(INFINITY), 1e300, -1e300})
    {
        const double point[3] = {5, 5, bad};
        ASSERT_TRUE(engine.SetOrigin(point));
        EXPECT_LE(engine.GetImageCount(KsMPRTransverse, 1.0f, nullptr), 0) << bad;
    }
}
} // namespace corvane::tests
