#include "render3d/endoscopy.h"

#include "corvane/Render3D.h"
#include "plain_ray_caster.h"
#include "scenes.h"
#include "tests/mpr/random_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

// Perspective pictures from an eye point.
namespace corvane::tests
{
namespace
{
TestImage EmptyImage(uint32_t rows, uint32_t columns)
{
    PnImageParam param = {};
    param.rows = rows;
    param.columns = columns;
    return TestImage(param);
}

TestImage Drawn(const Scene& scene, const KsViewPoint& view, float fieldOfView, uint32_t rows, uint32_t columns)
{
    Render3D render;
    EXPECT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
    TestImage image = EmptyImage(rows, columns);
    EXPECT_TRUE(render.ImagingVE(view, fieldOfView, &image.image));
    return image;
}

// The same picture from the plain version and from each of the kernels, on the image plane that was drawn on.
void ExpectPlainPixels(const Scene& scene, const KsViewPoint& view, const TestImage& drawn)
{
    const core::Vec3f eye = core::VecOf(view.eye);
    TestImage expected(drawn.image.param);
    PlainRayCaster(scene.volume.data, scene.labels.mark, scene.palette.palette).DrawEndoscopy(eye, expected.image);
    ExpectSamePixels(drawn, expected);

    render3d::VolumeSlot slot;
    ASSERT_TRUE(render3d::LoadSlot(scene.volume.data, scene.labels.mark, slot));
    render3d::UpdateSlot(slot, scene.palette.palette);
    for (const render3d::KernelTable* kernels : render3d::AvailableKernels())
    {
        SCOPED_TRACE(kernels->instructionSet);
        TestImage image(drawn.image.param);
        render3d::RenderEndoscopy(slot, scene.palette.palette, eye, image.image, *kernels);
        ExpectSamePixels(image, expected);
    }
}

KsViewPoint RandomView(Random& random, const KsVolumeData& volume)
{
    double index[3], eye[3];
    const double beyond = random.Below(4) == 0 ? 0.6 : 0.0;
    const double sizes[3] = {double(volume.sizeX), double(volume.sizeY), double(volume.sizeZ)};
    for (int axis = 0; axis < 3; ++axis)
        index[axis] = sizes[axis] * random.Real(0.1 - beyond, 0.9 + beyond);
    if (random.Below(4) == 0)
        std::transform(index, index + 3, index, [](double place) { return std::floor(place); }); // on a voxel
    PatientPlace(volume, index, eye);
    const RandomFrame frame = MakeRandomFrame(random);
    KsViewPoint view = {};
    for (int axis = 0; axis < 3; ++axis)
    {
        view.eye[axis] = float(eye[axis]);
        view.direction[axis] = float(frame.normal[axis]);
        view.up[axis] = float(-frame.column[axis]);
    }
    return view;
}

// A hollow of radius 10 around (16, 16, 16) in something opaque.
Scene HollowScene()
{
    Scene scene;
    scene.volume =
        MakeVolume(33, 33, 33, [](int i, int j, int k) { return int(100 * std::hypot(i - 16.0, j - 16.0, k - 16.0)); });
    scene.palette.AddOpaqueFrom(0, 1000, {100, 100, 100}, {0.1f, 0.8f, 0.0f});
    return scene;
}

// Looks along +y (to the back) with the head (+z) up.
KsViewPoint BackwardView(float x, float y, float z) { return {{x, y, z}, {0, 1, 0}, {0, 0, 1}}; }
} // namespace

TEST(Endoscopy, FramesOfRandomScenesEqualThePlainVersion)
{
    int64_t seen = 0;
    for (uint32_t seed = 0; seed < 80; ++seed)
    {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Scene scene = RandomScene(random, 4, 48);
        const KsViewPoint view = RandomView(random, scene.volume.data);
        const TestImage image = Drawn(scene, view, float(random.Real(0, 180)), uint32_t(random.Between(1, 24)),
                                      uint32_t(random.Between(1, 27)));
        ExpectPlainPixels(scene, view, image);
        seen += std::count_if(image.pixels.begin(), image.pixels.end(), [](uint32_t pixel) { return pixel != 0; });
    }
    EXPECT_GT(seen, 5000); // there was something to compare
}

// 90 degrees and 101 rows: the plane stands 50 spacings in front of the eye.
TEST(Endoscopy, TheImagePlaneStandsWhereItsRowsFillTheAngle)
{
    Scene scene = HollowScene();
    const float spacings[3] = {0.75f, 0.5f, 2.0f};
    std::copy_n(spacings, 3, scene.volume.data.spacing);
    const TestImage image = Drawn(scene, BackwardView(12, 8, 32), 90, 101, 61);
    const PnImageParam& param = image.image.param;
    EXPECT_EQ(param.rows, 101u);
    EXPECT_EQ(param.columns, 61u);
    EXPECT_EQ(param.rowSpacing, 0.5);
    EXPECT_EQ(param.columnSpacing, 0.5);
    const double row[3] = {1, 0, 0}, column[3] = {0, 0, -1};
    // The eye, 25 mm ahead, 15 mm to the left of the picture and 25 mm up.
    const double position[3] = {12 - 15, 8 + 25, 32 + 25};
    for (int axis = 0; axis < 3; ++axis)
    {
        EXPECT_NEAR(param.rowDirection[axis], row[axis], 2e-6) << axis;
        EXPECT_NEAR(param.columnDirection[axis], column[axis], 2e-6) << axis;
        EXPECT_NEAR(param.position[axis], position[axis], 1e-4) << axis;
    }
}

TEST(Endoscopy, TheImagePlaneFollowsEveryView)
{
    const Scene scene = HollowScene();
    for (uint32_t seed = 0; seed < 20; ++seed)
    {
        Random random(seed);
        const KsViewPoint view = RandomView(random, scene.volume.data);
        const double degrees = random.Real(5, 175);
        const uint32_t rows = uint32_t(random.Between(2, 40)), columns = uint32_t(random.Between(1, 40));
        const PnImageParam param = Drawn(scene, view, float(degrees), rows, columns).image.param;
        const core::Vec3d direction = core::ToDouble(core::VecOf(view.direction));
        const core::Vec3d right = core::Cross(direction, core::ToDouble(core::VecOf(view.up)));
        const core::Vec3d down = core::Cross(direction, right);
        const double half = (rows - 1) * 0.5;
        const core::Vec3d position = core::ToDouble(core::VecOf(view.eye)) +
                                     half / std::tan(degrees * std::numbers::pi / 360) * direction - half * down -
                                     (columns - 1) * 0.5 * right;
        const double tolerance = 1e-5 * (1 + core::Length(position - core::ToDouble(core::VecOf(view.eye))));
        EXPECT_LT(core::Length(core::VecOf(param.rowDirection) - right), 1e-5) << seed;
        EXPECT_LT(core::Length(core::VecOf(param.columnDirection) - down), 1e-5) << seed;
        EXPECT_LT(core::Length(core::VecOf(param.position) - position), tolerance) << seed;
    }
}

TEST(Endoscopy, AnglesAreLimitedTo5And175Degrees)
{
    const Scene scene = HollowScene();
    const KsViewPoint view = BackwardView(16, 16, 16);
    const TestImage narrow = Drawn(scene, view, 5, 9, 12), wide = Drawn(scene, view, 175, 9, 12);
    EXPECT_NEAR(narrow.image.param.position[1], 16 + 4 / std::tan(2.5 * std::numbers::pi / 180), 1e-3);
    EXPECT_NEAR(wide.image.param.position[1], 16 + 4 / std::tan(87.5 * std::numbers::pi / 180), 1e-5);
    for (const float angle : {-INFINITY, -90.0f, 0.0f, 3.0f, 4.999f, 175.001f, 179.0f, 180.0f, 360.0f, INFINITY})
    {
        const TestImage image = Drawn(scene, view, angle, 9, 12);
        const TestImage& expected = angle < 90 ? narrow : wide;
        EXPECT_EQ(image.image.param.position[1], expected.image.param.position[1]) << angle;
        ExpectSamePixels(image, expected);
    }
}

TEST(Endoscopy, AnAngleThatIsNoNumberShowsNothing)
{
    const TestImage image = Drawn(HollowScene(), BackwardView(16, 16, 16), NAN, 9, 12);
    EXPECT_EQ(std::count(image.pixels.begin(), image.pixels.end(), 0u), 9 * 12);
}

// The wall is 10 voxels away whichever way one looks, and faces the ray: 100 * (0.1 + 0.8).
TEST(Endoscopy, FromTheMiddleOfAHollowBallTheWallIsEvenlyLit)
{
    const Scene scene = HollowScene();
    for (const KsViewPoint& view : {BackwardView(16, 16, 16), KsViewPoint{{16, 16, 16}, {1, 0, 0}, {0, 1, 0}},
                                    KsViewPoint{{16, 16, 16}, {0, 0.6f, -0.8f}, {1, 0, 0}}})
    {
        const TestImage image = Drawn(scene, view, 100, 21, 31);
        for (const uint32_t pixel : image.pixels)
        {
            ASSERT_EQ(pixel & 255, 255u);
            ASSERT_NEAR(int(pixel >> 8 & 255), 90, 2);
        }
    }
}

// Looking back with the head up: the patient's left is on the right, his head at the top.
TEST(Endoscopy, LeftIsRightOfTheUpVectorAndUpIsAtTheTop)
{
    Scene scene;
    scene.volume = MakeVolume(33, 33, 33, [](int, int j, int) { return j >= 28 ? 1000 : 0; });
    scene.labels = MakeLabels(33, 33, 33, [](int i, int, int k) { return (i > 16 ? 1 : 0) + (k > 16 ? 2 : 0); });
    const Colour colours[4] = {{200, 0, 0}, {0, 200, 0}, {0, 0, 200}, {200, 200, 0}};
    for (int label = 0; label < 4; ++label)
        scene.palette.AddOpaqueFrom(label, 500, colours[label]);
    const TestImage image = Drawn(scene, BackwardView(16.4f, 10, 16.4f), 40, 20, 20);
    EXPECT_EQ(image.At(15, 4), PixelOf(255, colours[0]));  // right, feet
    EXPECT_EQ(image.At(15, 15), PixelOf(255, colours[1])); // left, feet
    EXPECT_EQ(image.At(4, 4), PixelOf(255, colours[2]));   // right, head
    EXPECT_EQ(image.At(4, 15), PixelOf(255, colours[3]));  // left, head
}

TEST(Endoscopy, AnEyeOutsideTheVolumeSeesItInFront)
{
    Scene scene;
    scene.volume = MakeBall(32, 32, 32, 16, 16, 16, 8);
    scene.palette.AddOpaqueFrom(0, 1000, {50, 100, 150});
    // 50 mm in front of the middle: the ball's outline is seen at asin(8 / 50) from the axis.
    const KsViewPoint view = BackwardView(16, -34, 16);
    const TestImage image = Drawn(scene, view, 30, 101, 101);
    const double distance = 50 / std::tan(15 * std::numbers::pi / 180);
    const double radius = distance * std::tan(std::asin(8.0 / 50));
    for (int row = 0; row < 101; ++row)
        for (int column = 0; column < 101; ++column)
        {
            const double away = std::hypot(row - 50, column - 50) - radius;
            if (std::abs(away) <= 1)
                continue;
            ASSERT_EQ(image.At(row, column), away < 0 ? PixelOf(255, {50, 100, 150}) : 0u) << row << ", " << column;
        }
    // Looking away there is nothing.
    const TestImage away = Drawn(scene, {{16, -34, 16}, {0, -1, 0}, {0, 0, 1}}, 30, 11, 11);
    EXPECT_EQ(std::count(away.pixels.begin(), away.pixels.end(), 0u), 121);
}

// One pixel lies on the eye; its ray goes nowhere and sees the voxel there, in ambient light.
TEST(Endoscopy, AnImageOfOnePixelShowsTheVoxelAtTheEye)
{
    Scene scene;
    scene.volume = MakeVolume(16, 16, 16, [](int i, int, int) { return 100 * i; });
    scene.palette.Add(
        0, 0, 1600, [](int value) { return value < 900 ? 0.5f : 0.0f; },
        [](int value) {
            return Colour{uint8_t(value / 10), 40, 20};
        },
        {0.5f, 0.5f, 0.0f});
    // 0.5 of ambient light, 0.5 of opacity.
    EXPECT_EQ(Drawn(scene, BackwardView(8, 8, 8), 60, 1, 1).At(0, 0), PixelOf(127, {20, 10, 5}));
    EXPECT_EQ(Drawn(scene, BackwardView(10, 8, 8), 60, 1, 1).At(0, 0), 0u);
    EXPECT_EQ(Drawn(scene, BackwardView(-10, 8, 8), 60, 1, 1).At(0, 0), 0u);
    EXPECT_EQ(Drawn(scene, BackwardView(0.5f, 8, 8), 60, 1, 1).At(0, 0), 0u); // too near the border
    for (const float x : {8.0f, 10.0f, 4.3f})
        ExpectPlainPixels(scene, BackwardView(x, 8, 8), Drawn(scene, BackwardView(x, 8, 8), 60, 1, 1));
}

// With one row the plane goes through the eye: one half looks left, the other right.
TEST(Endoscopy, AnImageOfOneRowLooksSideways)
{
    Scene scene;
    scene.volume = MakeVolume(33, 33, 33, [](int i, int, int) { return i < 5 || i > 27 ? 1000 : 0; });
    scene.labels = MakeLabels(33, 33, 33, [](int i, int, int) { return i < 16 ? 0 : 1; });
    scene.palette.AddOpaqueFrom(0, 500, {200, 0, 0});
    scene.palette.AddOpaqueFrom(1, 500, {0, 200, 0});
    const TestImage image = Drawn(scene, BackwardView(16, 16, 16), 60, 1, 7);
    for (int column = 0; column < 7; ++column)
    {
        const uint32_t pixel = image.At(0, column);
        EXPECT_EQ(pixel, column < 3   ? PixelOf(255, {200, 0, 0})
                         : column > 3 ? PixelOf(255, {0, 200, 0})
                                      : 0u)
            << column;
    }
    ExpectPlainPixels(scene, BackwardView(16, 16, 16), image);
}

TEST(Endoscopy, TheVisibleBoxCutsTheView)
{
    const Scene scene = HollowScene();
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    // Takes the wall away behind z = 16: the upper half of the picture is empty.
    const float low[3] = {0, 0, 0}, high[3] = {33, 33, 16};
    ASSERT_TRUE(render.SetVisibleBox(low, high));
    TestImage image = EmptyImage(20, 20);
    ASSERT_TRUE(render.ImagingVE(BackwardView(16, 16, 15.99f), 90, &image.image));
    for (int column = 0; column < 20; ++column)
    {
        EXPECT_EQ(image.At(2, column), 0u) << column;
        EXPECT_EQ(image.At(17, column) & 255, 255u) << column;
    }
}

TEST(Endoscopy, BlendImagesAndAttachedVolumesDoNotShow)
{
    const Scene scene = HollowScene();
    const TestVolume solid = MakeVolume(33, 33, 33, [](int, int, int) { return 3000; });
    const KsViewPoint view = BackwardView(16, 16, 16);
    std::vector<uint32_t> blendPixels(100, 0xFFFFFF00);
    KsBlendImage blend = {{{0, 0}, {9, 0}, {9, 9}, {0, 9}}, blendPixels.data(), {}, {1, 0, 0}, {0, 0, 1}, {16, 18, 16}};
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    ASSERT_EQ(render.AttachVolumeData(solid.data), 1);
    render.SetBlendImage(&blend, 1);
    TestImage image = EmptyImage(10, 10);
    ASSERT_TRUE(render.ImagingVE(view, 60, &image.image));
    ExpectSamePixels(image, Drawn(scene, view, 60, 10, 10));
}

TEST(Endoscopy, ImagesThatCannotBeDrawnAreRefusedAndLeftAlone)
{
    const Scene scene = HollowScene();
    Render3D render;
    const KsViewPoint view = BackwardView(16, 16, 16);
    TestImage image = EmptyImage(4, 4);
    EXPECT_FALSE(render.ImagingVE(view, 60, &image.image)); // no volume yet
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    EXPECT_FALSE(render.ImagingVE(view, 60, nullptr));
    for (int wrong = 0; wrong < 3; ++wrong)
    {
        PnImageRGB record = image.image;
        record.param.rowSpacing = 77;
        if (wrong == 0)
            record.pixels = nullptr;
        else if (wrong == 1)
            record.param.rows = 0;
        else
            record.param.columns = 0;
        EXPECT_FALSE(render.ImagingVE(view, 60, &record)) << wrong;
        EXPECT_EQ(record.param.rowSpacing, 77) << wrong;
    }
    EXPECT_EQ(std::count(image.pixels.begin(), image.pixels.end(), kUntouched), 16);
}

// An endoscopy brings the block tree up to date; a volume rendering after it must know what is visible now.
TEST(Endoscopy, AVolumeRenderingAfterwardsCoversWhatIsVisibleNow)
{
    Scene scene;
    scene.volume = MakeVolume(40, 20, 20, [](int i, int, int) { return i >= 30 ? 2000 : i <= 9 ? 1000 : 0; });
    TestPalette low, high;
    low.Add(
        0, 800, 1200, [](int) { return 1.0f; },
        [](int) {
            return Colour{200, 0, 0};
        });
    high.AddOpaqueFrom(0, 1500, {0, 200, 0});
    const PnImageParam param = {20, 40, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, -10}};
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, low.palette));
    TestImage first(param), perspective = EmptyImage(5, 5), second(param), fresh(param);
    ASSERT_TRUE(render.ImagingVR(&first.image, 0));
    ASSERT_TRUE(render.SetPalette(high.palette));
    ASSERT_TRUE(render.ImagingVE(BackwardView(20, 10, 10), 60, &perspective.image));
    ASSERT_TRUE(render.ImagingVR(&second.image, 0));
    PlainRayCaster(scene.volume.data, {}, high.palette).DrawVolume(fresh.image);
    ExpectSamePixels(second, fresh);
    EXPECT_EQ(second.At(10, 35), PixelOf(255, {0, 200, 0}));
}
} // namespace corvane::tests
