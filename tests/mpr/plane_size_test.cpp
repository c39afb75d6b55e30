#include "corvane/RenderMPR.h"

#include "plain_planes.h"
#include "random_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace corvane::tests
{
namespace
{
TestVolume MakeBlank(int sizeX, int sizeY, int sizeZ)
{
    return MakeVolume(sizeX, sizeY, sizeZ, [](int, int, int) { return 0; });
}
} // namespace

TEST(VolumeBox, LeavesTheBoxesAsTheyWereForSpacingsThatAreNotPositive)
{
    TestVolume volume = MakeBlank(10, 12, 14);
    TestVolume flat = MakeBlank(10, 12, 14);
    flat.data.spacing[1] = 0.0f;
    RenderMPR render, fresh;
    float low[3], high[3], lowAfter[3], highAfter[3];
    ASSERT_TRUE(render.InitData(volume.data));
    ASSERT_TRUE(render.GetBoundingBox(low, high));
    ASSERT_TRUE(render.InitData(flat.data));
    ASSERT_TRUE(render.GetBoundingBox(lowAfter, highAfter));
    for (int axis = 0; axis < 3; ++axis)
    {
        EXPECT_EQ(lowAfter[axis], low[axis]);
        EXPECT_EQ(highAfter[axis], high[axis]);
    }
    ASSERT_TRUE(fresh.InitData(flat.data));
    ASSERT_TRUE(fresh.GetBoundingBox(low, high));
    for (int axis = 0; axis < 3; ++axis)
    {
        EXPECT_EQ(low[axis], 0.0f);
        EXPECT_EQ(high[axis], 0.0f);
    }
}

TEST(VolumeBox, GivesTheBoxAndCornersByHand)
{
    TestVolume volume = MakeBlank(10, 12, 14);
    volume.data.spacing[0] = 2.0f;
    volume.data.origin[0] = 100.0f;
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    float low[3], high[3], vertexes[8][3];
    ASSERT_TRUE(render.GetBoundingBox(low, high));
    ASSERT_TRUE(render.GetBoundingVertexes(vertexes));
    const float expectedLow[3] = {102.2f, 1.1f, 1.1f}, expectedHigh[3] = {115.8f, 9.9f, 11.9f};
    const int highAlong[8][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0},
                                 {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
    for (int axis = 0; axis < 3; ++axis)
    {
        EXPECT_NEAR(low[axis], expectedLow[axis], 1e-5);
        EXPECT_NEAR(high[axis], expectedHigh[axis], 1e-5);
        for (int corner = 0; corner < 8; ++corner)
            EXPECT_EQ(vertexes[corner][axis], highAlong[corner][axis] ? high[axis] : low[axis]) << corner;
    }
    EXPECT_FALSE(render.GetBoundingBox(nullptr, high));
    EXPECT_FALSE(render.GetBoundingBox(low, nullptr));
    EXPECT_FALSE(render.GetBoundingVertexes(nullptr));
}

TEST(VolumeBox, GivesTheSameCornersAsThePlainVersionOnTiltedVolumes)
{
    Random random(11);
    for (int round = 0; round < 300; ++round)
    {
        TestVolume volume = MakeBlank(random.Between(1, 12), random.Between(1, 12), random.Between(1, 12));
        PlaceAtRandom(random, volume.data);
        const PlainGeometry expected = PlainGeometryOf(volume.data);
        RenderMPR render;
        ASSERT_TRUE(render.InitData(volume.data));
        float low[3], high[3], vertexes[8][3];
        ASSERT_TRUE(render.GetBoundingBox(low, high));
        ASSERT_TRUE(render.GetBoundingVertexes(vertexes));
        for (int axis = 0; axis < 3; ++axis)
        {
            ASSERT_EQ(low[axis], expected.boxLow[axis]);
            ASSERT_EQ(high[axis], expected.boxHigh[axis]);
            for (int corner = 0; corner < 8; ++corner)
                ASSERT_EQ(vertexes[corner][axis], expected.corners[corner][axis]);
        }
    }
}

TEST(PlaneSize, GivesTheBoxesSidesAsTheSizeOfAPlaneAlongTheAxes)
{
    const TestVolume volume = MakeBlank(10, 12, 14);
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    const double directions[6] = {1, 0, 0, 0, 1, 0}, center[3] = {4.5, 5.5, 6.5};
    double origin[3], rowExtent, columnExtent;
    ASSERT_TRUE(render.GetMPRSize(directions, center, origin, rowExtent, columnExtent));
    EXPECT_NEAR(rowExtent, 6.8, 1e-5);    // 1.1 to 7.9
    EXPECT_NEAR(columnExtent, 8.8, 1e-5); // 1.1 to 9.9
    EXPECT_NEAR(origin[0], 1.1, 1e-5);
    EXPECT_NEAR(origin[1], 1.1, 1e-5);
    EXPECT_EQ(origin[2], 6.5);
}

TEST(PlaneSize, GivesTheSizeOfEveryPlaneAsTheCornersSpanIt)
{
    Random random(12);
    for (int round = 0; round < 500; ++round)
    {
        TestVolume volume = MakeBlank(random.Between(1, 30), random.Between(1, 30), random.Between(1, 30));
        PlaceAtRandom(random, volume.data);
        RenderMPR render;
        ASSERT_TRUE(render.InitData(volume.data));
        const PlainGeometry geometry = PlainGeometryOf(volume.data);
        const RandomFrame frame = MakeRandomFrame(random);
        double directions[6], center[3], origin[3], rowExtent, columnExtent;
        for (int axis = 0; axis < 3; ++axis)
        {
            directions[axis] = frame.row[axis];
            directions[3 + axis] = frame.column[axis];
            center[axis] = random.Real(-100, 100);
        }
        ASSERT_TRUE(render.GetMPRSize(directions, center, origin, rowExtent, columnExtent));

        float low[2] = {INFINITY, INFINITY}, high[2] = {-INFINITY, -INFINITY};
        for (const auto& corner : geometry.corners)
            for (int side = 0; side < 2; ++side)
            {
                const double* d = directions + 3 * side;
                const float along =
                    float(double(corner[0]) * d[0] + double(corner[1]) * d[1] + double(corner[2]) * d[2]);
                low[side] = std::min(low[side], along);
                high[side] = std::max(high[side], along);
            }
        ASSERT_EQ(rowExtent, double(high[0] - low[0]));
        ASSERT_EQ(columnExtent, double(high[1] - low[1]));
        double back[2];
        for (int side = 0; side < 2; ++side)
        {
            const double* d = directions + 3 * side;
            back[side] = center[0] * d[0] + center[1] * d[1] + center[2] * d[2] - double(low[side]);
        }
        for (int axis = 0; axis < 3; ++axis)
            ASSERT_EQ(origin[axis], center[axis] - (back[0] * directions[axis] + back[1] * directions[3 + axis]));

        // Every corner lies on the rectangle.
        for (const auto& corner : geometry.corners)
        {
            double u = 0, v = 0;
            for (int axis = 0; axis < 3; ++axis)
            {
                u += (double(corner[axis]) - origin[axis]) * directions[axis];
                v += (double(corner[axis]) - origin[axis]) * directions[3 + axis];
            }
            ASSERT_TRUE(u > -1e-3 && u < rowExtent + 1e-3 && v > -1e-3 && v < columnExtent + 1e-3);
        }
    }
}

TEST(PlaneSize, RefusesToSizeAPlaneWithoutPlacesToReadAndWrite)
{
    const TestVolume volume = MakeBlank(8, 8, 8);
    RenderMPR render;
    ASSERT_TRUE(render.InitData(volume.data));
    const double directions[6] = {1, 0, 0, 0, 1, 0}, center[3] = {};
    double origin[3], rowExtent = 5, columnExtent = 6;
    EXPECT_FALSE(render.GetMPRSize(nullptr, center, origin, rowExtent, columnExtent));
    EXPECT_FALSE(render.GetMPRSize(directions, nullptr, origin, rowExtent, columnExtent));
    EXPECT_FALSE(render.GetMPRSize(directions, center, nullptr, rowExtent, columnExtent));
    EXPECT_EQ(rowExtent, 5);
    EXPECT_EQ(columnExtent, 6);
}
} // namespace corvane::tests
