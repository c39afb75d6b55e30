#include "render3d/volume_rendering.h"

#include "corvane/Render3D.h"
#include "plain_ray_caster.h"
#include "scenes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

// Whole frames of parallel rays.
namespace corvane::tests
{
namespace
{
// What a renderer would draw with each of the kernels that this machine runs.
void ExpectFromAllKernels(const Scene& scene, const TestImage& expected)
{
    render3d::VolumeSlot slot;
    ASSERT_TRUE(render3d::LoadSlot(scene.volume.data, scene.labels.mark, slot));
    render3d::UpdateSlot(slot, scene.palette.palette);
    for (const render3d::KernelTable* kernels : render3d::AvailableKernels())
    {
        SCOPED_TRACE(kernels->instructionSet);
        TestImage image(expected.image.param);
        render3d::RenderVolume(slot, scene.palette.palette, {}, image.image, *kernels);
        ExpectSamePixels(image, expected);
    }
}

TestImage Drawn(const Scene& scene, const PnImageParam& param)
{
    Render3D render;
    EXPECT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
    TestImage image(param);
    EXPECT_TRUE(render.ImagingVR(&image.image, 0));
    return image;
}

TestImage DrawnPlainly(const Scene& scene, const PnImageParam& param)
{
    TestImage image(param);
    PlainRayCaster(scene.volume.data, scene.labels.mark, scene.palette.palette).DrawVolume(image.image);
    return image;
}

// Looks along +z; pixel (0, 0) lies at (x, y).
PnImageParam FrontView(double x, double y, uint32_t rows, uint32_t columns, double spacing)
{
    return {rows, columns, spacing, spacing, {1, 0, 0}, {0, 1, 0}, {x, y, -20}};
}

// A cube of 5 voxels that stands alone, voxels 6 to 10 on each axis, opaque and red.
Scene CubeScene()
{
    Scene scene;
    scene.volume = MakeVolume(20, 20, 20,
                              [](int i, int j, int k) {
                                  return std::min({i, j, k}) >= 6 && std::max({i, j, k}) <= 10 ? 1000 : 0;
                              });
    scene.palette.AddOpaqueFrom(0, 500, {200, 0, 0});
    return scene;
}
} // namespace

TEST(VolumeRendering, FramesOfRandomScenesEqualThePlainVersion)
{
    int64_t seen = 0;
    for (uint32_t seed = 0; seed < 200; ++seed)
    {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Scene scene = RandomScene(random, 4, 48);
        const PnImageParam param = RandomImagePlane(random, scene.volume.data);
        const TestImage expected = DrawnPlainly(scene, param);
        ExpectSamePixels(Drawn(scene, param), expected);
        ExpectFromAllKernels(scene, expected);
        seen += std::count_if(expected.pixels.begin(), expected.pixels.end(),
                              [](uint32_t pixel) { return pixel != 0 && pixel != kUntouched; });
    }
    EXPECT_GT(seen, 10000); // there was something to compare
}

TEST(VolumeRendering, AVisibleBoxCutsFramesAsInThePlainVersion)
{
    for (uint32_t seed = 1000; seed < 1030; ++seed)
    {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Scene scene = RandomScene(random, 10, 30);
        const PnImageParam param = RandomImagePlane(random, scene.volume.data);
        Render3D render;
        ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
        PlainRayCaster plain(scene.volume.data, scene.labels.mark, scene.palette.palette);
        float low[3], high[3];
        ASSERT_TRUE(render.GetBoundingBox(low, high));
        for (int axis = 0; axis < 3; ++axis)
        {
            const float width = high[axis] - low[axis];
            low[axis] += width * float(random.Real(-0.2, 0.5));
            high[axis] -= width * float(random.Real(-0.2, 0.4));
        }
        ASSERT_TRUE(render.SetVisibleBox(high, low));
        plain.geometry.visibleBox = {core::VecOf(low), core::VecOf(high)};
        TestImage image(param), expected(param);
        EXPECT_TRUE(render.ImagingVR(&image.image, 0));
        plain.DrawVolume(expected.image);
        ExpectSamePixels(image, expected);
    }
}

TEST(VolumeRendering, EveryWidthFillsItsPacksWithTheSamePixels)
{
    Random random(7);
    const Scene scene = RandomScene(random, 20, 24);
    PnImageParam param = RandomImagePlane(random, scene.volume.data);
    param.rows = 3;
    for (param.columns = 1; param.columns <= 19; ++param.columns)
        ExpectFromAllKernels(scene, DrawnPlainly(scene, param));
}

// Pixels lie at whole millimetres, so that a part of the image starts exactly where the whole has that pixel.
TEST(VolumeRendering, HowSlicesLieInMemoryDoesNotShow)
{
    Random random(11);
    Scene scene = RandomScene(random, 20, 24);
    const TestImage expected = DrawnPlainly(scene, RandomImagePlane(random, scene.volume.data));
    const size_t depth = size_t(scene.volume.data.sizeZ), length = scene.volume.voxels[0].size();
    // One after another, with gaps between them, last slice first, and with one slice out of its turn.
    for (int layout = 0; layout < 4; ++layout)
    {
        SCOPED_TRACE(layout);
        const size_t stride = layout == 1 ? length + 7 : length;
        std::vector<int16_t> buffer(stride * depth);
        std::vector<const int16_t*> slices(depth);
        for (size_t k = 0; k < depth; ++k)
        {
            const size_t swapped = layout == 3 && k < 2 ? 1 - k : k;
            int16_t* slice = buffer.data() + stride * (layout == 2 ? depth - 1 - k : swapped);
            std::copy(scene.volume.voxels[k].begin(), scene.volume.voxels[k].end(), slice);
            slices[k] = slice;
        }
        scene.volume.data.slices = slices.data();
        ExpectFromAllKernels(scene, expected);
    }
}

TEST(VolumeRendering, APartOfAnImageHasThePixelsOfTheWhole)
{
    Scene scene;
    scene.volume = MakeBall(40, 36, 32, 20, 17, 15, 11);
    scene.palette.Add(
        0, 500, 2500, [](int value) { return float(value) * 0.0002f; },
        [](int value) {
            return Colour{uint8_t(value), uint8_t(value / 3), 90};
        },
        {0.2f, 0.7f, 0.1f});
    const PnImageParam whole = FrontView(-4, -4, 44, 47, 1);
    const TestImage image = Drawn(scene, whole);
    for (const uint32_t rows : {1u, 2u, 7u, 30u})
        for (const uint32_t columns : {1u, 5u, 8u, 29u})
        {
            PnImageParam part = whole;
            part.rows = rows;
            part.columns = columns;
            part.position[0] += 11;
            part.position[1] += 9;
            const TestImage partImage = Drawn(scene, part);
            for (int row = 0; row < int(rows); ++row)
                for (int column = 0; column < int(columns); ++column)
                    ASSERT_EQ(partImage.At(row, column), image.At(row + 9, column + 11)) << row << ", " << column;
        }
    for (int repeat = 0; repeat < 5; ++repeat)
        ExpectSamePixels(Drawn(scene, whole), image);
}

// The leaf cells that hold the cube, or reach it with their upper faces, span voxels 4 to 12 on each axis.
TEST(VolumeRendering, OnlyTheProjectionOfWhatIsVisibleIsDrawn)
{
    const Scene scene = CubeScene();
    for (const double spacing : {1.0, 0.5, 2.0, 3.0})
    {
        const PnImageParam param = FrontView(-6.25, -5.25, 60, 70, spacing);
        const TestImage image = Drawn(scene, param);
        // Half a spacing in millimetres is added to a number of pixels.
        const int x0 = int(std::floor(10.25 / spacing + 0.5 * spacing));
        const int x1 = int(std::floor(18.25 / spacing + 0.5 * spacing));
        const int y0 = int(std::floor(9.25 / spacing + 0.5 * spacing));
        const int y1 = int(std::floor(17.25 / spacing + 0.5 * spacing));
        for (int row = 0; row < 60; ++row)
            for (int column = 0; column < 70; ++column)
                ASSERT_EQ(image.At(row, column) != kUntouched, row >= y0 && row <= y1 && column >= x0 && column <= x1)
                    << row << ", " << column << ", " << spacing;
    }
}

TEST(VolumeRendering, AnOpaqueCubeIsWhereItIsAndHasItsColour)
{
    const TestImage image = Drawn(CubeScene(), FrontView(0, 0, 20, 20, 1));
    for (int row = 4; row <= 12; ++row)
        for (int column = 4; column <= 12; ++column)
        {
            const bool hit = row >= 6 && row <= 10 && column >= 6 && column <= 10;
            EXPECT_EQ(image.At(row, column), hit ? PixelOf(255, {200, 0, 0}) : 0u) << row << ", " << column;
        }
}

// With steps of 0.33 mm along z and one opacity everywhere, a ray of n samples is covered by 1 - (1 - a)^n.
TEST(VolumeRendering, CoverageAndColourGrowWithTheNumberOfSamples)
{
    Scene scene;
    scene.volume = MakeVolume(12, 12, 12, [](int, int, int) { return 100; });
    const float opacity = 0.02f;
    scene.palette.Add(
        0, 0, 200, [=](int) { return opacity; },
        [](int) {
            return Colour{250, 100, 20};
        },
        {0.5f, 0.3f, 0.2f});
    const uint32_t pixel = Drawn(scene, FrontView(5.5, 5.5, 1, 1, 1)).At(0, 0);
    // From 1.01 (the box of 1.1 less 0.1 mm is wider at the start: 1.0) to 9.99 in steps of 0.33: 27 samples.
    const double left = std::pow(1 - double(opacity), 27);
    EXPECT_EQ(int(pixel & 255), int((1 - left) * 255));
    // A constant volume has no gradient: ambient light only.
    EXPECT_EQ(int(pixel >> 8 & 255), int(250 * 0.5 * (1 - left)));
    EXPECT_EQ(int(pixel >> 16 & 255), int(100 * 0.5 * (1 - left)));
    EXPECT_EQ(int(pixel >> 24), int(20 * 0.5 * (1 - left)));
}

// A ramp along z is lit fully by rays along z, and by the cosine of the angle from elsewhere, from both faces.
TEST(VolumeRendering, ASurfaceIsLitByTheCosineOfItsAngle)
{
    Scene scene;
    scene.volume = MakeVolume(60, 60, 60, [](int, int, int k) { return 100 * k; });
    scene.palette.AddOpaqueFrom(0, 2000, {200, 200, 200}, {0.1f, 0.6f, 0.0f});
    for (const double degrees : {0.0, 20.0, 40.0, 60.0, 180.0})
    {
        const double c = std::cos(degrees * std::numbers::pi / 180), s = std::sin(degrees * std::numbers::pi / 180);
        // Through the middle, turned about y; the plane stands in front of the volume or inside of it.
        PnImageParam param = {1, 1, 1, 1, {c, 0, -s}, {0, 1, 0}, {30 - 5 * s, 30, 15 - 5 * c}};
        if (degrees > 90)
            param.position[2] = 25;
        const TestImage image = Drawn(scene, param);
        const int expected = int(200 * (0.1 + 0.6 * std::abs(c)));
        EXPECT_NEAR(int(image.At(0, 0) >> 8 & 255), expected, 1) << degrees;
        EXPECT_EQ(image.At(0, 0) & 255, 255u);
    }
}

TEST(VolumeRendering, AHighlightIsThe96thPowerOfTheCosine)
{
    Scene scene;
    scene.volume = MakeVolume(60, 60, 60, [](int, int, int k) { return 100 * k; });
    scene.palette.AddOpaqueFrom(0, 2000, {250, 250, 250}, {0.0f, 0.0f, 1.0f});
    for (const double degrees : {0.0, 3.0, 6.0, 10.0})
    {
        const double c = std::cos(degrees * std::numbers::pi / 180), s = std::sin(degrees * std::numbers::pi / 180);
        const PnImageParam param = {1, 1, 1, 1, {c, 0, -s}, {0, 1, 0}, {30 - 5 * s, 30, 15 - 5 * c}};
        EXPECT_NEAR(int(Drawn(scene, param).At(0, 0) >> 8 & 255), 250 * std::pow(c, 96), 1.01) << degrees;
    }
}

TEST(VolumeRendering, EachLabelHasItsOwnTableAndCutVoxelsAreGone)
{
    Scene scene;
    scene.volume = MakeVolume(40, 12, 12, [](int, int, int) { return 100; });
    // Bands of eight voxels along x: label 0, label 5, cut, label 9 (hidden), label 12 (no table).
    const uint8_t bands[5] = {0, 5, 64 + 5, 9, 12};
    scene.labels = MakeLabels(40, 12, 12, [&](int i, int, int) { return bands[i / 8]; });
    const auto opaque = [](int) { return 1.0f; };
    scene.palette.Add(0, 0, 200, opaque, [](int) { return Colour{200, 0, 0}; });
    scene.palette.Add(5, 0, 200, opaque, [](int) { return Colour{0, 150, 0}; });
    scene.palette.Add(
        9, 0, 200, opaque,
        [](int) {
            return Colour{0, 0, 99};
        },
        kFlat, false);
    const TestImage image = Drawn(scene, FrontView(0, 5, 1, 40, 1));
    for (int column = 2; column < 8; ++column)
        EXPECT_EQ(image.At(0, column), PixelOf(255, {200, 0, 0})) << column;
    for (int column = 8; column < 16; ++column)
        EXPECT_EQ(image.At(0, column), PixelOf(255, {0, 150, 0})) << column;
    for (int column = 16; column < 40; ++column)
        EXPECT_TRUE(image.At(0, column) == 0 || image.At(0, column) == kUntouched) << column;
}

// The value of a sample decides, not its place: opacities up to 0.01 are no opacity.
TEST(VolumeRendering, ASampleThatIsTooClearToSeeIsSkipped)
{
    for (const float opacity : {0.0f, 0.005f, 0.01f, 0.010001f})
    {
        Scene scene;
        scene.volume = MakeVolume(12, 12, 12, [](int, int, int) { return 100; });
        scene.palette.Add(
            0, 0, 200, [=](int) { return opacity; },
            [](int) {
                return Colour{255, 255, 255};
            });
        EXPECT_EQ(Drawn(scene, FrontView(5, 5, 1, 1, 1)).At(0, 0) != 0, opacity > 0.01f) << opacity;
    }
}

// Nothing to see has its corners at the volume's size and at 0: its projection is that of the whole volume.
TEST(VolumeRendering, APaletteThatShowsNothingDrawsZerosOverTheVolume)
{
    Scene scene = CubeScene();
    scene.palette = TestPalette();
    scene.palette.Add(
        0, 0, 2000, [](int) { return 0.01f; },
        [](int) {
            return Colour{255, 255, 255};
        });
    const TestImage image = Drawn(scene, FrontView(-5.5, -5.5, 40, 40, 1));
    for (int row = 0; row < 40; ++row)
        for (int column = 0; column < 40; ++column)
            ASSERT_EQ(image.At(row, column), row >= 6 && row <= 26 && column >= 6 && column <= 26 ? 0u : kUntouched)
                << row << ", " << column;
}

TEST(VolumeRendering, AVolumeBesideTheImageIsNotDrawn)
{
    const Scene scene = CubeScene();
    for (const double x : {-200.0, 0.0, 200.0})
        for (const double y : {-200.0, 0.0, 200.0})
        {
            if (x == 0 && y == 0)
                continue;
            const TestImage image = Drawn(scene, FrontView(x, y, 20, 20, 1));
            // To the left of or above the image the rectangle shrinks to its first column or row.
            for (const uint32_t pixel : image.pixels)
                ASSERT_TRUE(pixel == kUntouched || (pixel == 0 && x >= 0 && y >= 0)) << x << ", " << y;
        }
}

TEST(VolumeRendering, AnImageWithoutRowsOrColumnsIsDrawnWithoutAPixel)
{
    const Scene scene = CubeScene();
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    uint32_t pixel = kUntouched;
    for (const auto& size : {std::array<uint32_t, 2>{0, 5}, {5, 0}, {0, 0}})
    {
        PnImageRGB image = {&pixel, FrontView(0, 0, size[0], size[1], 1)};
        EXPECT_TRUE(render.ImagingVR(&image, 0));
        EXPECT_EQ(pixel, kUntouched);
    }
}
} // namespace corvane::tests
