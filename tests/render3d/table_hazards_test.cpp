#include "hazard_scenes.h"

// Tables, labels, blend images and what becomes of their numbers.
namespace corvane::tests
{
using namespace hazards;

TEST(RenderHazards, TableEntriesWithoutTablesAreNotSeen)
{
    Scene scene;
    scene.volume = MakeVolume(16, 16, 16, [](int, int, int) { return 100; });
    scene.labels = MakeLabels(16, 16, 16, [](int i, int, int) { return i < 8 ? 0 : 5; });
    scene.palette.AddOpaqueFrom(0, 0, {200, 0, 0});
    scene.palette.AddOpaqueFrom(5, 0, {0, 200, 0});
    for (int wrong = 0; wrong < 7; ++wrong)
    {
        VolumePalette palette = scene.palette.palette;
        VolumePaletteEntry entry = *palette.entries[5];
        palette.entries[5] = &entry;
        if (wrong == 0)
            entry.opacities = nullptr;
        else if (wrong == 1)
            entry.colours = nullptr;
        else if (wrong == 2)
            entry.size = 0;
        else if (wrong == 3)
            entry.size = -5;
        else if (wrong == 4)
            entry.rangeStart = INT32_MAX;
        else if (wrong == 5)
            entry.rangeStart = INT32_MIN;
        else
            palette.entries[5] = nullptr;
        Render3D render;
        ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, palette));
        const TestImage image = Drawn(render, {16, 16, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, -10}});
        EXPECT_EQ(image.At(8, 4), PixelOf(255, {200, 0, 0})) << wrong;
        EXPECT_TRUE(image.At(8, 12) == 0 || image.At(8, 12) == kUntouched) << wrong;
        Perspective(render);
    }
}

TEST(RenderHazards, WithoutASumOfOpacitiesNothingIsSeen)
{
    const Scene scene = SolidScene(16, 16, 16);
    for (int wrong = 0; wrong < 5; ++wrong)
    {
        VolumePalette palette = scene.palette.palette;
        if (wrong == 0)
            palette.opacitySums = nullptr;
        else if (wrong == 1)
            palette.sumLength = 0;
        else if (wrong == 2)
            palette.sumLength = -7;
        else
            palette.sumStart = wrong == 3 ? INT32_MAX : INT32_MIN;
        Render3D render;
        ASSERT_TRUE(render.InitData(scene.volume.data, {}, palette));
        EXPECT_TRUE(ShowsNothing(Drawn(render))) << wrong;
        EXPECT_TRUE(ShowsNothing(Perspective(render))) << wrong;
    }
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, {}));
    EXPECT_TRUE(ShowsNothing(Drawn(render)));
}

TEST(RenderHazards, LabelsThatAreMissingAreZero)
{
    Scene scene;
    scene.volume = MakeBall(24, 24, 24, 12, 12, 12, 9);
    scene.palette.AddOpaqueFrom(0, 1000, {200, 0, 0});
    scene.palette.AddOpaqueFrom(3, 1000, {0, 200, 0});
    const PnImageParam param = {24, 24, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, -10}};
    const auto expectPlain = [&]
    {
        const TestImage image = Drawn(scene, param);
        ExpectSamePixels(image, DrawnPlainly(scene, param));
        return image;
    };
    EXPECT_EQ(expectPlain().At(12, 12), PixelOf(255, {200, 0, 0})); // no table at all

    scene.labels = MakeLabels(24, 24, 24, [](int, int, int) { return 3; });
    EXPECT_EQ(expectPlain().At(12, 12), PixelOf(255, {0, 200, 0}));
    std::fill_n(scene.labels.slices.begin(), 10, nullptr); // the front of the ball
    EXPECT_EQ(expectPlain().At(12, 12), PixelOf(255, {200, 0, 0}));
    std::fill(scene.labels.slices.begin(), scene.labels.slices.end(), nullptr);
    expectPlain();

    for (const auto& size : {std::array<int, 3>{10, 24, 24}, {24, 10, 24}, {24, 24, 5}, {1, 1, 1}, {30, 27, 25}})
    {
        scene.labels = MakeLabels(size[0], size[1], size[2], [](int, int, int) { return 3; });
        EXPECT_EQ(expectPlain().At(16, 16),
                  PixelOf(255, {size[0] > 16 && size[1] > 16 && size[2] > 5 ? Colour{0, 200, 0} : Colour{200, 0, 0}}))
            << size[0] << ", " << size[1] << ", " << size[2];
    }
    scene.labels.mark = {nullptr, UINT32_MAX, UINT32_MAX, UINT32_MAX};
    expectPlain();
    scene.labels = MakeLabels(24, 24, 24, [](int, int, int) { return 3; });
    scene.labels.mark.sizeY = UINT32_MAX; // nobody reads that far
    expectPlain();
}

