#include "corvane/Render3D.h"

#include "scenes.h"
#include "tests/mpr/random_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>

// Things in space look as they are, however a volume stores them.
namespace corvane::tests
{
namespace
{
using core::Vec3d;

TestImage Drawn(const KsVolumeData& volume, const KsVolumeMark& mark, const VolumePalette& palette,
                const PnImageParam& param)
{
    Render3D render;
    EXPECT_TRUE(render.InitData(volume, mark, palette));
    TestImage image(param);
    EXPECT_TRUE(render.ImagingVR(&image.image, 0));
    return image;
}

// The greatest difference of a channel, pixels that nobody drew counting as 0.
int GreatestDifference(const TestImage& a, const TestImage& b)
{
    int greatest = 0;
    for (size_t pixel = 0; pixel < a.pixels.size(); ++pixel)
        for (int shift = 0; shift < 32; shift += 8)
        {
            const uint32_t first = a.pixels[pixel] == kUntouched ? 0 : a.pixels[pixel];
            const uint32_t second = b.pixels[pixel] == kUntouched ? 0 : b.pixels[pixel];
            greatest = std::max(greatest, std::abs(int(first >> shift & 255) - int(second >> shift & 255)));
        }
    return greatest;
}

double Mean(const TestImage& image)
{
    double sum = 0;
    for (const uint32_t pixel : image.pixels)
        sum += pixel == kUntouched ? 0 : double(pixel & 255);
    return sum / double(image.pixels.size());
}

// A lump without any symmetry, soft enough that a sample may lie a rounding error aside.
double Lump(double x, double y, double z)
{
    return 900 - 1.2 * ((x - 14) * (x - 14) + 2 * (y - 17) * (y - 17) + 1.5 * (z - 15) * (z - 15)) + 40 * std::sin(x) +
           30 * std::cos(0.7 * y + 0.3 * z);
}

TestPalette SoftPalette()
{
    TestPalette palette;
    palette.Add(
        0, 300, 1100, [](int value) { return float(value - 300) * 0.0004f; },
        [](int value) {
            return Colour{uint8_t(60 + value / 8), uint8_t(200 - value / 10), uint8_t(40 + value / 16)};
        },
        {0.2f, 0.6f, 0.1f});
    return palette;
}

// Looks at the middle of a 33 mm cube from a direction.
PnImageParam ViewFrom(Random& random)
{
    const RandomFrame frame = MakeRandomFrame(random);
    PnImageParam param = {48, 52, 0.8, 0.75, {}, {}, {}};
    std::copy_n(frame.row, 3, param.rowDirection);
    std::copy_n(frame.column, 3, param.columnDirection);
    const Vec3d position = Vec3d{16, 16, 16} - 40.0 * core::VecOf(frame.normal) - 0.375 * 51 * core::VecOf(frame.row) -
                           0.4 * 47 * core::VecOf(frame.column);
    core::Store(position, param.position);
    return param;
}

// A quarter turn about an axis of patient space through the middle of the cube.
Vec3d Turned(Vec3d v, int axis)
{
    return axis == 0 ? Vec3d{v.x, -v.z, v.y} : axis == 1 ? Vec3d{v.z, v.y, -v.x} : Vec3d{-v.y, v.x, v.z};
}

template <class Real>
void Turn(Real* numbers, int axis)
{
    const Vec3d turned = Turned({double(numbers[0]), double(numbers[1]), double(numbers[2])}, axis);
    numbers[0] = Real(turned.x);
    numbers[1] = Real(turned.y);
    numbers[2] = Real(turned.z);
}
} // namespace

// A volume and its camera turned together.
TEST(PhysicalSpace, AQuarterTurnOfVolumeAndCameraChangesNothing)
{
    const TestPalette palette = SoftPalette();
    for (uint32_t seed = 0; seed < 12; ++seed)
    {
        Random random(seed);
        TestVolume volume = MakeVolume(33, 33, 33, [](int i, int j, int k) { return int(Lump(i, j, k)); });
        PnImageParam param = ViewFrom(random);
        const TestImage before = Drawn(volume.data, {}, palette.palette, param);
        EXPECT_GT(Mean(before), 20);
        const int axis = int(seed % 3);
        for (float* direction : {volume.data.rowDirection, volume.data.columnDirection, volume.data.sliceDirection})
            Turn(direction, axis);
        for (double* vector : {param.rowDirection, param.columnDirection, param.position})
            Turn(vector, axis);
        EXPECT_LE(GreatestDifference(Drawn(volume.data, {}, palette.palette, param), before), 1) << seed;
    }
}

// The same thing in space, with the volume's axes stored in another order or the other way round. Sizes of one more
// than whole blocks keep the cells in their places.
TEST(PhysicalSpace, TheOrderInWhichVoxelsAreStoredChangesNothing)
{
    const TestPalette palette = SoftPalette();
    for (uint32_t seed = 0; seed < 12; ++seed)
    {
        Random random(seed);
        const PnImageParam param = ViewFrom(random);
        const TestVolume volume = MakeVolume(33, 33, 33, [](int i, int j, int k) { return int(Lump(i, j, k)); });
        const TestImage before = Drawn(volume.data, {}, palette.palette, param);
        // Index (i, j, k) of the other volume lies at patient (x, y, z).
        const int turn = int(seed % 4);
        const auto place = [turn](int i, int j, int k)
        {
            return turn == 0   ? Vec3d{double(32 - j), double(i), double(k)}  // a quarter turn about z
                   : turn == 1 ? Vec3d{double(k), double(j), double(32 - i)}  // about y
                   : turn == 2 ? Vec3d{double(j), double(k), double(i)}       // all axes exchanged
                               : Vec3d{double(32 - i), double(j), double(k)}; // a mirrored order
        };
        TestVolume other = MakeVolume(33, 33, 33,
                                      [&](int i, int j, int k)
                                      {
                                          const Vec3d p = place(i, j, k);
                                          return int(Lump(p.x, p.y, p.z));
                                      });
        core::Store(core::ToFloat(place(0, 0, 0)), other.data.origin);
        core::Store(core::ToFloat(place(1, 0, 0) - place(0, 0, 0)), other.data.rowDirection);
        core::Store(core::ToFloat(place(0, 1, 0) - place(0, 0, 0)), other.data.columnDirection);
        core::Store(core::ToFloat(place(0, 0, 1) - place(0, 0, 0)), other.data.sliceDirection);
        EXPECT_LE(GreatestDifference(Drawn(other.data, {}, palette.palette, param), before), 1) << seed;
    }
}

// A ball of 12 mm in grids of all kinds, seen from everywhere.
TEST(PhysicalSpace, ABallIsADiscOfItsSizeInItsPlace)
{
    const Vec3d centre = {31, -17, 202};
    const double radius = 12;
    for (uint32_t seed = 0; seed < 40; ++seed)
    {
        SCOPED_TRACE(seed);
        Random random(seed);
        KsVolumeData grid = {};
        PlaceAtRandom(random, grid);
        for (float& spacing : grid.spacing)
            spacing = float(random.Real(0.6, 1.6));
        grid.sizeX = grid.sizeY = grid.sizeZ = 2;
        // As many voxels as the ball needs, its centre in the middle.
        const Vec3d axes[3] = {core::ToDouble(core::VecOf(grid.rowDirection)),
                               core::ToDouble(core::VecOf(grid.columnDirection)),
                               core::ToDouble(core::VecOf(grid.sliceDirection))};
        int sizes[3];
        Vec3d origin = centre;
        for (int axis = 0; axis < 3; ++axis)
        {
            sizes[axis] = 2 * int(std::ceil(1.5 * radius / double(grid.spacing[axis]))) + 8;
            origin = origin - 0.5 * sizes[axis] * double(grid.spacing[axis]) * axes[axis];
        }
        core::Store(core::ToFloat(origin), grid.origin);
        TestVolume volume = MakeVolume(sizes[0], sizes[1], sizes[2],
                                       [&](int i, int j, int k)
                                       {
                                           const double index[3] = {double(i), double(j), double(k)};
                                           double place[3];
                                           PatientPlace(grid, index, place);
                                           const double away = core::Length(core::VecOf(place) - centre);
                                           return int(std::max(-5000.0, 1000 + 200 * (radius - away)));
                                       });
        grid.slices = volume.data.slices;
        grid.sizeX = sizes[0];
        grid.sizeY = sizes[1];
        grid.sizeZ = sizes[2];
        TestPalette palette;
        palette.AddOpaqueFrom(0, 1000, {200, 200, 200});

        const RandomFrame frame = MakeRandomFrame(random);
        const double spacing = 0.4, aside = random.Real(-3, 3), down = random.Real(-3, 3);
        PnImageParam param = {81, 91, spacing, spacing, {}, {}, {}};
        std::copy_n(frame.row, 3, param.rowDirection);
        std::copy_n(frame.column, 3, param.columnDirection);
        const Vec3d position = centre - 60.0 * core::VecOf(frame.normal) -
                               (45 * spacing + aside) * core::VecOf(frame.row) -
                               (40 * spacing + down) * core::VecOf(frame.column);
        core::Store(position, param.position);
        const TestImage image = Drawn(grid, {}, palette.palette, param);

        double count = 0, columnSum = 0, rowSum = 0, farthest = 0;
        const double centreColumn = 45 + aside / spacing, centreRow = 40 + down / spacing;
        for (int row = 0; row < 81; ++row)
            for (int column = 0; column < 91; ++column)
            {
                if (image.At(row, column) != PixelOf(255, {200, 200, 200}))
                    continue;
                ++count;
                columnSum += column;
                rowSum += row;
                farthest = std::max(farthest, std::hypot(column - centreColumn, row - centreRow));
            }
        ASSERT_GT(count, 0);
        EXPECT_NEAR(columnSum / count, centreColumn, 0.5);
        EXPECT_NEAR(rowSum / count, centreRow, 0.5);
        EXPECT_NEAR(std::sqrt(count / std::numbers::pi), radius / spacing, 0.5);
        EXPECT_NEAR(farthest, radius / spacing, 0.75); // a disc has no corners; half a pixel's diagonal
    }
}

// A cube with a colour for each face, as labels: seen from the six sides of a patient.
TEST(PhysicalSpace, ACubeHasLeftRightUpAndDownWhereTheyAre)
{
    const TestVolume volume = MakeVolume(40, 40, 40,
                                         [](int i, int j, int k) {
                                             return std::min({i, j, k}) >= 10 && std::max({i, j, k}) <= 29 ? 1000 : 0;
                                         });
    // Label 1 + 2 * axis on the lower side of an axis and 2 + 2 * axis on the upper one, three voxels deep.
    const TestLabels labels = MakeLabels(40, 40, 40,
                                         [](int i, int j, int k)
                                         {
                                             const int index[3] = {i, j, k};
                                             for (int axis = 0; axis < 3; ++axis)
                                                 if (index[axis] < 13 || index[axis] > 26)
                                                     return 1 + 2 * axis + (index[axis] > 26 ? 1 : 0);
                                             return 0;
                                         });
    TestPalette palette;
    const auto colourOf = [](int label) { return Colour{uint8_t(30 * label), uint8_t(250 - 20 * label), 77}; };
    for (int label = 0; label < 7; ++label)
        palette.AddOpaqueFrom(label, 500, colourOf(label));
    const Vec3d axes[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int along = 0; along < 3; ++along)
        for (const int sign : {1, -1})
        {
            // Rows and columns such that row x column is the viewing direction.
            const int across = (along + 1) % 3, down = (along + 2) % 3;
            PnImageParam param = {40, 40, 1, 1, {}, {}, {}};
            core::Store(double(sign) * axes[across], param.rowDirection);
            core::Store(axes[down], param.columnDirection);
            Vec3d position = sign > 0 ? -30.0 * axes[along] : 70.0 * axes[along] + 39.0 * axes[across];
            core::Store(position, param.position);
            const TestImage image = Drawn(volume.data, labels.mark, palette.palette, param);
            const auto expect = [&](int row, int column, int axis, bool upper)
            {
                EXPECT_EQ(image.At(row, column), PixelOf(255, colourOf(1 + 2 * axis + (upper ? 1 : 0))))
                    << "axis " << along << ", sign " << sign << ", row " << row << ", column " << column;
            };
            // The near face hides the far one; lower axes win where faces meet.
            expect(20, 20, along, sign < 0);
            if (across < along)
            {
                expect(20, 11, across, sign < 0);
                expect(20, 28, across, sign > 0);
            }
            if (down < along)
            {
                expect(11, 20, down, false);
                expect(28, 20, down, true);
            }
            EXPECT_EQ(image.At(20, 32) == kUntouched ? 0 : image.At(20, 32), 0u);
        }
}

// What is nearer hides what is farther, from both sides.
TEST(PhysicalSpace, NearThingsHideFarOnes)
{
    const TestVolume volume = MakeVolume(
        30, 30, 30,
        [](int i, int, int k) { return (k >= 5 && k <= 8 && i < 20) || (k >= 20 && k <= 23 && i >= 10) ? 1000 : 0; });
    const TestLabels labels = MakeLabels(30, 30, 30, [](int, int, int k) { return k < 15 ? 0 : 1; });
    TestPalette palette;
    palette.AddOpaqueFrom(0, 500, {200, 0, 0});
    palette.AddOpaqueFrom(1, 500, {0, 200, 0});
    const uint32_t red = PixelOf(255, {200, 0, 0}), green = PixelOf(255, {0, 200, 0});
    const TestImage fromFeet =
        Drawn(volume.data, labels.mark, palette.palette, {30, 30, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, -20}});
    const TestImage fromHead =
        Drawn(volume.data, labels.mark, palette.palette, {30, 30, 1, 1, {-1, 0, 0}, {0, 1, 0}, {29, 0, 50}});
    const TestImage between =
        Drawn(volume.data, labels.mark, palette.palette, {30, 30, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, 14}});
    for (int x = 4; x <= 25; ++x)
    {
        EXPECT_EQ(fromFeet.At(15, x), x < 20 ? red : green) << x;
        EXPECT_EQ(fromHead.At(15, 29 - x), x >= 10 ? green : red) << x;
        const uint32_t pixel = between.At(15, x);
        EXPECT_EQ(pixel == kUntouched ? 0 : pixel, x >= 10 ? green : 0u) << x;
    }
}
} // namespace corvane::tests
