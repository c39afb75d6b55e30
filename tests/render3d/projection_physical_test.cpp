#include "plain_projection.h"
#include "scenes.h"
#include "tests/mpr/random_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

// Projections show things in space as they are, however a volume stores them.
namespace corvane::tests
{
namespace
{
using core::Vec3d;

TestValues Drawn(const KsVolumeData& volume, ProjectionKind kind, const PnImageParam& param,
                 float thickness = kWholeVolume)
{
    Render3D render;
    EXPECT_TRUE(render.InitData(volume, {}, {}));
    TestValues image(param);
    EXPECT_TRUE(ImagingSlab(render, kind, thickness, &image.image));
    return image;
}

// A grid of any kind with a point in its middle that holds a radius around it with some room.
KsVolumeData GridAround(Random& random, Vec3d centre, double radius)
{
    KsVolumeData grid = {};
    PlaceAtRandom(random, grid);
    const float* directions[3] = {grid.rowDirection, grid.columnDirection, grid.sliceDirection};
    int32_t* sizes[3] = {&grid.sizeX, &grid.sizeY, &grid.sizeZ};
    Vec3d origin = centre;
    for (int axis = 0; axis < 3; ++axis)
    {
        grid.spacing[axis] = float(random.Real(0.6, 1.6));
        const double spacing = double(grid.spacing[axis]);
        *sizes[axis] = 2 * int(std::ceil(1.5 * radius / spacing)) + 8;
        origin = origin - 0.5 * *sizes[axis] * spacing * core::ToDouble(core::VecOf(directions[axis]));
    }
    core::Store(core::ToFloat(origin), grid.origin);
    return grid;
}

// Stored values by patient position.
template <class Value>
TestVolume Filled(const KsVolumeData& grid, const Value& value)
{
    TestVolume volume = MakeVolume(grid.sizeX, grid.sizeY, grid.sizeZ,
                                   [&](int i, int j, int k)
                                   {
                                       const double index[3] = {double(i), double(j), double(k)};
                                       double place[3];
                                       PatientPlace(grid, index, place);
                                       return int(value(core::VecOf(place)));
                                   });
    const int16_t* const* slices = volume.data.slices;
    volume.data = grid;
    volume.data.slices = slices;
    return volume;
}

// Looks at a point from a direction; the point is in the middle, moved by some pixels.
PnImageParam ViewOf(const RandomFrame& frame, Vec3d centre, double spacing, double column, double row, double away)
{
    PnImageParam param = {81, 91, spacing, spacing, {}, {}, {}};
    std::copy_n(frame.row, 3, param.rowDirection);
    std::copy_n(frame.column, 3, param.columnDirection);
    core::Store(centre - away * core::VecOf(frame.normal) - column * spacing * core::VecOf(frame.row) -
                    row * spacing * core::VecOf(frame.column),
                param.position);
    return param;
}

struct Disc
{
    double count = 0, column = 0, row = 0, farthest = 0;
};

// The pixels that are chosen: how many, their middle, and how far from a centre they reach.
template <class Chosen>
Disc DiscOf(const TestValues& image, double centreColumn, double centreRow, const Chosen& chosen)
{
    Disc disc;
    for (int row = 0; row < int(image.image.param.rows); ++row)
        for (int column = 0; column < int(image.image.param.columns); ++column)
            if (chosen(image.At(row, column)))
            {
                ++disc.count;
                disc.column += column;
                disc.row += row;
                disc.farthest = std::max(disc.farthest, std::hypot(column - centreColumn, row - centreRow));
            }
    disc.column /= disc.count;
    disc.row /= disc.count;
    return disc;
}

// The longest way across a voxel of a tilted grid, mm.
double LongestDiagonal(const KsVolumeData& grid)
{
    double longest = 0;
    const Vec3d axes[3] = {double(grid.spacing[0]) * core::ToDouble(core::VecOf(grid.rowDirection)),
                           double(grid.spacing[1]) * core::ToDouble(core::VecOf(grid.columnDirection)),
                           double(grid.spacing[2]) * core::ToDouble(core::VecOf(grid.sliceDirection))};
    for (const double y : {1.0, -1.0})
        for (const double z : {1.0, -1.0})
            longest = std::max(longest, core::Length(axes[0] + y * axes[1] + z * axes[2]));
    return longest;
}

// Trilinear interpolation in double precision; inside the volume.
double Between(const KsVolumeData& volume, Vec3d index)
{
    const int x = int(index.x), y = int(index.y), z = int(index.z);
    double sum = 0;
    for (int corner = 0; corner < 8; ++corner)
    {
        const int dx = corner & 1, dy = corner >> 1 & 1, dz = corner >> 2;
        const double weight = (dx ? index.x - x : x + 1 - index.x) * (dy ? index.y - y : y + 1 - index.y) *
                              (dz ? index.z - z : z + 1 - index.z);
        sum += weight * volume.slices[z + dz][(y + dy) * volume.sizeX + x + dx];
    }
    return sum;
}
} // namespace

// A ball of 12 mm, brighter, or darker, towards its middle, in grids of all kinds, seen from everywhere. The coarse
// pass takes the nearest voxel: a few pixels beside the ball may show one that lies in it.
TEST(ProjectionInSpace, ABallIsADiscOfItsSizeInItsPlace)
{
    const Vec3d centre = {31, -17, 202};
    const double radius = 12, spacing = 0.4;
    for (uint32_t seed = 0; seed < 40; ++seed)
        for (const double contrast : {1.0, -1.0})
        {
            SCOPED_TRACE(testing::Message() << seed << ", contrast " << contrast);
            Random random(seed);
            const TestVolume volume =
                Filled(GridAround(random, centre, radius),
                       [&](Vec3d place)
                       {
                           const double away = core::Length(place - centre);
                           return 1000 + contrast * std::clamp(200 * (radius - away), -2000.0, 3000.0);
                       });
            const double centreColumn = 45 + random.Real(-7, 7), centreRow = 40 + random.Real(-7, 7);
            const PnImageParam param = ViewOf(MakeRandomFrame(random), centre, spacing, centreColumn, centreRow, 60);
            const bool bright = contrast > 0;
            const TestValues image =
                Drawn(volume.data, bright ? ProjectionKind::Maximum : ProjectionKind::Minimum, param);
            const Disc disc =
                DiscOf(image, centreColumn, centreRow,
                       [&](int value) { return bright ? value >= 1000 : value != kBackground && value <= 1000; });
            ASSERT_GT(disc.count, 0);
            EXPECT_NEAR(disc.column, centreColumn, 0.5);
            EXPECT_NEAR(disc.row, centreRow, 0.5);
            EXPECT_NEAR(std::sqrt(disc.count / std::numbers::pi), radius / spacing, 0.75);
            EXPECT_GE(disc.farthest, radius / spacing - 1.5);
            EXPECT_LE(disc.farthest, (radius + 0.5 * LongestDiagonal(volume.data)) / spacing);
        }
}

// The chord of a ray through a ball, and so the mean along it, is longest in the middle and falls to nothing.
TEST(ProjectionInSpace, AnAverageOfABallIsItsChord)
{
    // Along an axis of a box of known depth: samples of 1 mm from 1.01 to n - 2.01.
    const double radius = 20;
    const int size = 64, samples = size - 3;
    const TestVolume volume =
        MakeVolume(size, size, size,
                   [&](int i, int j, int k) { return std::hypot(i - 31.5, j - 31.5, k - 31.5) <= radius ? 10000 : 0; });
    const PnImageParam views[3] = {{60, 60, 1, 1, {1, 0, 0}, {0, 1, 0}, {2, 2, -10}},
                                   {60, 60, 1, 1, {0, 1, 0}, {0, 0, 1}, {-10, 2, 2}},
                                   {60, 60, 1, 1, {1, 0, 0}, {0, 0, -1}, {2, -10, 61}}};
    for (const PnImageParam& param : views)
    {
        const TestValues image = Drawn(volume.data, ProjectionKind::Average, param);
        for (int row = 0; row < 60; ++row)
            for (int column = 0; column < 60; ++column)
            {
                // Voxel centres lie at half millimetres from the ball's middle.
                const double aside = std::hypot(column - 29.5, row - 29.5);
                int inside = 0;
                for (double along = -31.5; along <= 31.5; along += 1)
                    inside += std::hypot(along, aside) <= radius;
                EXPECT_EQ(image.At(row, column), 10000 * inside / samples) << row << ", " << column;
            }
    }
}

// Two balls at different depths, and slabs that hold the one, the other, both or none, measured in millimetres whatever
// the grid.
TEST(ProjectionInSpace, ASlabShowsWhatLiesInItAndNothingElse)
{
    for (uint32_t seed = 0; seed < 30; ++seed)
    {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Vec3d middle = random.Vector(-300, 300);
        const KsVolumeData grid = GridAround(random, middle, 16);
        const RandomFrame frame = MakeRandomFrame(random);
        const Vec3d normal = core::VecOf(frame.normal);
        const Vec3d near = middle - 9.0 * normal, far = middle + 9.0 * normal;
        const TestVolume volume = Filled(grid,
                                         [&](Vec3d place)
                                         {
                                             if (core::Length(place - near) < 5)
                                                 return 1000;
                                             return core::Length(place - far) < 5 ? 2000 : 0;
                                         });
        const auto brightest = [&](double from, double thickness)
        {
            // From a plane so many millimetres from the middle.
            const PnImageParam param = ViewOf(frame, middle, 0.4, 45, 40, -from);
            return Drawn(volume.data, ProjectionKind::Maximum, param, float(thickness)).At(40, 45);
        };
        // A slab is some voxels long, whatever its direction; balls are 5 mm, and values reach 1.6 mm further.
        const double before = -9 - 5 - 3, between = 0, behind = 9 + 5 + 3;
        EXPECT_EQ(brightest(before, between - before), 1000);
        EXPECT_EQ(brightest(before, behind - before), 2000);
        EXPECT_EQ(brightest(between, behind), 2000);
        EXPECT_LE(brightest(-1, 2), 0);
        EXPECT_EQ(brightest(-200, 80), kBackground);
    }
}

// A linear field is interpolated to itself: the maximum along a ray lies at its end, and a step before it at most.
TEST(ProjectionInSpace, TheMaximumOfALinearFieldIsItsValueWhereTheRayEnds)
{
    for (uint32_t seed = 0; seed < 40; ++seed)
    {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Vec3d middle = random.Vector(-100, 100);
        const KsVolumeData grid = GridAround(random, middle, 12);
        const RandomFrame frame = MakeRandomFrame(random);
        const Vec3d normal = core::VecOf(frame.normal);
        const TestVolume volume =
            Filled(grid, [&](Vec3d place) { return std::lround(5000 + 100 * core::Dot(place - middle, normal)); });
        core::VolumeGeometry geometry = {};
        core::PrepareVolumeGeometry(volume.data, geometry);
        // Steps are measured along the axes as if these were at right angles: the smallest spacing without a tilt.
        const Vec3d voxels = core::PatientToIndexStep(geometry, normal);
        const double step = double(geometry.minSpacing) / std::hypot(voxels.x * double(grid.spacing[0]),
                                                                     voxels.y * double(grid.spacing[1]),
                                                                     voxels.z * double(grid.spacing[2]));
        // From 3 mm before the middle as far as 3.5 mm: between 5050 less a step and 5050. Ten of these steps are
        // always longer, so the coarse pass has its only sample at the start. Stored values and results are whole
        // numbers.
        const PnImageParam param = ViewOf(frame, middle, 0.4, 45, 40, 3);
        const int value = Drawn(volume.data, ProjectionKind::Maximum, param, 3.5f).At(40, 45);
        EXPECT_GE(value, 5050 - 100 * step - 2);
        EXPECT_LE(value, 5052);
    }
}

// Skipping loses nothing that matters: what a skipped block holds lies below what has been found, and elsewhere samples
// lie within a step. So a maximum is at most one step's rise below that of the whole ray, and a nearest voxel's
// distance above it.
TEST(ProjectionInSpace, AMaximumIsThatOfTheWholeRayWithinAStep)
{
    const int size = 40;
    for (uint32_t seed = 0; seed < 12; ++seed)
    {
        SCOPED_TRACE(seed);
        Random random(seed);
        const double phase = random.Real(0, 6), wave = random.Real(0.15, 0.4);
        const TestVolume volume = MakeVolume(size, size, size,
                                             [&](int i, int j, int k) {
                                                 return 2000 + 400 * (std::sin(wave * i + phase) + std::cos(wave * j) +
                                                                      std::sin(wave * (k + 0.5 * i)));
                                             });
        // The steepest rise along each axis bounds the slope of what lies between the voxels.
        double steepest[3] = {};
        for (int k = 0; k + 1 < size; ++k)
            for (int j = 0; j + 1 < size; ++j)
                for (int i = 0; i + 1 < size; ++i)
                {
                    const int16_t* at = volume.data.slices[k] + j * size + i;
                    steepest[0] = std::max(steepest[0], std::abs(double(at[1] - at[0])));
                    steepest[1] = std::max(steepest[1], std::abs(double(at[size] - at[0])));
                    steepest[2] =
                        std::max(steepest[2], std::abs(double(volume.data.slices[k + 1][j * size + i] - at[0])));
                }
        const double slope = std::hypot(steepest[0], steepest[1], steepest[2]);
        const double aside = 0.5 * (steepest[0] + steepest[1] + steepest[2]); // to the nearest voxel
        const Vec3d middle = {19.5, 19.5, 19.5};
        const RandomFrame frame = MakeRandomFrame(random);
        PnImageParam param = ViewOf(frame, middle, 0.5, 20, 20, 50);
        param.rows = param.columns = 41;
        const TestValues image = Drawn(volume.data, ProjectionKind::Maximum, param);
        int compared = 0;
        for (int row = 0; row < 41; ++row)
            for (int column = 0; column < 41; ++column)
            {
                const Vec3d start = core::VecOf(param.position) + 0.5 * column * core::VecOf(frame.row) +
                                    0.5 * row * core::VecOf(frame.column);
                double greatest = -1e9;
                for (double t = 0; t < 100; t += 0.05)
                {
                    const Vec3d place = start + t * core::VecOf(frame.normal);
                    const auto inside = [&](double x) { return x >= 1.01 && x <= size - 2.01; };
                    if (inside(place.x) && inside(place.y) && inside(place.z))
                        greatest = std::max(greatest, Between(volume.data, place));
                }
                if (greatest < 0)
                    continue;
                ++compared;
                ASSERT_GE(image.At(row, column), greatest - 1.002 * slope - 1) << row << ", " << column;
                ASSERT_LE(image.At(row, column), greatest + std::max(aside, 0.05 * slope) + 1) << row << ", " << column;
            }
        EXPECT_GT(compared, 1000);
    }
}
} // namespace corvane::tests
