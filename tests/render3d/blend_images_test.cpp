#include "corvane/Render3D.h"

#include "plain_ray_caster.h"
#include "render3d/volume_rendering.h"
#include "scenes.h"
#include "tests/mpr/random_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

// Flat images that stand in the scene of a volume rendering.
namespace corvane::tests
{
namespace
{
constexpr uint32_t kWhite = 0xFFFFFF00;

// As large as an image of 20 x 20 pixels, of one colour, on a plane across z.
struct TestBlend
{
    explicit TestBlend(double z, Colour colour = {0, 0, 250}, int x0 = 0, int y0 = 0, int x1 = 19, int y1 = 19)
        : pixels(400, PixelOf(0, colour)),
          image{{{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}}, pixels.data(), {}, {1, 0, 0}, {0, 1, 0}, {0, 0, z}}
    {
    }
    TestBlend(TestBlend&&) = default;

    std::vector<uint32_t> pixels;
    KsBlendImage image;
};

// Looks along +z from z = -10; pixel (row, column) is at y = row, x = column.
constexpr PnImageParam kFront = {20, 20, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, -10}};

// A red block that fills x from 6 to 14, y from 6 to 14 and z from 8 to 12.
Scene BlockScene()
{
    Scene scene;
    scene.volume = MakeVolume(20, 20, 20,
                              [](int i, int j, int k)
                              { return i >= 6 && i <= 14 && j >= 6 && j <= 14 && k >= 8 && k <= 12 ? 1000 : 0; });
    scene.palette.AddOpaqueFrom(0, 500, {200, 0, 0});
    return scene;
}

TestImage DrawnWith(const Scene& scene, std::vector<KsBlendImage> blends, const PnImageParam& param = kFront)
{
    Render3D render;
    EXPECT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
    render.SetBlendImage(blends.data(), int(blends.size()));
    TestImage image(param);
    EXPECT_TRUE(render.ImagingVR(&image.image, 0));
    return image;
}

const uint32_t kRed = PixelOf(255, {200, 0, 0});
const uint32_t kBlue = PixelOf(255, {0, 0, 250});
} // namespace

TEST(BlendImages, RandomScenesWithRandomImagesEqualThePlainVersion)
{
    int64_t shown = 0;
    for (uint32_t seed = 0; seed < 100; ++seed)
    {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Scene scene = RandomScene(random, 6, 36);
        const PnImageParam param = RandomImagePlane(random, scene.volume.data);
        std::vector<std::vector<uint32_t>> pixels;
        std::vector<KsBlendImage> blends;
        for (int number = random.Between(1, 4); number > 0; --number)
        {
            auto& buffer = pixels.emplace_back(size_t(param.rows) * param.columns);
            for (uint32_t& pixel : buffer)
                pixel = uint32_t(random.Between(0, 0xFFFFFF)) << 8;
            KsBlendImage blend = {};
            blend.pixels = buffer.data();
            for (auto& corner : blend.corners)
            {
                corner[0] = random.Between(-5, int(param.columns) + 5);
                corner[1] = random.Between(-5, int(param.rows) + 5);
            }
            if (random.Below(5) == 0)
                std::copy_n(blend.corners[0], 2, blend.corners[random.Between(1, 3)]); // less than a quadrangle
            const RandomFrame frame = MakeRandomFrame(random);
            std::copy_n(frame.row, 3, blend.rowDirection);
            std::copy_n(frame.column, 3, blend.columnDirection);
            if (random.Below(3) == 0)
            {
                std::copy_n(param.rowDirection, 3, blend.rowDirection);
                std::copy_n(param.columnDirection, 3, blend.columnDirection);
            }
            double index[3] = {};
            index[0] = random.Real(0, scene.volume.data.sizeX);
            index[1] = random.Real(0, scene.volume.data.sizeY);
            index[2] = random.Real(0, scene.volume.data.sizeZ);
            PatientPlace(scene.volume.data, index, blend.position);
            if (!blends.empty() && random.Below(4) == 0)
            {
                const uint32_t* own = blend.pixels;
                blend = blends.back(); // at the same depth: the first one is in front
                blend.pixels = const_cast<uint32_t*>(own);
            }
            blends.push_back(blend);
        }
        TestImage expected(param), without(param);
        const PlainRayCaster plain(scene.volume.data, scene.labels.mark, scene.palette.palette);
        plain.DrawVolume(without.image);
        plain.DrawVolume(expected.image, blends);
        ExpectSamePixels(DrawnWith(scene, blends, param), expected);

        render3d::VolumeSlot slot;
        ASSERT_TRUE(render3d::LoadSlot(scene.volume.data, scene.labels.mark, slot));
        render3d::UpdateSlot(slot, scene.palette.palette);
        for (const render3d::KernelTable* kernels : render3d::AvailableKernels())
        {
            SCOPED_TRACE(kernels->instructionSet);
            TestImage image(param);
            render3d::RenderVolume(slot, scene.palette.palette,
                                   render3d::TakeBlendImages(blends.data(), int(blends.size())), image.image, *kernels);
            ExpectSamePixels(image, expected);
        }
        for (size_t pixel = 0; pixel < without.pixels.size(); ++pixel)
            shown += without.pixels[pixel] != expected.pixels[pixel] && expected.pixels[pixel] != 0;
    }
    EXPECT_GT(shown, 3000);
}

