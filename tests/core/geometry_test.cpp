#include "core/geometry.h"

#include "tests/test_volume.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

namespace corvane::core
{
namespace
{
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

// Grids without voxels: geometry reads none.
const KsVolumeData kStraight = {nullptr, 12, 10, 8, {0.5f, 0.75f, 2}, {10, -20, 30}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
const KsVolumeData kTurned = {nullptr, 6, 6, 6, {1, 1, 2}, {0, 0, 0}, {0.6f, 0.8f, 0}, {-0.8f, 0.6f, 0}, {0, 0, -1}};
const KsVolumeData kTilted = {nullptr, 5, 6, 7, {1, 1, 2.5f}, {1, 2, 3}, {1, 0, 0}, {0, 1, 0}, {0, 0.6f, 0.8f}};

using Floats = std::array<float, 70>;

Floats FloatsOf(const VolumeGeometry& geometry)
{
    Floats floats;
    static_assert(sizeof(floats) == sizeof(geometry));
    std::memcpy(floats.data(), &geometry, sizeof(geometry));
    return floats;
}

// A geometry whose every number is a mark, to see what is written and what is not.
VolumeGeometry Marked()
{
    Floats floats;
    for (size_t n = 0; n < floats.size(); ++n)
        floats[n] = float(1000 + n);
    VolumeGeometry geometry;
    std::memcpy(&geometry, floats.data(), sizeof(geometry));
    return geometry;
}

void ExpectFloats(const KsVolumeData& volume, const std::vector<double>& expected)
{
    ASSERT_EQ(expected.size(), 70u);
    VolumeGeometry geometry = Marked();
    PrepareVolumeGeometry(volume, geometry);
    const Floats floats = FloatsOf(geometry);
    for (size_t n = 0; n < floats.size(); ++n)
        EXPECT_NEAR(floats[n], expected[n], 1e-5) << "number " << n;
}

void ExpectNear(Vec3f a, Vec3d b, double tolerance)
{
    ASSERT_NEAR(a.x, b.x, tolerance);
    ASSERT_NEAR(a.y, b.y, tolerance);
    ASSERT_NEAR(a.z, b.z, tolerance);
}
} // namespace

// clang-format off
TEST(PrepareVolumeGeometry, FillsEveryFieldOfAStraightVolume)
{
    // Corners: 1.1 and size - 2.1 voxels, so x 10 + 0.5 * (1.1, 9.9), y -20 + 0.75 * (1.1, 7.9), z 30 + 2 * (1.1, 5.9).
    ExpectFloats(kStraight, {
        10, -20, 30,   0.5, 0.75, 2,
        1, 0, 0,   0, 1, 0,   0, 0, 1,   0, 0, 1,   0, 0, 1,
        0.5,   1, 1.5, 4,   1, 2.0 / 3, 0.25,
        10.55, -19.175, 32.2,   14.95, -14.075, 41.8,
        10.55, -19.175, 32.2,   14.95, -19.175, 32.2,   14.95, -14.075, 32.2,   10.55, -14.075, 32.2,
        10.55, -19.175, 41.8,   14.95, -19.175, 41.8,   14.95, -14.075, 41.8,   10.55, -14.075, 41.8,
        10.45, -19.275, 32.1,   15.05, -13.975, 41.9,
        1.01, 1.01, 1.01,   9.99, 7.99, 5.99});
}

TEST(PrepareVolumeGeometry, FillsEveryFieldOfATurnedLeftHandedVolume)
{
    // Corner (i, j, k) at (0.6 i - 0.8 j, 0.8 i + 0.6 j, -2 k) with i, j and k 1.1 or 3.9.
    ExpectFloats(kTurned, {
        0, 0, 0,   1, 1, 2,
        0.6, 0.8, 0,   -0.8, 0.6, 0,   0, 0, -1,   0, 0, 1,   0, 0, -1,
        1,   1, 1, 2,   1, 1, 0.5,
        -2.46, 1.54, -7.8,   1.46, 5.46, -2.2,
        -0.22, 1.54, -2.2,   1.46, 3.78, -2.2,   -0.78, 5.46, -2.2,   -2.46, 3.22, -2.2,
        -0.22, 1.54, -7.8,   1.46, 3.78, -7.8,   -0.78, 5.46, -7.8,   -2.46, 3.22, -7.8,
        -2.56, 1.44, -7.9,   1.56, 5.56, -2.1,
        1.01, 1.01, 1.01,   3.99, 3.99, 3.99});
}

TEST(PrepareVolumeGeometry, FillsEveryFieldOfATiltedVolume)
{
    // Corner (i, j, k) at (1 + i, 2 + j + 1.5 k, 3 + 2 k) with i 1.1 or 2.9, j 1.1 or 3.9 and k 1.1 or 4.9.
    ExpectFloats(kTilted, {
        1, 2, 3,   1, 1, 2.5,
        1, 0, 0,   0, 1, 0,   0, 0.6, 0.8,   0, 0, 1,   0, 0.6, 0.8,
        1,   1, 1, 2.5,   1, 1, 0.4,
        2.1, 4.75, 5.2,   3.9, 13.25, 12.8,
        2.1, 4.75, 5.2,   3.9, 4.75, 5.2,   3.9, 7.55, 5.2,   2.1, 7.55, 5.2,
        2.1, 10.45, 12.8,   3.9, 10.45, 12.8,   3.9, 13.25, 12.8,   2.1, 13.25, 12.8,
        2, 4.65, 5.1,   4, 13.35, 12.9,
        1.01, 1.01, 1.01,   2.99, 3.99, 4.99});
}
// clang-format on

TEST(PrepareVolumeGeometry, DoesNotNormaliseTheNormal)
{
    KsVolumeData volume = kStraight;
    volume.rowDirection[0] = 2;
    volume.columnDirection[1] = 3;
    volume.sliceDirection[0] = 0.5f;
    VolumeGeometry geometry = {};
    PrepareVolumeGeometry(volume, geometry);
    const Floats floats = FloatsOf(geometry);
    EXPECT_EQ(floats[17], 6); // normal (0, 0, 6)
    EXPECT_EQ(floats[18], 1); // slice . row
    EXPECT_EQ(floats[19], 0); // slice . column
    EXPECT_EQ(floats[20], 6); // slice . normal
}

TEST(PrepareVolumeGeometry, TakesTheSmallestOfTheThreeSpacings)
{
    for (int smallest = 0; smallest < 3; ++smallest)
    {
        KsVolumeData volume = kStraight;
        for (int axis = 0; axis < 3; ++axis)
            volume.spacing[axis] = axis == smallest ? 0.25f : 1.0f + float(axis);
        VolumeGeometry geometry = {};
        PrepareVolumeGeometry(volume, geometry);
        const Floats floats = FloatsOf(geometry);
        EXPECT_EQ(floats[21], 0.25f);
        for (int axis = 0; axis < 3; ++axis)
        {
            EXPECT_EQ(floats[size_t(22 + axis)], volume.spacing[axis] / 0.25f);
            EXPECT_EQ(floats[size_t(25 + axis)], 0.25f / volume.spacing[axis]);
        }
    }
}

TEST(PrepareVolumeGeometry, KeepsTheCornersThatItHadWhenASpacingIsNotPositive)
{
    for (const float bad : {0.0f, -0.0f, -1.0f, -kInfinity, kNaN})
    {
        for (int axis = 0; axis < 3; ++axis)
        {
            VolumeGeometry geometry = {};
            PrepareVolumeGeometry(kTilted, geometry);
            const Floats before = FloatsOf(geometry);
            KsVolumeData volume = kStraight;
            volume.spacing[axis] = bad;
            PrepareVolumeGeometry(volume, geometry);
            const Floats after = FloatsOf(geometry);
            for (size_t n = 28; n < 64; ++n) // both boxes and the corners
                EXPECT_EQ(after[n], before[n]) << n;
            EXPECT_EQ(after[0], 10); // all else is the new volume's
            EXPECT_EQ(after[14], 1);
            EXPECT_FLOAT_EQ(after[67], 9.99f);
        }
    }
}

TEST(PrepareVolumeGeometry, MakesEmptyBoxesInANewGeometryWhenASpacingIsZero)
{
    KsVolumeData volume = kStraight;
    volume.spacing[1] = 0;
    VolumeGeometry geometry = {};
    PrepareVolumeGeometry(volume, geometry);
    const Floats floats = FloatsOf(geometry);
    for (size_t n = 28; n < 58; ++n)
        EXPECT_EQ(floats[n], 0) << n;
    for (size_t n = 58; n < 64; ++n)
        EXPECT_FLOAT_EQ(floats[n], n < 61 ? -0.1f : 0.1f);
    EXPECT_EQ(floats[21], 0);            // the smallest spacing
    EXPECT_EQ(floats[22], kInfinity);    // 0.5 / 0
    EXPECT_TRUE(std::isnan(floats[23])); // 0 / 0
    EXPECT_EQ(floats[24], kInfinity);    // 2 / 0
    EXPECT_EQ(floats[25], 0);            // 0 / 0.5
    EXPECT_TRUE(std::isnan(floats[26])); // 0 / 0
    EXPECT_EQ(floats[27], 0);            // 0 / 2
}

TEST(PrepareVolumeGeometry, ComputesRelativeSpacingsOfNegativeOnesToo)
{
    KsVolumeData volume = kStraight;
    volume.spacing[0] = -0.5f;
    VolumeGeometry geometry = {};
    PrepareVolumeGeometry(volume, geometry);
    const Floats floats = FloatsOf(geometry);
    EXPECT_EQ(floats[21], -0.5f);
    EXPECT_EQ(floats[23], -1.5f);
    EXPECT_EQ(floats[24], -4.0f);
    EXPECT_EQ(floats[27], -0.25f);
}

TEST(PrepareVolumeGeometry, TurnsTheInsetInsideOutForAVolumeOfOneVoxel)
{
    const KsVolumeData volume = {nullptr, 1, 1, 1, {1, 2, 4}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    VolumeGeometry geometry = {};
    PrepareVolumeGeometry(volume, geometry);
    const Floats floats = FloatsOf(geometry);
    EXPECT_FLOAT_EQ(floats[28], -1.1f); // the box is taken over the corners, wherever they lie
    EXPECT_FLOAT_EQ(floats[33], 4.4f);
    EXPECT_FLOAT_EQ(floats[34], 1.1f); // the first corner is the low one
    EXPECT_FLOAT_EQ(floats[67], -1.01f);
}

TEST(BoundingBoxOfCorners, ReachesFromTheSmallestToTheLargestOfEightPoints)
{
    for (int smallest = 0; smallest < 8; ++smallest)
    {
        for (int largest = 0; largest < 8; ++largest)
        {
            if (smallest == largest)
                continue;
            Vec3f corners[8];
            for (int n = 0; n < 8; ++n)
                corners[n] = {float(n), float(7 - n), float(n % 3)};
            corners[smallest] = {-10, -20, -30};
            corners[largest] = {40, 50, 60};
            const Box box = BoundingBoxOfCorners(corners);
            ExpectNear(box.min, {-10, -20, -30}, 0);
            ExpectNear(box.max, {40, 50, 60}, 0);
        }
    }
}

TEST(BoundingBoxOfCorners, KeepsTheAxesApart)
{
    const Vec3f corners[8] = {{3, 5, 7},  {4, 5, 7}, {3, -6, 7}, {3, 5, 8},
                              {-1, 5, 7}, {3, 9, 7}, {3, 5, -2}, {3, 5, 7}};
    const Box box = BoundingBoxOfCorners(corners);
    ExpectNear(box.min, {-1, -6, -2}, 0);
    ExpectNear(box.max, {4, 9, 8}, 0);
}

TEST(IsLoadable, WantsEverySliceAndAtLeastOneVoxelPerAxis)
{
    tests::TestVolume volume = tests::MakeVolume(3, 2, 4, [](int, int, int) { return 0; });
    EXPECT_TRUE(IsLoadable(volume.data));
    for (int32_t KsVolumeData::*size : {&KsVolumeData::sizeX, &KsVolumeData::sizeY, &KsVolumeData::sizeZ})
    {
        for (const int32_t bad : {0, -1, std::numeric_limits<int32_t>::min()})
        {
            KsVolumeData refused = volume.data;
            refused.*size = bad;
            EXPECT_FALSE(IsLoadable(refused));
        }
    }
    KsVolumeData withoutTable = volume.data;
    withoutTable.slices = nullptr;
    EXPECT_FALSE(IsLoadable(withoutTable));
    for (size_t k = 0; k < volume.slices.size(); ++k)
    {
        const int16_t* slice = std::exchange(volume.slices[k], nullptr);
        EXPECT_FALSE(IsLoadable(volume.data)) << "without slice " << k;
        volume.slices[k] = slice;
    }
    EXPECT_TRUE(IsLoadable(volume.data));
}

TEST(IsLoadable, AsksForNoPositiveSpacing)
{
    tests::TestVolume volume = tests::MakeVolume(1, 1, 1, [](int, int, int) { return 0; });
    volume.data.spacing[1] = 0;
    EXPECT_TRUE(IsLoadable(volume.data));
}
} // namespace corvane::core