TEST(RenderHazards, BlendImagesOfHugeCornersAreDrawnWhereTheyAre)
{
    const Scene scene = SolidScene(16, 16, 16);
    std::vector<uint32_t> pixels(144, 0x01020300);
    KsBlendImage blend = {{}, pixels.data(), {}, {1, 0, 0}, {0, 1, 0}, {0, 0, -5}};
    const int32_t least = INT32_MIN, most = INT32_MAX;
    const int32_t corners[][4][2] = {
        {{least, least}, {most, least}, {most, most}, {least, most}},
        {{least, 3}, {most, 3}, {most, most}, {least, most}},
        {{0, 0}, {most, 0}, {most, most}, {0, most}},
        {{least, least}, {-1, least}, {-1, most}, {least, most}},
        {{12, 0}, {most, 0}, {most, 11}, {12, 11}},
        {{least, most}, {most, least}, {most, most - 1}, {0, 5}},
        {{-65536, -65536}, {65536, -65536}, {65536, 65536}, {-65536, 65536}},
    };
    for (const auto& outline : corners)
    {
        SCOPED_TRACE(testing::Message() << outline[0][0] << ", " << outline[0][1]);
        std::copy(&outline[0][0], &outline[0][0] + 8, &blend.corners[0][0]);
        Render3D render;
        ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
        render.SetBlendImage(&blend, 1);
        TestImage expected(kFront);
        PlainRayCaster(scene.volume.data, {}, scene.palette.palette).DrawVolume(expected.image, {&blend, 1});
        ExpectSamePixels(Drawn(render), expected);
    }
    // The first covers everything, the fourth and fifth lie beside the image.
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    std::copy(&corners[0][0][0], &corners[0][0][0] + 8, &blend.corners[0][0]);
    render.SetBlendImage(&blend, 1);
    const TestImage image = Drawn(render);
    EXPECT_EQ(std::count(image.pixels.begin(), image.pixels.end(), 0x010203FFu), 144);
}

TEST(RenderHazards, BlendImagesWithoutRecordPixelsOrPlaneShowNothing)
{
    const Scene scene = SolidScene(16, 16, 16);
    std::vector<uint32_t> pixels(144, 0x01020300);
    const KsBlendImage good = {
        {{0, 0}, {11, 0}, {11, 11}, {0, 11}}, pixels.data(), {}, {1, 0, 0}, {0, 1, 0}, {0, 0, -5}};
    const TestImage alone = Drawn(scene);
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    for (const int count : {1, 4, INT32_MAX})
    {
        render.SetBlendImage(nullptr, count);
        ExpectSamePixels(Drawn(render), alone);
    }
    for (int wrong = 0; wrong < 9; ++wrong)
    {
        KsBlendImage blend = good;
        if (wrong == 0)
            blend.pixels = nullptr;
        else if (wrong == 1)
            blend.rowDirection[0] = 0;
        else if (wrong == 2)
            blend.columnDirection[0] = 1, blend.columnDirection[1] = 0;
        else if (wrong == 3)
            blend.rowDirection[0] = double(NAN);
        else if (wrong == 4)
            blend.columnDirection[1] = double(INFINITY);
        else
            blend.position[2] = std::array{double(NAN), double(INFINITY), -double(INFINITY), 1e300}[size_t(wrong - 5)];
        render.SetBlendImage(&blend, 1);
        const TestImage image = Drawn(render);
        for (size_t pixel = 0; pixel < image.pixels.size(); ++pixel)
        {
            // The outline may have been drawn, without the image.
            const uint32_t expected = alone.pixels[pixel];
            ASSERT_TRUE(image.pixels[pixel] == expected || (expected == kUntouched && image.pixels[pixel] == 0))
                << wrong << ", " << pixel;
        }
    }
}