TEST(BlendImages, AnImageHidesWhatIsBehindAndIsHiddenByWhatIsInFront)
{
    const Scene scene = BlockScene();
    const TestBlend before(4), inside(10), after(16);
    const TestImage hides = DrawnWith(scene, {before.image});
    EXPECT_EQ(std::count(hides.pixels.begin(), hides.pixels.end(), kBlue), 400);
    for (const TestBlend* blend : {&inside, &after})
    {
        const TestImage hidden = DrawnWith(scene, {blend->image});
        for (int row = 0; row < 20; ++row)
            for (int column = 0; column < 20; ++column)
            {
                const bool block = row >= 6 && row <= 14 && column >= 6 && column <= 14;
                ASSERT_EQ(hidden.At(row, column), block ? kRed : kBlue) << row << ", " << column;
            }
    }
}

TEST(BlendImages, AnImageShowsThroughWhatIsClear)
{
    Scene scene = BlockScene();
    scene.palette = TestPalette();
    scene.palette.Add(
        0, 900, 1000, [](int) { return 0.2f; },
        [](int) {
            return Colour{200, 0, 0};
        });
    const TestImage alone = DrawnWith(scene, {});
    const TestBlend after(16, {0, 100, 250});
    const TestImage with = DrawnWith(scene, {after.image});
    const uint32_t pixel = alone.At(10, 10);
    const double left = 1 - double(pixel & 255) / 255; // within 1 / 255 of the light that passed the block
    EXPECT_NEAR(left, std::pow(0.8, 12), 0.02);        // 4 mm in steps of 0.33
    EXPECT_EQ(with.At(10, 10) & 255, 255u);
    EXPECT_EQ(with.At(10, 10) >> 8 & 255, pixel >> 8 & 255);
    EXPECT_NEAR(int(with.At(10, 10) >> 16 & 255), 100 * left, 1.5);
    EXPECT_NEAR(int(with.At(10, 10) >> 24), 250 * left, 2);
}

TEST(BlendImages, TheNearestImageIsInFrontWhateverTheirOrder)
{
    const Scene scene = BlockScene();
    const TestBlend near(-5, {10, 20, 30}), middle(2, {40, 50, 60}), far(18, {70, 80, 90});
    for (const auto& order : {std::vector{near.image, middle.image, far.image},
                              {far.image, middle.image, near.image},
                              {middle.image, far.image, near.image}})
        EXPECT_EQ(DrawnWith(scene, order).At(2, 3), PixelOf(255, {10, 20, 30}));
    const TestBlend twin(-5, {99, 99, 99}); // at the same depth
    EXPECT_EQ(DrawnWith(scene, {near.image, twin.image}).At(2, 3), PixelOf(255, {10, 20, 30}));
    EXPECT_EQ(DrawnWith(scene, {twin.image, near.image}).At(2, 3), PixelOf(255, {99, 99, 99}));
}

TEST(BlendImages, PixelsOnTheOutlineAreCoveredInBothWindings)
{
    Scene scene = BlockScene();
    scene.palette = TestPalette(); // the image alone
    TestBlend clockwise(0, {0, 0, 250}, 3, 4, 9, 8), counter(0, {0, 0, 250}, 3, 4, 9, 8);
    std::swap(counter.image.corners[1], counter.image.corners[3]);
    for (const TestBlend* blend : {&clockwise, &counter})
    {
        const TestImage image = DrawnWith(scene, {blend->image});
        for (int row = 0; row < 20; ++row)
            for (int column = 0; column < 20; ++column)
                ASSERT_EQ(image.At(row, column) == kBlue, row >= 4 && row <= 8 && column >= 3 && column <= 9)
                    << row << ", " << column;
    }
}

// A diamond: |row - 10| + |column - 10| up to 6.
TEST(BlendImages, AnOutlineNeedNotFollowThePixels)
{
    Scene scene = BlockScene();
    scene.palette = TestPalette();
    TestBlend diamond(0);
    const int32_t corners[4][2] = {{10, 4}, {16, 10}, {10, 16}, {4, 10}};
    std::copy(&corners[0][0], &corners[0][0] + 8, &diamond.image.corners[0][0]);
    const TestImage image = DrawnWith(scene, {diamond.image});
    for (int row = 0; row < 20; ++row)
        for (int column = 0; column < 20; ++column)
            ASSERT_EQ(image.At(row, column) == kBlue, std::abs(row - 10) + std::abs(column - 10) <= 6)
                << row << ", " << column;
}

