#include "camera/orthographic_camera.h"
#include "camera/perspective_camera.h"
#include "navigation_planes.h"
#include "tests/core/random.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>

// Turning. What a camera does is the camera's own: here the engine's must do the same.
namespace corvane::tests
{
namespace
{
using camera::Camera;

constexpr float kQuarterTurn = 1.57079633f;
constexpr float kNoNumbers[] = {NAN, INFINITY, -INFINITY};

PnImageParam PlaneOf(const Camera& camera)
{
    PnImageParam param = {};
    EXPECT_TRUE(camera.GetImageParams(40, 60, param));
    return param;
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
} // namespace corvane::tests
