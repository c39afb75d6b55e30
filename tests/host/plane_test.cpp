#include "host/plane.h"
#include "read_testing.h"

#include <random>

namespace corvane::host
{
namespace
{
PnImageParam PlaneOf(uint32_t rows, uint32_t columns, double rowSpacing, double columnSpacing, Vec3 row, Vec3 column,
                     Vec3 position)
{
    return {rows,
            columns,
            rowSpacing,
            columnSpacing,
            {row.x, row.y, row.z},
            {column.x, column.y, column.z},
            {position.x, position.y, position.z}};
}

double Determinant(Vec3 a, Vec3 b, Vec3 c) { return Dot(a, Cross(b, c)); }

// The label at a point by Cramer's rule, independent of the frame that the code uses.
uint8_t LabelAt(const std::vector<uint8_t>& labels, const Grid& grid, Vec3 patient)
{
    const Vec3 x = grid.spacing.x * grid.rowDirection, y = grid.spacing.y * grid.columnDirection,
               z = grid.spacing.z * grid.sliceDirection, p = patient - grid.origin;
    const double whole = Determinant(x, y, z);
    const double i = std::round(Determinant(p, y, z) / whole), j = std::round(Determinant(x, p, z) / whole),
                 k = std::round(Determinant(x, y, p) / whole);
    if (i < 0 || j < 0 || k < 0 || i >= grid.sizeX || j >= grid.sizeY || k >= grid.sizeZ)
        return 0;
    return labels[size_t((k * grid.sizeY + j) * grid.sizeX + i)];
}

TEST(Plane, LabelsAreThoseOfTheNearestVoxelOnAnyPlaneOfATiltedGrid)
{
    const Grid grid = ObliqueGrid(23, 17, 11, 25);
    std::mt19937 random(5);
    std::vector<uint8_t> labels(grid.VoxelCount());
    for (uint8_t& label : labels)
        label = uint8_t(random() % 63 + 1);
    std::uniform_real_distribution<double> number(-1, 1);
    const Vec3 centre = IndexToPatient(grid, {11, 8, 5});
    size_t inside = 0;
    for (int n = 0; n < 40; ++n)
    {
        const Vec3 row = Unit({number(random), number(random), number(random)});
        const Vec3 column = Unit(Cross(row, {number(random), number(random), number(random)}));
        const Vec3 position = centre - 12.3 * row - 11.7 * column;
        const PnImageParam plane = PlaneOf(40, 50, 0.61, 0.53, row, column, position);
        const std::vector<uint8_t> sampled = SampleLabels(labels, grid, plane);
        ASSERT_EQ(sampled.size(), size_t(40 * 50));
        for (int r = 0; r < 40; ++r)
            for (int c = 0; c < 50; ++c)
            {
                const uint8_t expected = LabelAt(labels, grid, position + 0.53 * c * row + 0.61 * r * column);
                ASSERT_EQ(sampled[size_t(r * 50 + c)], expected) << n << ": " << r << " " << c;
                inside += expected > 0;
            }
    }
    EXPECT_GT(inside, size_t(10000));
}

TEST(Plane, LabelsReachHalfAVoxelBeyondTheOutermostCentresAndNoFurther)
{
    Grid grid;
    grid.sizeX = grid.sizeY = grid.sizeZ = 4;
    grid.spacing = {2, 2, 2};
    grid.rowDirection = {1, 0, 0};
    grid.columnDirection = {0, 1, 0};
    grid.sliceDirection = {0, 0, 1};
    const std::vector<uint8_t> labels(64, 9);
    // Centres at 0, 2, 4, 6: labels from -1 to below 7.
    const PnImageParam plane = PlaneOf(1, 6, 1, 1.9, {1, 0, 0}, {0, 1, 0}, {-1.1, 0, 0}); // -1.1, 0.8, ..., 6.5, 8.4
    EXPECT_EQ(SampleLabels(labels, grid, plane), (std::vector<uint8_t>{0, 9, 9, 9, 9, 0}));
}

TEST(Plane, APixelLiesWhereItsRowAndColumnSay)
{
    const PnImageParam plane = PlaneOf(3, 4, 0.5, 2, {0, 1, 0}, {0, 0, -1}, {10, 20, 30});
    ExpectNear(PixelToPatient(plane, 2, 3), {10, 26, 29}, 1e-12, "pixel");
    ExpectNear(FirstPixel(Shifted(plane, {-1, 0, 0}, 4)), {6, 20, 30}, 1e-12, "shifted");
}

TEST(Plane, OtherPixelsCoverTheSameRectangle)
{
    const PnImageParam plane = PlaneOf(100, 60, 1.5, 1.5, {1, 0, 0}, {0, 1, 0}, {5, 6, 7});
    const PnImageParam finer = WithPixelSize(plane, 0.5);
    EXPECT_EQ(finer.rows, 300u);
    EXPECT_EQ(finer.columns, 180u);
    EXPECT_EQ(finer.rowSpacing, 0.5);
    ExpectNear(FirstPixel(finer), {5, 6, 7}, 0, "first pixel");
    EXPECT_EQ(WithPixelSize(plane, 7).rows, 22u); // 150 / 7 = 21.4
    EXPECT_EQ(WithPixelSize(plane, 1000).rows, 1u);
    EXPECT_TRUE(Contains(ErrorOf([&] { WithPixelSize(plane, 0.001); }, ErrorKind::Usage), "90000 x 150000 pixels"));
    EXPECT_TRUE(Contains(ErrorOf([&] { WithPixelSize(plane, 0); }, ErrorKind::Usage), "above 0"));
}

TEST(Plane, DirectionsBecomeUnitVectorsAtRightAngles)
{
    PnImageParam plane = PlaneOf(10, 10, 1, 1, {3, 4, 0}, {0.0005, 0, -5}, {0, 0, 0});
    CheckPlane(plane);
    ExpectNear(RowDirection(plane), {0.6, 0.8, 0}, 1e-12, "row");
    EXPECT_NEAR(Dot(RowDirection(plane), ColumnDirection(plane)), 0, 1e-15);
    EXPECT_NEAR(Length(ColumnDirection(plane)), 1, 1e-15);
}

TEST(Plane, RefusalsSayWhatIsWrong)
{
    const auto refusal = [](PnImageParam plane) { return ErrorOf([&] { CheckPlane(plane); }, ErrorKind::Usage); };
    const PnImageParam good = PlaneOf(10, 10, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, 0});
    EXPECT_EQ(refusal(good), "no error");
    PnImageParam bad = good;
    bad.columnDirection[0] = 1;
    EXPECT_TRUE(Contains(refusal(bad), "45 degrees"));
    bad = good;
    bad.rowDirection[0] = 0;
    EXPECT_TRUE(Contains(refusal(bad), "zero"));
    bad = good;
    bad.rowDirection[0] = NAN;
    EXPECT_TRUE(Contains(refusal(bad), "directions"));
    bad = good;
    bad.rowSpacing = -1;
    EXPECT_TRUE(Contains(refusal(bad), "above 0"));
    bad = good;
    bad.rows = 0;
    EXPECT_TRUE(Contains(refusal(bad), "1 to 32768"));
}

TEST(Plane, TheSampledExtentOfATiltedGridEndsWithinItsCorners)
{
    Grid grid;
    grid.sizeX = 11;
    grid.sizeY = 21;
    grid.sizeZ = 5;
    grid.spacing = {1, 2, 3};
    grid.rowDirection = {1, 0, 0};
    grid.columnDirection = {0, 0.8, 0.6};
    grid.sliceDirection = {0, 0, 1};
    // Corners at z from 0 to 40 * 0.6 + 12, each end 1.1 * (2 * 0.6 + 3) further in.
    const Extent extent = SampledExtent(grid, {0, 0, 10}, {0, 0, 1});
    EXPECT_NEAR(extent.low, -10 + 4.62, 1e-12);
    EXPECT_NEAR(extent.high, 26 - 4.62, 1e-12);
    EXPECT_NEAR(SampledExtent(grid, {0, 0, 0}, {1, 0, 0}).high, 8.9, 1e-12);
    grid.sizeZ = 3;
    EXPECT_GT(SampledExtent(grid, {0, 0, 0}, {1, 0, 0}).low, 1e9);
}
} // namespace
} // namespace corvane::host
