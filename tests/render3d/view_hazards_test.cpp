#include "hazard_scenes.h"
#include "sparse_memory.h"
#include "tests/ends_by_itself.h"

// Image planes, view points and visible boxes.
namespace corvane::tests
{
using namespace hazards;

// Along x a jump lands within rounding of the face that it left by.
TEST(RenderHazards, AJumpThatDoesNotAdvanceBecomesAStep)
{
    Scene scene;
    scene.volume = MakeVolume(140, 16, 16, [](int i, int, int) { return i <= 5 || i == 120 ? 1000 : 0; });
    const float spacing[3] = {300, 1, 1};
    std::copy_n(spacing, 3, scene.volume.data.spacing);
    scene.palette.AddOpaqueFrom(0, 500, {200, 0, 0});
    // Four views along -x: from behind the last voxel and from just behind voxel 120, which show voxel 120; from 9000,
    // which shows the low end, and from 20000, which is out of its reach of 10000 mm. The fifth looks along +x.
    const double starts[5] = {42000, 36450, 9000, 20000, -10};
    const bool shown[5] = {true, true, true, false, true};
    for (int view = 0; view < 5; ++view)
    {
        const double sign = view < 4 ? 1 : -1;
        const PnImageParam param = {6, 6, 1, 1, {0, sign, 0}, {0, 0, -1}, {starts[view], 8 - 3 * sign, 11}};
        const TestImage image = Drawn(scene, param);
        ExpectSamePixels(image, DrawnPlainly(scene, param));
        EXPECT_EQ(image.At(3, 3), shown[view] ? PixelOf(255, {200, 0, 0}) : 0u) << view;
    }
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    const TestImage perspective = Perspective(render, {{9000, 8, 8}, {-1, 0, 0}, {0, 0, 1}}, 7, 7);
    EXPECT_EQ(perspective.At(3, 3), PixelOf(255, {200, 0, 0}));
}

TEST(RenderHazards, AnImagePlaneMayBe9000VoxelsAway)
{
    Scene scene;
    scene.volume = MakeBall(32, 32, 32, 16, 16, 16, 9);
    scene.palette.Add(
        0, 700, 3000, [](int) { return 0.1f; },
        [](int) {
            return Colour{200, 100, 50};
        },
        {0.3f, 0.6f, 0.0f});
    for (const double away : {1000.0, 9000.0, 9990.0, 20000.0, 1e6, 1e20, 1e38})
    {
        const PnImageParam param = {20, 20, 1.5, 1.5, {1, 0, 0}, {0, 1, 0}, {2, 2, -away}};
        const TestImage image = Drawn(scene, param);
        ExpectSamePixels(image, DrawnPlainly(scene, param));
        EXPECT_EQ(ShowsSomething(image), away <= 9990) << away; // a ray ends after 10000 voxels
    }
    const double s = std::sqrt(0.5);
    const PnImageParam oblique = {20, 20, 1.5, 1.5, {s, 0, -s}, {0, 1, 0}, {16 - 9000 * s - 15 * s, 2, 16 - 9000 * s}};
    ExpectSamePixels(Drawn(scene, oblique), DrawnPlainly(scene, oblique));
}

// A step along x is so short that adding it changes nothing any more.
TEST(RenderHazards, AStepBelowTheParametersResolutionEnds)
{
    for (const float thin : {1e-7f, 1e-9f, 1e-20f, 1e-38f, 1e-44f})
    {
        // Values between the voxels have no table: nothing stops a ray early.
        Scene scene;
        scene.volume = MakeVolume(12, 12, 12, [](int i, int j, int k) { return (i + j + k) % 2 * 1000; });
        scene.volume.data.spacing[1] = thin;
        scene.palette.Add(
            0, 1000, 1000, [](int) { return 1.0f; },
            [](int) {
                return Colour{200, 0, 0};
            });
        Render3D render;
        ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
        const double s = double(thin);
        SCOPED_TRACE(thin);
        ExpectToEnd([&] { Drawn(render, {2, 2, 1, 1, {0, 0, 1}, {0, 1, 0}, {20, 5 * s, 5}}); });
        ExpectToEnd([&] { Drawn(render, {2, 2, 1, s, {0, 1, 0}, {0, 0, 1}, {-1, 5 * s, 5.5}}); });
        ExpectToEnd([&] { Drawn(render, {2, 2, 1, s, {0, 1, 0}, {1, 0, 0}, {5.3, 5 * s, 20}}); });
        ExpectToEnd([&] { Perspective(render, {{6.5f, 6 * thin, 6}, {1, 0, 0}, {0, 0, 1}}, 2, 2); });
        if (HasFailure())
            return; // one minute is enough
    }
}

TEST(RenderHazards, ImagePlanesOfStrangeNumbersShowTheVolumeOrNothing)
{
    const Scene scene = SolidScene(16, 16, 16);
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    EXPECT_TRUE(ShowsSomething(Drawn(render)));
    for (const double number :
         {double(NAN), double(INFINITY), -double(INFINITY), 1e300, -1e300, 1e38, 1e-300, 0.0, -0.0, -1.0, 5e-324})
        for (int field = 0; field < 11; ++field)
        {
            PnImageParam param = kFront;
            double* fields[11] = {&param.rowSpacing,         &param.columnSpacing,      &param.rowDirection[0],
                                  &param.rowDirection[1],    &param.rowDirection[2],    &param.columnDirection[0],
                                  &param.columnDirection[1], &param.columnDirection[2], &param.position[0],
                                  &param.position[1],        &param.position[2]};
            *fields[field] = number;
            const TestImage image = Drawn(render, param);
            if (!std::isfinite(float(number)))
            {
                // No number, no place: a ray that starts or goes there misses. The first row or column of an infinite
                // spacing is 0 times infinity, which is no number either.
                EXPECT_TRUE(ShowsNothing(image)) << number << ", " << field;
            }
        }
}

TEST(RenderHazards, ViewPointsOfStrangeNumbersShowTheVolumeOrNothing)
{
    const Scene scene = SolidScene(16, 16, 16);
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    EXPECT_TRUE(ShowsSomething(Perspective(render)));
    for (const float number : {kNan, kInfinity, -kInfinity, 3e38f, 1e20f, 1e-38f, 0.0f, -0.0f, 1e-45f})
        for (int field = 0; field < 9; ++field)
        {
            KsViewPoint view = kInside;
            (field < 3 ? view.eye[field] : field < 6 ? view.direction[field - 3] : view.up[field - 6]) = number;
            const TestImage image = Perspective(render, view);
            EXPECT_EQ(std::count(image.pixels.begin(), image.pixels.end(), kUntouched), 0);
            if (!std::isfinite(number))
            {
                EXPECT_TRUE(ShowsNothing(image)) << number << ", " << field;
            }
        }
    const KsViewPoint parallel = {{8, 8, 8}, {0, 1, 0}, {0, 1, 0}}; // up along the view: no row direction
    Perspective(render, parallel);
}

TEST(RenderHazards, VisibleBoxesOfStrangeNumbersShowTheVolumeOrNothing)
{
    const Scene scene = SolidScene(16, 16, 16);
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    const auto drawnIn = [&](float low, float high, int axis)
    {
        float a[3] = {-1000, -1000, -1000}, b[3] = {1000, 1000, 1000};
        a[axis] = low;
        b[axis] = high;
        EXPECT_TRUE(render.SetVisibleBox(a, b));
        return Drawn(render);
    };
    const TestImage whole = drawnIn(-1000, 1000, 0);
    EXPECT_TRUE(ShowsSomething(whole));
    for (int axis = 0; axis < 3; ++axis)
    {
        ExpectSamePixels(drawnIn(-kInfinity, kInfinity, axis), whole);
        ExpectSamePixels(drawnIn(3e38f, -3e38f, axis), whole);
        EXPECT_TRUE(ShowsNothing(drawnIn(kNan, kNan, axis))) << axis;
        drawnIn(kNan, 5, axis);
        drawnIn(5, kNan, axis);
        EXPECT_TRUE(ShowsNothing(drawnIn(kInfinity, kInfinity, axis))) << axis;
        EXPECT_TRUE(ShowsNothing(drawnIn(100, 200, axis))) << axis;
        EXPECT_TRUE(ShowsNothing(drawnIn(-200, -100, axis))) << axis;
    }
    // A box without any thickness across the view holds the start of each ray and no sample.
    EXPECT_TRUE(ShowsNothing(drawnIn(8, 8, 2)));
}

TEST(RenderHazards, ImagesOfMorePixelsThanCanBeCountedAreRefused)
{
    const Scene scene = SolidScene(16, 16, 16);
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    uint32_t pixel = kUntouched;
    PnImageParam param = kFront;
    param.rows = param.columns = UINT32_MAX;
    PnImageRGB image = {&pixel, param};
    EXPECT_FALSE(render.ImagingVR(&image, 0));
    EXPECT_FALSE(render.ImagingVE(kInside, 60, &image));
    EXPECT_EQ(pixel, kUntouched);
    EXPECT_EQ(image.param.position[2], kFront.position[2]);
}

// Only the pages of the pixels that are drawn exist.
TEST(RenderHazards, PixelsBeyond32BitsAreDrawnInTheirPlace)
{
    Scene scene = SolidScene(16, 16, 16, 0.9f);
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    const TestImage small = Drawn(render);
    for (const auto& size : {std::array<uint32_t, 2>{70000, 70000}, {INT32_MAX, 12}, {12, INT32_MAX}, {3000000000, 12}})
    {
        SCOPED_TRACE(testing::Message() << size[0] << " x " << size[1]);
        const size_t bytes = size_t(size[0]) * size[1] * sizeof(uint32_t);
        const SparseMemory memory(bytes);
        if (!memory.Start())
            GTEST_SKIP() << "the machine reserves no " << bytes << " bytes";
        // The largest image sees in its last rows and columns what the small one sees, the others in their first.
        PnImageParam param = kFront;
        param.rows = size[0];
        param.columns = size[1];
        const bool atEnd = size[0] == 70000;
        if (atEnd)
        {
            param.position[0] -= (70000 - 12) * 1.5;
            param.position[1] -= (70000 - 12) * 1.5;
        }
        PnImageRGB image = {static_cast<uint32_t*>(memory.Start()), param};
        const bool drawn = render.ImagingVR(&image, 0);
        EXPECT_TRUE(drawn || size[0] > INT32_MAX); // or refused, and left alone
        const size_t first = atEnd ? 70000 - 12 : 0;
        int seen = 0;
        for (size_t row = 0; row < 12; ++row)
            for (size_t column = 0; column < 12; ++column)
            {
                const uint32_t pixel = image.pixels[(first + row) * size[1] + first + column];
                const uint32_t expected = small.At(int(row), int(column));
                if (expected != kUntouched)
                {
                    EXPECT_EQ(pixel, drawn ? expected : 0u) << row << ", " << column;
                }
                seen += pixel != 0;
            }
        EXPECT_EQ(seen > 50, drawn);
    }
}
} // namespace corvane::tests
