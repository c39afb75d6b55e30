#include "camera/orthographic_camera.h"
#include "camera/perspective_camera.h"
#include "corvane/Engine3D.h"
#include "tests/core/random.h"
#include "tests/test_volume.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>

// Turning, zooming and stepping. What a camera does is the camera's own: here the engine's must do the same.
namespace corvane::tests
{
namespace
{
using camera::Camera;

constexpr float kQuarterTurn = 1.57079633f;
constexpr float kNoNumbers[] = {NAN, INFINITY, -INFINITY};

bool IsSame(const PnImageParam& a, const PnImageParam& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

PnImageParam Outside(Engine3D& engine)
{
    PnImageParam param = {};
    EXPECT_TRUE(engine.GetParamsOfVR(40, 60, param));
    return param;
}

// The perspective camera's own plane: an engine without a volume hands it out unchanged.
PnImageParam Inside(Engine3D& engine)
{
    PnImageRGB image = {};
    EXPECT_TRUE(engine.ImagingVE(40, 60, nullptr, 60, false, &image));
    return image.param;
}

PnImageParam PlaneOf(const Camera& camera)
{
    PnImageParam param = {};
    EXPECT_TRUE(camera.GetImageParams(40, 60, param));
    return param;
}

void ExpectVector(const double* vector, double x, double y, double z)
{
    EXPECT_NEAR(vector[0], x, 1e-6);
    EXPECT_NEAR(vector[1], y, 1e-6);
    EXPECT_NEAR(vector[2], z, 1e-6);
}

struct Turn
{
    const char* name;
    std::function<void(Engine3D&, float)> engine;
    std::function<void(Camera&, float)> camera;
};

std::vector<Turn> AllTurns()
{
    using E = Engine3D;
    using C = Camera;
    return {
        {"RotateScreen", [](E& e, float a) { e.RotateScreen(a); }, [](C& c, float a) { c.RotateScreen(a); }},
        {"RotateH", [](E& e, float a) { e.RotateH(a); }, [](C& c, float a) { c.RotateH(a); }},
        {"RotateV", [](E& e, float a) { e.RotateV(a); }, [](C& c, float a) { c.RotateV(a); }},
        {"RotateToSagittal", [](E& e, float) { e.RotateToSagittal(); }, [](C& c, float) { c.RotateToSagittal(); }},
        {"RotateToCoronal", [](E& e, float) { e.RotateToCoronal(); }, [](C& c, float) { c.RotateToCoronal(); }},
        {"RotateToAxial", [](E& e, float) { e.RotateToAxial(); }, [](C& c, float) { c.RotateToAxial(); }},
        {"RotateToZ", [](E& e, float) { e.RotateToZ(); }, [](C& c, float) { c.RotateToZ(); }},
        {"RotateToX", [](E& e, float) { e.RotateToX(); }, [](C& c, float) { c.RotateToX(); }},
        {"RotateToY", [](E& e, float) { e.RotateToY(); }, [](C& c, float) { c.RotateToY(); }},
        {"RotateToBack", [](E& e, float) { e.RotateToBack(); }, [](C& c, float) { c.RotateToBack(); }},
    };
}

TestVolume MakeBox()
{
    return MakeVolume(20, 24, 28, [](int, int, int) { return 0; });
}
} // namespace

TEST(Navigation, TurnsTheCameraOfTheRenderTypeAndNoOther)
{
    Random random(7);
    Engine3D engine;
    camera::OrthographicCamera orthographic;
    camera::PerspectiveCamera perspective(2, 2);
    const std::vector<Turn> turns = AllTurns();
    for (int step = 0; step < 400; ++step)
    {
        const bool inside = random.Below(2);
        const Turn& turn = turns[size_t(random.Below(int(turns.size())))];
        float angle = float(random.Real(-4, 4));
        if (random.Below(10) == 0)
            angle = kNoNumbers[random.Below(3)];
        SCOPED_TRACE(testing::Message() << step << ", " << turn.name << " by " << angle << ", inside " << inside);
        engine.SetRenderType(inside ? KsRenderPerspective : KsRenderParallel);
        turn.engine(engine, angle);
        turn.camera(inside ? static_cast<Camera&>(perspective) : orthographic, angle);
        ASSERT_TRUE(IsSame(Outside(engine), PlaneOf(orthographic)));
        ASSERT_TRUE(IsSame(Inside(engine), PlaneOf(perspective)));
    }
}

TEST(Navigation, ByAQuarterTurnToTheRightLooksFromThePatientsLeft)
{
    const TestVolume volume = MakeBox();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    engine.RotateH(kQuarterTurn);
    const PnImageParam turned = Outside(engine);
    ExpectVector(turned.rowDirection, 0, 1, 0); // anterior is on the left
    ExpectVector(turned.columnDirection, 0, 0, -1);
    engine.RotateScreen(kQuarterTurn);
    ExpectVector(Outside(engine).rowDirection, 0, 0, -1); // what was right is up
    ExpectVector(Outside(engine).columnDirection, 0, -1, 0);
}

TEST(Navigation, WithoutNumbersChangesNothing)
{
    const TestVolume volume = MakeBox();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    engine.RotateH(0.3f);
    const PnImageParam outside = Outside(engine);
    double eye[3], after[3];
    ASSERT_TRUE(engine.GetOrigin(eye));
    for (const KsRender type : {KsRenderParallel, KsRenderPerspective})
        for (const float number : kNoNumbers)
        {
            engine.SetRenderType(type);
            engine.RotateScreen(number);
            engine.RotateH(number);
            engine.RotateV(number);
            engine.Zoom(number);
            engine.Step(number);
            engine.StepOrigin(number);
            EXPECT_TRUE(IsSame(Outside(engine), outside));
            ASSERT_TRUE(engine.GetOrigin(after));
            EXPECT_EQ(std::memcmp(after, eye, sizeof eye), 0);
        }
}

TEST(Navigation, RenderTypesBeyondTheTwoAreIgnored)
{
    Engine3D engine;
    EXPECT_EQ(engine.GetRenderType(), KsRenderParallel);
    for (const KsRender type : {KsRenderPerspective, KsRenderParallel, KsRenderPerspective})
    {
        engine.SetRenderType(type);
        EXPECT_EQ(engine.GetRenderType(), type);
        int32_t number = 2;
        for (const int32_t other : {2, -1, 1000000, std::numeric_limits<int32_t>::min()})
        {
            std::memcpy(&number, &other, sizeof number);
            engine.SetRenderType(static_cast<KsRender>(number));
            EXPECT_EQ(engine.GetRenderType(), type);
        }
        const PnImageParam outside = Outside(engine), inside = Inside(engine);
        engine.RotateH(0.25f);
        EXPECT_EQ(IsSame(Outside(engine), outside), type == KsRenderPerspective);
        EXPECT_EQ(IsSame(Inside(engine), inside), type == KsRenderParallel);
    }
}

// The box has sides of 16.8, 20.8 and 24.8 mm.
TEST(Navigation, StartsInFrontWithTheWholeVolumeInView)
{
    TestVolume volume = MakeBox();
    volume.data.origin[0] = 100;
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    const PnImageParam plane = Outside(engine); // 40 rows, 60 columns
    const double diagonal = std::sqrt(16.8 * 16.8 + 20.8 * 20.8 + 24.8 * 24.8);
    const double centre[3] = {109.5, 11.5, 13.5};
    ExpectVector(plane.rowDirection, 1, 0, 0);
    ExpectVector(plane.columnDirection, 0, 0, -1);
    EXPECT_NEAR(plane.rowSpacing, diagonal / 40, 1e-5);
    EXPECT_EQ(plane.rowSpacing, plane.columnSpacing);
    EXPECT_NEAR(plane.position[0], centre[0] - 0.75 * diagonal, 1e-4);
    EXPECT_NEAR(plane.position[1], centre[1] - 1.2 * diagonal, 1e-4);
    EXPECT_NEAR(plane.position[2], centre[2] + 0.5 * diagonal, 1e-4);
}

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
