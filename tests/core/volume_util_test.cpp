#include "corvane/VolumeUtil.h"

#include "random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <type_traits>

namespace corvane::core
{
namespace
{
struct Point
{
    double column, row;
};

Point CoordinatesOf(const PnImageParam& param, Vec3d patient)
{
    const double point[3] = {patient.x, patient.y, patient.z};
    double image[2] = {-7, -7};
    VolumeUtil::PatientToImageCoords(param, point, image);
    return {image[0], image[1]};
}

void ExpectPoint(Point point, double column, double row)
{
    EXPECT_NEAR(point.column, column, 1e-12);
    EXPECT_NEAR(point.row, row, 1e-12);
}

// An oblique plane: 5 rows 0.5 mm apart, 4 columns 2 mm apart.
constexpr Vec3d kPosition = {-40, 12.5, 101};
constexpr Vec3d kRow = {0.6, 0.8, 0};
constexpr Vec3d kColumn = {-0.48, 0.36, 0.8};
constexpr Vec3d kNormal = {0.64, -0.48, 0.6};
PnImageParam ObliquePlane()
{
    PnImageParam param = {5, 4, 0.5, 2.0, {}, {}, {}};
    Store(kRow, param.rowDirection);
    Store(kColumn, param.columnDirection);
    Store(kPosition, param.position);
    return param;
}
} // namespace

TEST(PatientToImageCoords, PutsTheFirstPixelAndItsNeighboursAtWholeCoordinates)
{
    const PnImageParam param = ObliquePlane();
    const Point first = CoordinatesOf(param, kPosition);
    EXPECT_EQ(first.column, 0.0);
    EXPECT_EQ(first.row, 0.0);
    ExpectPoint(CoordinatesOf(param, kPosition + 2.0 * kRow), 1, 0);    // one column further
    ExpectPoint(CoordinatesOf(param, kPosition + 0.5 * kColumn), 0, 1); // one row further
    ExpectPoint(CoordinatesOf(param, kPosition + 6.0 * kRow + 2.0 * kColumn), 3, 4);
}

TEST(PatientToImageCoords, ScalesColumnsByTheColumnSpacingAndRowsByTheRowSpacing)
{
    PnImageParam param = {2, 2, 0.5, 4.0, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}};
    ExpectPoint(CoordinatesOf(param, {4, 4, 0}), 1, 8);
    param.rowSpacing = 8;
    ExpectPoint(CoordinatesOf(param, {4, 4, 0}), 1, 0.5);
    param.columnSpacing = 0.25;
    ExpectPoint(CoordinatesOf(param, {4, 4, 0}), 16, 0.5);
}

TEST(PatientToImageCoords, DropsTheDistanceFromThePlane)
{
    const PnImageParam param = ObliquePlane();
    const Vec3d inPlane = kPosition + 3.0 * kRow + 1.25 * kColumn;
    for (const double distance : {-1000.0, -0.1, 0.0, 0.1, 1000.0})
        ExpectPoint(CoordinatesOf(param, inPlane + distance * kNormal), 1.5, 2.5);
}

TEST(PatientToImageCoords, IsNeitherRoundedNorLimitedToTheImage)
{
    const PnImageParam param = ObliquePlane();
    ExpectPoint(CoordinatesOf(param, kPosition + -3.0 * kRow + -0.125 * kColumn), -1.5, -0.25);
    ExpectPoint(CoordinatesOf(param, kPosition + 2000.5 * kRow + 77.7 * kColumn), 1000.25, 155.4);
}

TEST(PatientToImageCoords, DoesNotLookAtTheCountsOfRowsAndColumns)
{
    PnImageParam param = ObliquePlane();
    param.rows = param.columns = 0;
    ExpectPoint(CoordinatesOf(param, kPosition + 2.0 * kRow + 0.5 * kColumn), 1, 1);
}

TEST(PatientToImageCoords, DividesEveryProductByTheSpacingAndAddsXYZ)
{
    tests::Random random(5);
    for (int n = 0; n < 20000; ++n)
    {
        PnImageParam param = {1, 1, random.Real(0.1, 3), random.Real(0.1, 3), {}, {}, {}};
        const Vec3d row = random.Vector(-1, 1), column = random.Vector(-1, 1);
        const Vec3d position = random.Vector(-500, 500), point = random.Vector(-500, 500);
        Store(row, param.rowDirection);
        Store(column, param.columnDirection);
        Store(position, param.position);
        const double dx = point.x - position.x, dy = point.y - position.y, dz = point.z - position.z;
        const double columnX = dx * row.x / param.columnSpacing, columnY = dy * row.y / param.columnSpacing,
                     columnZ = dz * row.z / param.columnSpacing;
        const double rowX = dx * column.x / param.rowSpacing, rowY = dy * column.y / param.rowSpacing,
                     rowZ = dz * column.z / param.rowSpacing;

        const Point image = CoordinatesOf(param, point);
        ASSERT_EQ(image.column, (columnX + columnY) + columnZ);
        ASSERT_EQ(image.row, (rowX + rowY) + rowZ);
    }
}

TEST(PatientToImageCoords, ComputesASinglePrecisionPointInDoublePrecision)
{
    tests::Random random(6);
    for (int n = 0; n < 20000; ++n)
    {
        PnImageParam param = ObliquePlane();
        param.rowSpacing = random.Real(0.1, 3);
        param.columnSpacing = random.Real(0.1, 3);
        // Exact in single precision, so that the same point can be handed to both forms.
        float patient[3];
        for (float& coordinate : patient)
            coordinate = float(random.Between(-8000000, 8000000)) / 16384;
        float image[2] = {-7, -7};
        VolumeUtil::PatientToImageCoords(param, patient, image);
        const Point exact = CoordinatesOf(param, {patient[0], patient[1], patient[2]});
        ASSERT_EQ(image[0], float(exact.column));
        ASSERT_EQ(image[1], float(exact.row));
    }
}

TEST(PatientToImageCoords, IsNotFiniteForASpacingOfZero)
{
    PnImageParam param = {2, 2, 0.0, 0.0, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}};
    const Point image = CoordinatesOf(param, {3, -2, 0});
    EXPECT_FALSE(std::isfinite(image.column));
    EXPECT_FALSE(std::isfinite(image.row));
}

TEST(PatientToImageCoords, WritesTwoNumbersAndNoMore)
{
    const double patient[3] = {1, 2, 3};
    double image[4] = {9, -9, -9, 9};
    VolumeUtil::PatientToImageCoords(ObliquePlane(), patient, image + 1);
    EXPECT_EQ(image[0], 9);
    EXPECT_NE(image[1], -9);
    EXPECT_NE(image[2], -9);
    EXPECT_EQ(image[3], 9);
}

TEST(VolumeUtil, HoldsNoState)
{
    EXPECT_TRUE(std::is_empty_v<VolumeUtil>);
    EXPECT_TRUE(std::is_copy_assignable_v<VolumeUtil>);
    EXPECT_TRUE(std::is_move_assignable_v<VolumeUtil>);
}
} // namespace corvane::core
