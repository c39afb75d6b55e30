#include "navigation_planes.h"

#include <cmath>
#include <vector>

// Zooming from outside and stepping inside.
namespace corvane::tests
{
TEST(Zooming, IsCountedFromTheWholeVolume)
{
    const TestVolume volume = MakeBox();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    const double whole = Outside(engine).rowSpacing;
    engine.Zoom(2);
    const PnImageParam twice = Outside(engine);
    EXPECT_EQ(twice.rowSpacing, 2 * whole); // shows twice as much
    engine.Zoom(2);
    EXPECT_TRUE(IsSame(Outside(engine), twice));
    for (const float refused : {0.0f, -0.0f, -3.0f, -INFINITY, NAN, INFINITY, 3e38f})
    {
        engine.Zoom(refused);
        EXPECT_TRUE(IsSame(Outside(engine), twice)) << refused;
    }
    engine.Zoom(0.5f);
    EXPECT_EQ(Outside(engine).rowSpacing, 0.5 * whole);
    engine.Zoom(1);
    EXPECT_EQ(Outside(engine).rowSpacing, whole);
}

TEST(Zooming, IsTheOrthographicCamerasWhateverTheRenderType)
{
    Engine3D engine;
    engine.SetRenderType(KsRenderPerspective);
    const PnImageParam inside = Inside(engine), outside = Outside(engine);
    engine.Zoom(4);
    EXPECT_TRUE(IsSame(Inside(engine), inside));
    EXPECT_EQ(Outside(engine).rowSpacing, 4 * outside.rowSpacing);
}

TEST(Zooming, AsFarAsNumbersGoStillDraws)
{
    const TestVolume volume = MakeBox();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const float factor : {1e-45f, 1e-38f, 1e-6f, 1e6f, 1e36f})
    {
        engine.Zoom(factor);
        std::vector<uint32_t> pixels(30);
        std::vector<int16_t> values(30);
        EXPECT_TRUE(engine.ImagingVR(5, 6, pixels.data(), false, nullptr, 0));
        EXPECT_TRUE(engine.ImagingMIP(5, 6, values.data(), false, nullptr));
        EXPECT_TRUE(engine.ImagingAIP(5, 6, values.data(), false, nullptr));
        EXPECT_EQ(values[0], factor < 1 ? 0 : -1024); // the middle of the volume, or far beside it
    }
}

TEST(Zooming, EndsWithTheNextVolume)
{
    const TestVolume volume = MakeBox();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    const PnImageParam whole = Outside(engine);
    engine.Zoom(0.3f);
    engine.RotateToSagittal();
    ASSERT_TRUE(engine.InitData(volume.data));
    EXPECT_TRUE(IsSame(Outside(engine), whole));
}

TEST(Stepping, MovesThePerspectiveCameraAlongItsDirection)
{
    const TestVolume volume = MakeBox();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data)); // looks to the feet from the middle
    const PnImageParam outside = Outside(engine);
    double start[3], eye[3];
    ASSERT_TRUE(engine.GetOrigin(start));
    ExpectVector(start, 9.5, 11.5, 13.5);
    for (const KsRender type : {KsRenderParallel, KsRenderPerspective})
    {
        engine.SetRenderType(type);
        engine.Step(2.5f);
        ASSERT_TRUE(engine.GetOrigin(eye));
        ExpectVector(eye, start[0], start[1], start[2] - 2.5);
        engine.StepOrigin(-4);
        ASSERT_TRUE(engine.GetOrigin(eye));
        ExpectVector(eye, start[0], start[1], start[2] + 1.5);
        engine.StepOrigin(1.5f);
        EXPECT_TRUE(IsSame(Outside(engine), outside));
    }
    engine.RotateToCoronal(); // the type is perspective now
    engine.Step(3);
    ASSERT_TRUE(engine.GetOrigin(eye));
    ExpectVector(eye, start[0], start[1] + 3, start[2]);
}

TEST(Stepping, ByNothingLeavesTheEyeExactlyWhereItWas)
{
    Engine3D engine;
    engine.SetRenderType(KsRenderPerspective);
    engine.RotateH(0.1f);
    engine.RotateV(0.7f);
    const double place[3] = {1e9 / 3, -1.0 / 3, 1e-9 / 7};
    ASSERT_TRUE(engine.SetOrigin(place));
    const PnImageParam before = Inside(engine);
    double eye[3];
    for (const float nothing : {0.0f, -0.0f})
    {
        engine.Step(nothing);
        engine.StepOrigin(nothing);
        ASSERT_TRUE(engine.GetOrigin(eye));
        EXPECT_EQ(std::memcmp(eye, place, sizeof eye), 0);
        EXPECT_TRUE(IsSame(Inside(engine), before));
    }
}

TEST(Stepping, FromAPlaceKeepsTheDirection)
{
    Engine3D engine;
    engine.SetRenderType(KsRenderPerspective);
    engine.RotateToSagittal();
    const double place[3] = {30, 40, 50};
    ASSERT_TRUE(engine.SetOrigin(place));
    engine.Step(8);
    double eye[3];
    ASSERT_TRUE(engine.GetOrigin(eye));
    ExpectVector(eye, 22, 40, 50);
    EXPECT_FALSE(engine.SetOrigin(nullptr));
    EXPECT_FALSE(engine.GetOrigin(nullptr));
}
} // namespace corvane::tests
