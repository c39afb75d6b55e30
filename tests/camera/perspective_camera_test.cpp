#include "camera/perspective_camera.h"

#include "camera_checks.h"

namespace corvane::camera
{
namespace
{
// At (10, 20, 30), turned away from every axis.
PerspectiveCamera ObliqueCamera()
{
    PerspectiveCamera camera;
    camera.SetEye({10, 20, 30});
    camera.RotateH(0.7f);
    camera.RotateV(0.4f);
    camera.RotateScreen(-1.2f);
    return camera;
}

TEST(PerspectiveCamera, StartsWithItsThreeUnreadNumbers)
{
    struct Fields : PerspectiveCamera
    {
        using PerspectiveCamera::aspect_;
        using PerspectiveCamera::planeDistance_;
        using PerspectiveCamera::viewAngleDegrees_;
    };
    EXPECT_EQ(Fields().planeDistance_, 1.0f);
    EXPECT_EQ(Fields().viewAngleDegrees_, 90.0f);
    EXPECT_EQ(Fields().aspect_, 1.0f);
}

TEST(PerspectiveCamera, TakesItsLookAtPointAlongWhenTheEyeMoves)
{
    PerspectiveCamera camera;
    camera.SetEye({5, 6, 7});
    ExpectNear(camera.Eye(), {5, 6, 7}, 0.0);
    ExpectNear(camera.Origin(), {5, 7, 7}, 0.0);
    ExpectView(camera, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}, {0, 0, -1});

    PerspectiveCamera oblique = ObliqueCamera();
    const Vec3d direction = oblique.Direction(), x = oblique.AxisX();
    oblique.SetEye({-50, 3, 8});
    ExpectNear(oblique.Origin(), Vec3d{-50, 3, 8} + direction);
    ExpectNear(oblique.Direction(), direction, 1e-13); // the look-at point is rounded where the eye is
    ExpectNear(oblique.AxisX(), x, 1e-13);
}

TEST(PerspectiveCamera, IgnoresANewOrigin)
{
    PerspectiveCamera camera = ObliqueCamera();
    const std::vector<double> before = StateOf(camera);
    camera.SetOrigin({100, 200, 300});
    camera.SetOrigin(camera.Eye());
    EXPECT_EQ(StateOf(camera), before);
}

TEST(PerspectiveCamera, RefusesEverySize)
{
    PerspectiveCamera camera(2.0, 1.5);
    EXPECT_FALSE(camera.SetSize(30.0f, 20.0f));
    EXPECT_FALSE(camera.SetSize(0.0f, kNaN));
    double width, height;
    EXPECT_TRUE(camera.GetSize(width, height));
    EXPECT_EQ(width, 2.0);
    EXPECT_EQ(height, 1.5);
}

TEST(PerspectiveCamera, ShowsTheStandardViewsFromItsEye)
{
    PerspectiveCamera camera = ObliqueCamera();
    camera.RotateToSagittal();
    ExpectView(camera, {-1, 0, 0}, {0, 0, 1}, {0, 1, 0}, {0, 0, -1});
    ExpectNear(camera.Origin(), {9, 20, 30}, 0.0);
    camera.RotateToCoronal();
    ExpectView(camera, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}, {0, 0, -1});
    ExpectNear(camera.Origin(), {10, 21, 30}, 0.0);
    camera.RotateToAxial();
    ExpectView(camera, {0, 0, 1}, {0, -1, 0}, {1, 0, 0}, {0, 1, 0});
    ExpectNear(camera.Origin(), {10, 20, 31}, 0.0);
    camera.RotateToX();
    ExpectView(camera, {1, 0, 0}, {0, -1, 0}, {0, 0, -1}, {0, 1, 0});
    ExpectNear(camera.Origin(), {11, 20, 30}, 0.0);
    camera.RotateToBack();
    ExpectView(camera, {-1, 0, 0}, {0, -1, 0}, {0, 0, 1}, {0, 1, 0});
    ExpectNear(camera.Origin(), {9, 20, 30}, 0.0);
    ExpectNear(camera.Eye(), {10, 20, 30}, 0.0);
}