TEST(RenderHazards, OpacitiesAndCoefficientsBeyondTheirRangeStayInTheirBytes)
{
    const float numbers[] = {-5, -0.5f, 0.4f, 1, 1.5f, 3, 1e20f};
    Random random(5);
    for (int round = 0; round < 40; ++round)
    {
        Scene scene;
        scene.volume = MakeBall(20, 20, 20, 10, 10, 10, 6);
        const float opacity = round < 7 ? numbers[round] : numbers[random.Below(7)];
        Shading shading;
        for (float& number : shading)
            number = numbers[random.Below(6)];
        scene.palette.Add(
            0, 500, 3000, [=](int value) { return value % 3 == 0 ? 0.4f : opacity; },
            [](int) {
                return Colour{255, 100, 3};
            },
            shading);
        ExpectSamePixels(Drawn(scene), DrawnPlainly(scene));
    }
    // By hand: three times 100 is more than a byte holds, minus 100 is less.
    Scene scene = SolidScene(16, 16, 16);
    scene.palette.Add(
        0, -100, 10000, [](int) { return 3.0f; },
        [](int) {
            return Colour{100, 10, 0};
        });
    EXPECT_EQ(Drawn(scene).At(5, 5), PixelOf(255, {255, 30, 0}));
    scene.palette.Add(
        0, -100, 10000, [](int) { return 1.0f; },
        [](int) {
            return Colour{100, 10, 0};
        },
        {-1, 0, 0});
    EXPECT_EQ(Drawn(scene).At(5, 5), PixelOf(255, {0, 0, 0}));
}

TEST(RenderHazards, OpacitiesAndCoefficientsThatAreNoNumbersSpoilNothingElse)
{
    Scene scene = SolidScene(16, 16, 16);
    scene.palette.Add(
        0, -100, 10000, [](int) { return 1.0f; },
        [](int) {
            return Colour{100, 10, 0};
        },
        {kNan, 0.5f, 0.5f});
    EXPECT_EQ(Drawn(scene).At(5, 5) & 255, 255u);
    scene.palette.Add(
        0, -100, 10000, [](int) { return 1.0f; },
        [](int) {
            return Colour{100, 10, 0};
        },
        {kInfinity, 0, -kInfinity});
    EXPECT_EQ(Drawn(scene).At(5, 5) & 255, 255u);

    // An opacity that is no number is not above 0.01: the sample is skipped, others count.
    scene.volume = MakeVolume(16, 16, 16, [](int, int, int k) { return k < 8 ? 100 : 200; });
    scene.palette.Add(
        0, 100, 200, [](int value) { return value < 150 ? kNan : 1.0f; },
        [](int) {
            return Colour{100, 10, 0};
        });
    EXPECT_EQ(Drawn(scene).At(5, 5), PixelOf(255, {100, 10, 0}));
}

TEST(RenderHazards, ValuesAtTheLimitsOf16BitsAreClassified)
{
    for (const int value : {32767, -32768})
    {
        Scene scene;
        scene.volume = MakeVolume(20, 20, 19, [=](int i, int, int) { return i < 8 ? value : -value - 1; });
        scene.palette.Add(
            0, std::min(value, 0), std::max(value, 0), [](int) { return 0.5f; },
            [](int) {
                return Colour{100, 10, 0};
            });
        const TestImage image = Drawn(scene);
        ExpectSamePixels(image, DrawnPlainly(scene));
        EXPECT_TRUE(ShowsSomething(image));
    }
}
} // namespace corvane::tests