TEST(BlendImages, EveryPixelShowsItsOwnColour)
{
    Scene scene = BlockScene();
    scene.palette = TestPalette();
    TestBlend blend(5);
    for (size_t pixel = 0; pixel < 400; ++pixel)
        blend.pixels[pixel] = uint32_t(0x10203 * pixel + 77) << 8 | 0x42; // the low byte is nobody's
    const TestImage image = DrawnWith(scene, {blend.image});
    for (size_t pixel = 0; pixel < 400; ++pixel)
        ASSERT_EQ(image.pixels[pixel], (blend.pixels[pixel] & kWhite) | 255u) << pixel;
}

TEST(BlendImages, PlanesAlongTheRaysOrBehindTheImageShowNothing)
{
    const Scene scene = BlockScene();
    const TestImage alone = DrawnWith(scene, {});
    TestBlend along(0), behind(-11), at(-10);
    const double column[3] = {0, 0, 1};
    std::copy_n(column, 3, along.image.columnDirection);
    for (const TestBlend* blend : {&along, &behind})
    {
        const TestImage image = DrawnWith(scene, {blend->image});
        for (size_t pixel = 0; pixel < 400; ++pixel) // the image's outline is drawn, without it
            ASSERT_EQ(image.pixels[pixel], alone.pixels[pixel] == kUntouched ? 0u : alone.pixels[pixel]) << pixel;
    }
    const TestImage image = DrawnWith(scene, {at.image});
    EXPECT_EQ(std::count(image.pixels.begin(), image.pixels.end(), kBlue), 400);
}

// The block covers rows and columns 4 to 16; half a millimetre more is less than a pixel.
TEST(BlendImages, CornersOutsideTheVolumesRectangleEnlargeIt)
{
    const Scene scene = BlockScene();
    TestBlend blend(0, {0, 0, 250}, 1, 9, 2, 10);
    const TestImage image = DrawnWith(scene, {blend.image});
    for (int row = 0; row < 20; ++row)
        for (int column = 0; column < 20; ++column)
            ASSERT_EQ(image.At(row, column) != kUntouched, row >= 4 && row <= 16 && column >= 1 && column <= 16)
                << row << ", " << column;
    EXPECT_EQ(image.At(9, 1), kBlue);
    EXPECT_EQ(image.At(4, 1), 0u);
}

TEST(BlendImages, ACountOfZeroOrBelowTakesThemAway)
{
    const Scene scene = BlockScene();
    const TestImage alone = DrawnWith(scene, {});
    TestBlend blends[2] = {TestBlend(0), TestBlend(2, {9, 9, 9})};
    KsBlendImage records[2] = {blends[0].image, blends[1].image};
    for (const int count : {0, -1, INT32_MIN})
    {
        Render3D render;
        ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
        render.SetBlendImage(records, 2);
        render.SetBlendImage(count == -1 ? nullptr : records, count);
        TestImage image(kFront);
        ASSERT_TRUE(render.ImagingVR(&image.image, 0));
        ExpectSamePixels(image, alone);
    }
}

TEST(BlendImages, RecordsAreCopiedAndPixelsAreNot)
{
    const Scene scene = BlockScene();
    TestBlend blend(0);
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    KsBlendImage record = blend.image;
    render.SetBlendImage(&record, 1);
    record = {};
    blend.pixels[0] = PixelOf(0, {1, 2, 3});
    TestImage image(kFront);
    ASSERT_TRUE(render.ImagingVR(&image.image, 0));
    EXPECT_EQ(image.At(0, 0), PixelOf(255, {1, 2, 3}));
    EXPECT_EQ(image.At(19, 19), kBlue);
}

TEST(BlendImages, OfMoreThanFourTheFirstFourAreUsed)
{
    const Scene scene = BlockScene();
    std::vector<TestBlend> blends;
    std::vector<KsBlendImage> records;
    for (int number = 0; number < 7; ++number)
    {
        // Each in its own two columns of the first rows, the later ones nearer.
        blends.emplace_back(-number, Colour{uint8_t(number + 1), 0, 0}, 2 * number, 0, 2 * number + 1, 1);
        records.push_back(blends.back().image);
    }
    const TestImage image = DrawnWith(scene, records);
    for (int number = 0; number < 7; ++number)
    {
        const uint32_t pixel = image.At(0, 2 * number);
        EXPECT_EQ(pixel, number < 4 ? PixelOf(255, {uint8_t(number + 1), 0, 0}) : 0u) << number;
    }
}
} // namespace corvane::tests
