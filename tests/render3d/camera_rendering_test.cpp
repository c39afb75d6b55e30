#include "corvane/Render3D.h"

#include "scenes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

// Volume renderings whose image plane comes from a camera. The operation is exported, but private in the header.
namespace corvane::tests
{
namespace
{
using RenderByCamera = bool (Render3D::*)(KsCamera, float, PnImageRGB*);
RenderByCamera PrivateRenderByCamera();

// An explicit instantiation may name what is private.
template <RenderByCamera operation>
struct Reached
{
    friend RenderByCamera PrivateRenderByCamera() { return operation; }
};
template struct Reached<&Render3D::ImagingVR>;

bool RenderFrom(Render3D& render, const KsCamera& camera, float field, PnImageRGB* image)
{
    return (render.*PrivateRenderByCamera())(camera, field, image);
}

// Everything is opaque, red where i is small and green where it is large.
Scene TwoHalves()
{
    const auto colourOf = [](int value) { return value < 750 ? Colour{200, 0, 0} : Colour{0, 200, 0}; };
    Scene scene;
    scene.volume = MakeVolume(20, 20, 20, [](int i, int, int) { return i < 10 ? 600 : 900; });
    scene.palette.Add(
        0, 500, 1000, [](int) { return 1.0f; }, colourOf);
    return scene;
}

constexpr KsCamera kFromTheFeet = {{9.5f, 9.5f, -10}, {0, 0, 1}, {0, -1, 0}};
} // namespace

// Looking along +z with -y up, rows run towards +x and columns towards +y.
TEST(CameraRendering, PutsTheCentreIntoTheMiddleAndTheFieldAcrossTheShorterSide)
{
    const Scene scene = TwoHalves();
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    TestImage image({40, 60, 7, 8, {9, 9, 9}, {9, 9, 9}, {9, 9, 9}});
    ASSERT_TRUE(RenderFrom(render, kFromTheFeet, 20, &image.image));
    const PnImageParam& param = image.image.param;
    EXPECT_EQ(param.rows, 40u);
    EXPECT_EQ(param.columns, 60u);
    EXPECT_EQ(param.rowSpacing, 0.5); // 20 mm over 40 rows
    EXPECT_EQ(param.columnSpacing, 0.5);
    const double row[3] = {1, 0, 0}, column[3] = {0, 1, 0};
    const double first[3] = {9.5 - 0.5 * 29.5, 9.5 - 0.5 * 19.5, -10};
    for (int axis = 0; axis < 3; ++axis)
    {
        EXPECT_NEAR(param.rowDirection[axis], row[axis], 2.5e-6) << axis; // its length is an approximation
        EXPECT_NEAR(param.columnDirection[axis], column[axis], 2.5e-6) << axis;
        EXPECT_NEAR(param.position[axis], first[axis], 1e-4) << axis; // 25 mm of such directions
    }
    EXPECT_EQ(image.At(20, 24), PixelOf(255, {200, 0, 0})); // x = 6.75
    EXPECT_EQ(image.At(20, 34), PixelOf(255, {0, 200, 0})); // x = 11.75
}

TEST(CameraRendering, IsThePictureOfThePlaneThatItReports)
{
    for (uint32_t seed = 0; seed < 10; ++seed)
    {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Scene scene = RandomScene(random, 12, 30);
        Render3D render;
        ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
        float low[3], high[3];
        ASSERT_TRUE(render.GetBoundingBox(low, high));
        KsCamera camera = {};
        for (int axis = 0; axis < 3; ++axis)
            camera.center[axis] = (low[axis] + high[axis]) / 2;
        core::Store(core::ToFloat(1.5 * random.UnitVector()), camera.direction); // neither unit nor at right angles
        core::Store(core::ToFloat(random.UnitVector()), camera.up);
        TestImage byCamera({23, 31, 0, 0, {}, {}, {}});
        ASSERT_TRUE(RenderFrom(render, camera, float(random.Real(5, 60)), &byCamera.image));
        TestImage byPlane(byCamera.image.param);
        ASSERT_TRUE(render.ImagingVR(&byPlane.image, 0));
        ExpectSamePixels(byCamera, byPlane);
    }
}

TEST(CameraRendering, RefusesWhatCannotBePlacedAndLeavesTheImageAsItWas)
{
    const Scene scene = TwoHalves();
    Render3D render;
    const auto expectRefused = [&](const PnImageParam& param, float field)
    {
        TestImage image(param);
        const TestImage before(image);
        EXPECT_FALSE(RenderFrom(render, kFromTheFeet, field, &image.image));
        EXPECT_EQ(std::memcmp(&image.image.param, &before.image.param, sizeof param), 0);
        ExpectSamePixels(image, before);
    };
    const PnImageParam param = {8, 8, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}};
    expectRefused(param, 20); // no volume yet
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    for (const float field : {0.0f, -20.0f, std::numeric_limits<float>::quiet_NaN()})
        expectRefused(param, field);
    PnImageParam empty = param;
    empty.rows = 0;
    expectRefused(empty, 20);
    empty = param;
    empty.columns = 0;
    expectRefused(empty, 20);
    EXPECT_FALSE(RenderFrom(render, kFromTheFeet, 20, nullptr));
    PnImageRGB withoutPixels = {nullptr, param};
    EXPECT_FALSE(RenderFrom(render, kFromTheFeet, 20, &withoutPixels));
}
} // namespace corvane::tests