TEST(PerspectiveCamera, LooksAroundTowardsItsXAxisAndItsUp)
{
    PerspectiveCamera camera;
    camera.RotateH(0.5f);
    ExpectNear(camera.Direction(), {std::sin(0.5), std::cos(0.5), 0});
    ExpectNear(camera.AxisX(), {std::cos(0.5), -std::sin(0.5), 0});
    ExpectNear(camera.Eye(), {0, -1, 0}, 0.0);
    camera.RotateToCoronal();
    camera.RotateV(0.5f);
    ExpectNear(camera.Direction(), {0, std::cos(0.5), std::sin(0.5)});
    ExpectNear(camera.Up(), {0, -std::sin(0.5), std::cos(0.5)});
    ExpectNear(camera.AxisX(), {1, 0, 0});
}

TEST(PerspectiveCamera, TurnsAnObliqueViewAboutItsOwnAxes)
{
    for (const float angle : {0.3f, -1.1f, 1.5f})
    {
        PerspectiveCamera camera = ObliqueCamera();
        const Vec3d direction = camera.Direction(), up = camera.Up(), x = camera.AxisX();
        camera.RotateH(angle);
        ExpectNear(camera.Direction(), Turned(direction, up, -double(angle)), 1e-13);
        EXPECT_NEAR(core::Length(camera.Origin() - camera.Eye()), 1.0, 1e-13);

        camera = ObliqueCamera();
        camera.RotateV(angle);
        ExpectNear(camera.Direction(), Turned(direction, x, angle), 1e-13);
        ExpectNear(camera.Up(), Turned(up, x, angle), 1e-13);
    }
}

TEST(PerspectiveCamera, ComesBackAfterFourQuarterTurns)
{
    const double turned = 4.0 * double(kQuarterTurn); // a full turn but for 1.7e-7
    PerspectiveCamera camera = ObliqueCamera();
    const Vec3d direction = camera.Direction(), x = camera.AxisX(), up = camera.Up();
    for (int quarter = 0; quarter < 4; ++quarter)
        camera.RotateH(kQuarterTurn);
    ExpectNear(camera.Direction(), Turned(direction, up, -turned), 1e-13);
    ExpectNear(camera.Direction(), direction, 1e-6);

    camera = ObliqueCamera();
    for (int quarter = 0; quarter < 4; ++quarter)
        camera.RotateV(kQuarterTurn);
    ExpectNear(camera.Direction(), Turned(direction, x, turned), 1e-13);
    ExpectNear(camera.AxisX(), x, 1e-13);
}

TEST(PerspectiveCamera, DoesNotFitItsViewToTheImage)
{
    PerspectiveCamera camera(2.0, 2.0);
    camera.SetEye({10, 20, 30});
    PnImageParam param = {};
    EXPECT_TRUE(camera.GetImageParams(256, 512, param));
    EXPECT_EQ(param.rows, 256u);
    EXPECT_EQ(param.columns, 512u);
    EXPECT_EQ(param.rowSpacing, 2.0 / 256);
    EXPECT_EQ(param.columnSpacing, 2.0 / 512);
    ExpectNear(core::VecOf(param.rowDirection), {1, 0, 0}, 0.0);
    ExpectNear(core::VecOf(param.columnDirection), {0, 0, -1}, 0.0);
    ExpectNear(core::VecOf(param.position), {10 - 1, 20, 30 + 1}, 0.0);
}

TEST(PerspectiveCamera, StepsForwardAndBackwardAlongItsDirection)
{
    PerspectiveCamera camera = ObliqueCamera();
    const Vec3d direction = camera.Direction(), x = camera.AxisX();
    camera.Step(2.5f);
    ExpectNear(camera.Eye(), Vec3d{10, 20, 30} + 2.5 * direction, 1e-13);
    ExpectNear(camera.Origin(), Vec3d{10, 20, 30} + 3.5 * direction, 1e-13);
    ExpectNear(camera.Direction(), direction, 1e-13);
    ExpectNear(camera.AxisX(), x, 1e-13);
    camera.Step(-5.0f);
    ExpectNear(camera.Eye(), Vec3d{10, 20, 30} - 2.5 * direction, 1e-12);
}

TEST(PerspectiveCamera, StaysForAStepOfZeroOrNotFinite)
{
    PerspectiveCamera camera = ObliqueCamera();
    const std::vector<double> before = StateOf(camera);
    for (const float distance : {0.0f, -0.0f, kNaN, kInfinity, -kInfinity})
    {
        camera.Step(distance);
        EXPECT_EQ(StateOf(camera), before) << distance;
    }
    camera.Step(std::numeric_limits<float>::max());
    for (const double number : StateOf(camera))
        EXPECT_TRUE(std::isfinite(number));
}
} // namespace
} // namespace corvane::camera
