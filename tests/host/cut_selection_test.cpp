#include "host/cut_selection.h"
#include "host/label_byte.h"
#include "host/plane.h"
#include "host/view.h"
#include "read_testing.h"

#include <random>

namespace corvane::host
{
namespace
{
Volume VolumeOf(const Grid& grid)
{
    Volume volume;
    volume.grid = grid;
    volume.voxels.assign(grid.VoxelCount(), 100);
    return volume;
}

// A grid whose voxels are square in the plane of the slices.
Grid SquareGrid(int sizeX, int sizeY, int sizeZ, double tiltDegrees)
{
    Grid grid = ObliqueGrid(sizeX, sizeY, sizeZ, tiltDegrees);
    grid.spacing = {0.75, 0.75, 2.5};
    return grid;
}

CutLimits AllLabels()
{
    CutLimits limits = {};
    limits.labels.fill(true);
    return limits;
}

Vec3 Middle(const Grid& grid)
{
    return IndexToPatient(grid, {0.5 * (grid.sizeX - 1), 0.5 * (grid.sizeY - 1), 0.5 * (grid.sizeZ - 1)});
}

// A picture of a grid from an odd direction, with nothing drawn on it.
DrawnRegion EmptyPicture(const Grid& grid, double azimuth, double elevation, uint32_t rows, uint32_t columns)
{
    const View view = Turned(NamedView("anterior"), azimuth, elevation, 12);
    const Vec3 right = RightOf(view), down = DownOf(view);
    const double size = FittingPixelSize({view}, CornersOf(grid), rows, columns);
    const Vec3 first =
        Middle(grid) - 500.0 * view.direction - (0.5 * columns * size) * right - (0.5 * rows * size) * down;
    return {
        {rows, columns, size, size, {right.x, right.y, right.z}, {down.x, down.y, down.z}, {first.x, first.y, first.z}},
        std::vector<uint8_t>(size_t(rows) * columns)};
}

// How far a point lies from the line of sight through another one.
double FromLineOfSight(const PnImageParam& plane, Vec3 through, Vec3 point)
{
    const Vec3 sight = Unit(Cross(RowDirection(plane), ColumnDirection(plane)));
    return Length(Cross(point - through, sight));
}

// Draws a disc of `radius` mm about where a point is seen.
void DrawDisc(DrawnRegion& region, Vec3 about, double radius)
{
    for (uint32_t row = 0; row < region.plane.rows; ++row)
        for (uint32_t column = 0; column < region.plane.columns; ++column)
            if (FromLineOfSight(region.plane, about, PixelToPatient(region.plane, row, column)) < radius)
                region.pixels[size_t(row) * region.plane.columns + column] = 1;
}

Vec3 PointOf(const Grid& grid, size_t voxel)
{
    const size_t x = size_t(grid.sizeX), slice = grid.VoxelsPerSlice();
    return grid.origin + double(voxel % x) * grid.spacing.x * grid.rowDirection +
           double(voxel % slice / x) * grid.spacing.y * grid.columnDirection +
           double(voxel / slice) * grid.spacing.z * grid.sliceDirection;
}

// Expects exactly the voxels of a cylinder along the line of sight to be selected; those within half a pixel's
// diagonal of its surface may or may not be.
void ExpectCylinder(const Grid& grid, const DrawnRegion& region, const std::vector<uint8_t>& selected, double radius)
{
    const double doubt = 0.5 * std::numbers::sqrt2 * region.plane.columnSpacing + 1e-9;
    size_t inside = 0, wrong = 0;
    for (size_t voxel = 0; voxel < selected.size(); ++voxel)
    {
        const double distance = FromLineOfSight(region.plane, Middle(grid), PointOf(grid, voxel));
        inside += distance < radius;
        wrong += std::fabs(distance - radius) > doubt && (distance < radius) != (selected[voxel] != 0);
    }
    EXPECT_GT(inside, 500u);
    EXPECT_EQ(wrong, 0u);
}

TEST(CutSelection, TakesTheVoxelsOfACylinderBehindADisc)
{
    constexpr double kRadius = 9;
    for (const double tilt : {0.0, 18.0})
    {
        const Grid unequal = ObliqueGrid(40, 30, 20, tilt), square = SquareGrid(40, 30, 20, tilt);
        for (const Grid& grid : {unequal, square})
        {
            const Volume volume = VolumeOf(grid);
            CutSelection selection(volume);
            for (const double azimuth : {0.0, 35.0, 90.0, 200.0})
            {
                DrawnRegion region = EmptyPicture(grid, azimuth, 25, 400, 500);
                DrawDisc(region, Middle(grid), kRadius);
                selection.Select(region, CutSide::Inside, AllLabels());
                ExpectCylinder(grid, region, selection.Selected(), kRadius);
            }
        }
    }
}

TEST(CutSelection, LeavesTheLibraryOutWhereItsSpacingsAreExchanged)
{
    const Grid unequal = ObliqueGrid(40, 30, 20, 0), square = SquareGrid(40, 30, 20, 18);
    const Volume volume = VolumeOf(unequal), squareVolume = VolumeOf(square);
    DrawnRegion region = EmptyPicture(unequal, 35, 25, 400, 500);
    CutSelection selection(volume), squareSelection(squareVolume);
    EXPECT_FALSE(selection.LibraryIsExact(region.plane));
    EXPECT_TRUE(squareSelection.LibraryIsExact(region.plane));
    DrawDisc(region, Middle(unequal), 9);
    selection.SelectByVoxel(region, CutSide::Inside, AllLabels());
    const std::vector<uint8_t> exact = selection.Selected();
    selection.SelectByLibrary(region, CutSide::Inside, AllLabels());
    EXPECT_NE(selection.Selected(), exact);
    selection.Select(region, CutSide::Inside, AllLabels());
    EXPECT_EQ(selection.Selected(), exact);
    region.plane.rowSpacing *= 2;
    EXPECT_FALSE(squareSelection.LibraryIsExact(region.plane));
}

TEST(CutSelection, FindsTheSameVoxelsInBothWaysButForTheBordersOfPixels)
{
    std::mt19937 random(3);
    for (int round = 0; round < 12; ++round)
    {
        const Grid grid = SquareGrid(40, 33, 17, round % 3 * 9.0);
        Volume volume = VolumeOf(grid);
        for (size_t voxel = 0; voxel < grid.VoxelCount(); ++voxel)
            volume.labels.push_back(uint8_t(random() % 4 + (random() % 8 == 0 ? kCutBit : 0)));
        CutLimits limits = AllLabels();
        limits.labels[2] = false;
        DrawnRegion region = EmptyPicture(grid, 31.0 * round, 17.0 * round, 61, 83);
        region.plane.rowSpacing = region.plane.columnSpacing *= 0.6; // part of the volume lies outside the picture
        for (uint8_t& pixel : region.pixels)
            pixel = random() % 2;
        const CutSide side = round % 2 ? CutSide::Outside : CutSide::Inside;
        CutSelection selection(volume);
        selection.SelectByVoxel(region, side, limits);
        const std::vector<uint8_t> exact = selection.Selected();
        selection.SelectByLibrary(region, side, limits);
        const std::vector<uint8_t>& library = selection.Selected();
        size_t count = 0, different = 0;
        for (size_t voxel = 0; voxel < exact.size(); ++voxel)
        {
            count += exact[voxel];
            if (exact[voxel] == library[voxel])
                continue;
            ++different;
            const Vec3 offset = PointOf(grid, voxel) - FirstPixel(region.plane);
            const double column = Dot(offset, RowDirection(region.plane)) / region.plane.columnSpacing;
            const double row = Dot(offset, ColumnDirection(region.plane)) / region.plane.rowSpacing;
            const auto toBorder = [](double place) { return std::fabs(place + 0.5 - std::round(place + 0.5)); };
            EXPECT_LT(std::min(toBorder(column), toBorder(row)), 0.01) << voxel;
        }
        EXPECT_GT(count, 1000u);
        EXPECT_LT(different, 20u);
    }
}

TEST(CutSelection, TakesNothingBeforeTheFirstPixelOrBehindTheLast)
{
    // Seen from in front, a voxel for each pixel; the picture covers columns 3 to 7 and rows 2 to 5 of the voxels.
    Grid grid;
    grid.sizeX = grid.sizeZ = 12;
    grid.sizeY = 5;
    grid.spacing = {1, 1, 1};
    grid.rowDirection = {1, 0, 0};
    grid.columnDirection = {0, 1, 0};
    grid.sliceDirection = {0, 0, 1};
    const Volume volume = VolumeOf(grid);
    for (const double shift : {-0.4, 0.0, 0.4}) // of the picture; still nearest to the same voxels
    {
        const DrawnRegion region = {{4, 5, 1, 1, {1, 0, 0}, {0, 0, -1}, {3 + shift, -50, 5 + shift}},
                                    std::vector<uint8_t>(20, 1)};
        CutSelection selection(volume);
        for (const bool library : {false, true})
        {
            if (library)
                selection.SelectByLibrary(region, CutSide::Inside, AllLabels());
            else
                selection.SelectByVoxel(region, CutSide::Inside, AllLabels());
            size_t voxel = 0;
            for (int k = 0; k < 12; ++k)
                for (int j = 0; j < 5; ++j)
                    for (int i = 0; i < 12; ++i, ++voxel)
                        EXPECT_EQ(selection.Selected()[voxel], i >= 3 && i <= 7 && k >= 2 && k <= 5)
                            << i << " " << j << " " << k << " " << shift << library;
        }
    }
}

TEST(CutSelection, OutsideIsAllTheRestThatMayBeCut)
{
    for (const Grid& grid : {ObliqueGrid(20, 15, 9, 18), SquareGrid(20, 15, 9, 18)})
    {
        Volume volume = VolumeOf(grid);
        for (size_t voxel = 0; voxel < grid.VoxelCount(); ++voxel)
            volume.labels.push_back(uint8_t(voxel % 3 + (voxel % 5 == 0 ? kCutBit : 0)));
        CutLimits limits = AllLabels();
        limits.labels[1] = false;
        DrawnRegion region = EmptyPicture(grid, 35, 25, 100, 100);
        DrawDisc(region, Middle(grid), 5);
        CutSelection selection(volume);
        selection.Select(region, CutSide::Inside, limits);
        const std::vector<uint8_t> inside = selection.Selected();
        selection.Select(region, CutSide::Outside, limits);
        for (size_t voxel = 0; voxel < inside.size(); ++voxel)
        {
            const bool may = volume.labels[voxel] == 0 || volume.labels[voxel] == 2;
            EXPECT_EQ(inside[voxel] + selection.Selected()[voxel], may) << voxel;
        }
    }
}

TEST(CutSelection, KeepsTheLabelsAndAddsUpTheCuts)
{
    for (const Grid& grid : {ObliqueGrid(20, 15, 9, 18), SquareGrid(20, 15, 9, 18)})
    {
        Volume volume = VolumeOf(grid);
        for (size_t voxel = 0; voxel < grid.VoxelCount(); ++voxel)
            volume.labels.push_back(uint8_t(voxel % 64));
        std::vector<uint8_t> expected = volume.labels;
        CutSelection selection(volume);
        for (const double azimuth : {0.0, 90.0})
        {
            DrawnRegion region = EmptyPicture(grid, azimuth, 10, 100, 100);
            DrawDisc(region, Middle(grid), 4);
            selection.Select(region, CutSide::Inside, AllLabels());
            const std::vector<uint8_t> chosen = selection.Selected();
            size_t count = 0;
            for (size_t voxel = 0; voxel < chosen.size(); ++voxel)
            {
                EXPECT_FALSE(chosen[voxel] && expected[voxel] & kCutBit) << voxel; // not cut twice
                count += chosen[voxel];
                expected[voxel] |= chosen[voxel] ? kCutBit : 0;
            }
            EXPECT_GT(count, 50u);
            EXPECT_EQ(selection.Cut(), expected);
        }
        EXPECT_EQ(volume.labels[5], 5); // the volume's own labels are only read
    }
}

TEST(CutSelection, MakesLabelsWhereTheVolumeHasNone)
{
    const Grid grid = SquareGrid(20, 15, 9, 0);
    const Volume volume = VolumeOf(grid);
    DrawnRegion region = EmptyPicture(grid, 0, 0, 50, 50);
    CutSelection selection(volume);
    selection.Select(region, CutSide::Outside, AllLabels());
    EXPECT_EQ(selection.Cut(), std::vector<uint8_t>(grid.VoxelCount(), kCutBit));
}

TEST(CutSelection, StaysWithinABoxAndADepth)
{
    for (const Grid& grid : {ObliqueGrid(30, 25, 12, 18), SquareGrid(30, 25, 12, 18)})
    {
        const Volume volume = VolumeOf(grid);
        DrawnRegion region = EmptyPicture(grid, 35, 25, 100, 100);
        region.pixels.assign(region.pixels.size(), 1);
        const Vec3 middle = Middle(grid);
        const Vec3 sight = Unit(Cross(RowDirection(region.plane), ColumnDirection(region.plane)));
        const double middleDepth = Dot(middle - FirstPixel(region.plane), sight);
        CutSelection selection(volume);

        CutLimits limits = AllLabels();
        limits.box = PatientBox{middle + Vec3{4, 5, 6}, middle - Vec3{1, 2, 3}}; // corners in either order
        selection.Select(region, CutSide::Inside, limits);
        size_t count = 0;
        for (size_t voxel = 0; voxel < grid.VoxelCount(); ++voxel)
        {
            const Vec3 at = PointOf(grid, voxel) - middle;
            const bool inside = at.x >= -1 && at.x <= 4 && at.y >= -2 && at.y <= 5 && at.z >= -3 && at.z <= 6;
            ASSERT_EQ(selection.Selected()[voxel] != 0, inside) << voxel;
            count += inside;
        }
        EXPECT_GT(count, 50u);

        limits = AllLabels();
        limits.depth = {middleDepth - 2, middleDepth + 3};
        selection.Select(region, CutSide::Inside, limits);
        for (size_t voxel = 0; voxel < grid.VoxelCount(); ++voxel)
        {
            const double deep = Dot(PointOf(grid, voxel) - middle, sight);
            const bool inDoubt = std::fabs(deep + 2) < 1e-9 || std::fabs(deep - 3) < 1e-9;
            ASSERT_TRUE(inDoubt || (selection.Selected()[voxel] != 0) == (deep > -2 && deep < 3)) << voxel;
        }
    }
}
} // namespace
} // namespace corvane::host
