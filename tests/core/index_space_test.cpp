#include "core/geometry.h"

#include "random_grid.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

namespace corvane::core
{
namespace
{
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

// Grids without voxels: geometry reads none.
const KsVolumeData kStraight = {nullptr, 12, 10, 8, {0.5f, 0.75f, 2}, {10, -20, 30}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
const KsVolumeData kTilted = {nullptr, 5, 6, 7, {1, 1, 2.5f}, {1, 2, 3}, {1, 0, 0}, {0, 1, 0}, {0, 0.6f, 0.8f}};

// All numbers of a geometry in order: 3 to 5 spacing, 6 to 14 directions, 15 to 17 normal, 18 to 20 the slice
// direction along row, column and normal.
using Floats = std::array<float, 70>;

Floats FloatsOf(const VolumeGeometry& geometry)
{
    Floats floats;
    static_assert(sizeof(floats) == sizeof(geometry));
    std::memcpy(floats.data(), &geometry, sizeof(geometry));
    return floats;
}

Vec3d PositionOf(const KsVolumeData& grid, Vec3d index)
{
    const Vec3d row = ToDouble(VecOf(grid.rowDirection)), column = ToDouble(VecOf(grid.columnDirection)),
                slice = ToDouble(VecOf(grid.sliceDirection)), origin = ToDouble(VecOf(grid.origin));
    return origin + index.x * double(grid.spacing[0]) * row + index.y * double(grid.spacing[1]) * column +
           index.z * double(grid.spacing[2]) * slice;
}

Directions DirectionsOf(const KsVolumeData& grid)
{
    return {VecOf(grid.rowDirection), VecOf(grid.columnDirection), VecOf(grid.sliceDirection)};
}

void ExpectNear(Vec3f a, Vec3d b, double tolerance)
{
    ASSERT_NEAR(a.x, b.x, tolerance);
    ASSERT_NEAR(a.y, b.y, tolerance);
    ASSERT_NEAR(a.z, b.z, tolerance);
}
} // namespace

TEST(IndexToPatient, PlacesVoxelsOfEveryGridWhereItsRecordSaysTheyLie)
{
    tests::Random random(10);
    for (int n = 0; n < 5000; ++n)
    {
        const KsVolumeData grid = tests::RandomGrid(random, 100);
        const Vec3f index = ToFloat(random.Vector(-20, 120));
        const std::optional<Vec3f> patient =
            IndexToPatient(VecOf(grid.origin), DirectionsOf(grid), VecOf(grid.spacing), index);
        ASSERT_TRUE(patient);
        ASSERT_NO_FATAL_FAILURE(ExpectNear(*patient, PositionOf(grid, ToDouble(index)), 1e-3));
    }
}

TEST(IndexToPatient, ResolvesTheSliceDirectionInTheFrameOfRowColumnAndNormal)
{
    // Directions that are no unit vectors and not perpendicular: t = sz k along the slice direction d, then
    // ((d.r) t + sx i) r + ((d.c) t + sy j) c + ((d.n) t) n with n = r x c.
    tests::Random random(11);
    for (int n = 0; n < 2000; ++n)
    {
        const Vec3d r = ToDouble(ToFloat(random.Vector(-1, 1))), c = ToDouble(ToFloat(random.Vector(-1, 1))),
                    d = ToDouble(ToFloat(random.Vector(-1, 1))), normal = Cross(r, c);
        const Vec3d spacing = ToDouble(ToFloat(random.Vector(0.1, 2))),
                    origin = ToDouble(ToFloat(random.Vector(-9, 9)));
        const Vec3d index = ToDouble(ToFloat(random.Vector(-10, 30)));
        const double t = spacing.z * index.z;
        const Vec3d expected = origin + (Dot(d, r) * t + spacing.x * index.x) * r +
                               (Dot(d, c) * t + spacing.y * index.y) * c + (Dot(d, normal) * t) * normal;
        const std::optional<Vec3f> patient =
            IndexToPatient(ToFloat(origin), {ToFloat(r), ToFloat(c), ToFloat(d)}, ToFloat(spacing), ToFloat(index));
        ASSERT_TRUE(patient);
        ASSERT_NO_FATAL_FAILURE(ExpectNear(*patient, expected, 2e-4));
    }
}

TEST(IndexToPatient, RefusesASpacingThatIsNotPositive)
{
    for (const float bad : {0.0f, -0.0f, -1.0f, -kInfinity, kNaN})
    {
        EXPECT_FALSE(IndexToPatient({0, 0, 0}, DirectionsOf(kStraight), {bad, 1, 1}, {1, 2, 3}));
        EXPECT_FALSE(IndexToPatient({0, 0, 0}, DirectionsOf(kStraight), {1, bad, 1}, {1, 2, 3}));
        EXPECT_FALSE(IndexToPatient({0, 0, 0}, DirectionsOf(kStraight), {1, 1, bad}, {1, 2, 3}));
    }
}

TEST(PatientToIndex, UndoesIndexToPatientOnTiltedAndLeftHandedGrids)
{
    tests::Random random(12);
    for (int n = 0; n < 5000; ++n)
    {
        const KsVolumeData grid = tests::RandomGrid(random, 100);
        VolumeGeometry geometry = {};
        PrepareVolumeGeometry(grid, geometry);
        const Vec3d index = random.Vector(-20, 120);
        // Single precision: positions of a few hundred mm end 3e-5 mm off, a tenth of a thousandth of a voxel.
        ASSERT_NO_FATAL_FAILURE(ExpectNear(PatientToIndex(geometry, ToFloat(PositionOf(grid, index))), index, 1e-3));
    }
}

TEST(PatientToIndex, FollowsATiltedStackByHand)
{
    VolumeGeometry geometry = {};
    PrepareVolumeGeometry(kTilted, geometry);
    // Voxel (i, j, k) lies at (1 + i, 2 + j + 1.5 k, 3 + 2 k).
    ExpectNear(PatientToIndex(geometry, {4, 10.5f, 9}), {3, 4, 3}, 1e-5);
    ExpectNear(PatientToIndex(geometry, {1, 2, 3}), {0, 0, 0}, 0);
}

TEST(PatientToIndex, IsNotFiniteWhereSlicesLieInTheirOwnPlane)
{
    KsVolumeData grid = kStraight;
    Store(Vec3f{1, 0, 0}, grid.sliceDirection);
    VolumeGeometry geometry = {};
    PrepareVolumeGeometry(grid, geometry);
    EXPECT_FALSE(std::isfinite(PatientToIndex(geometry, {3, 4, 5}).z));
}

TEST(PatientToIndexStep, IsTheSameMapWithoutTheOriginInDoublePrecision)
{
    // q.n / (d.n) along the slices, then q.r - (d.r) t and q.c - (d.c) t, each in voxels.
    tests::Random random(13);
    for (int n = 0; n < 5000; ++n)
    {
        const KsVolumeData grid = tests::RandomGrid(random, 100);
        VolumeGeometry geometry = {};
        PrepareVolumeGeometry(grid, geometry);
        const Floats g = FloatsOf(geometry);
        const Vec3d step = random.Vector(-1, 1);
        const double t = (step.x * g[15] + step.y * g[16] + step.z * g[17]) / g[20];
        const double row = step.x * g[6] + step.y * g[7] + step.z * g[8];
        const double column = step.x * g[9] + step.y * g[10] + step.z * g[11];
        const Vec3d voxels = PatientToIndexStep(geometry, step);
        ASSERT_NEAR(voxels.x, (row - g[18] * t) / g[3], 1e-13);
        ASSERT_NEAR(voxels.y, (column - g[19] * t) / g[4], 1e-13);
        ASSERT_NEAR(voxels.z, t / g[5], 1e-13);
    }
}

TEST(PatientToIndexStep, IsTheDifferenceOfTwoIndicesInSinglePrecisionToo)
{
    tests::Random random(15);
    for (int n = 0; n < 1000; ++n)
    {
        VolumeGeometry geometry = {};
        PrepareVolumeGeometry(tests::RandomGrid(random, 100), geometry);
        const Vec3f from = ToFloat(random.Vector(-50, 50)), step = ToFloat(random.Vector(-50, 50));
        const Vec3f difference = PatientToIndex(geometry, from + step) - PatientToIndex(geometry, from);
        ASSERT_NO_FATAL_FAILURE(ExpectNear(PatientToIndexStep(geometry, step), ToDouble(difference), 2e-3));
    }
}

TEST(PatientToIndexStep, CarriesAVoxelsEdgesToUnitSteps)
{
    tests::Random random(14);
    for (int n = 0; n < 1000; ++n)
    {
        const KsVolumeData grid = tests::RandomGrid(random, 100);
        VolumeGeometry geometry = {};
        PrepareVolumeGeometry(grid, geometry);
        const Vec3d origin = PositionOf(grid, {0, 0, 0});
        // Directions are unit and perpendicular to single precision only.
        for (const Vec3d edge : {Vec3d{1, 0, 0}, Vec3d{0, 1, 0}, Vec3d{0, 0, 1}})
        {
            const Vec3d voxels = PatientToIndexStep(geometry, PositionOf(grid, edge) - origin);
            ASSERT_NEAR(voxels.x, edge.x, 5e-6);
            ASSERT_NEAR(voxels.y, edge.y, 5e-6);
            ASSERT_NEAR(voxels.z, edge.z, 5e-6);
        }
    }
}

TEST(UnitOrZero, DividesByTheLengthPlusAMillionth)
{
    ExpectNear(UnitOrZero({3, 0, -4}), {3 / 5.000001, 0, -4 / 5.000001}, 1e-7);
    ExpectNear(UnitOrZero({0, 0.001f, 0}), {0, 0.001 / 0.001001, 0}, 1e-7);
    ExpectNear(UnitOrZero({1e-6f, 0, 0}), {0.5, 0, 0}, 1e-7);
    ExpectNear(UnitOrZero({0, 0, 0}), {0, 0, 0}, 0);
}
} // namespace corvane::core
