#include "camera/orthographic_camera.h"

#include <algorithm>

#include "camera_checks.h"

namespace corvane::camera
{
namespace
{
// Pivot (10, 20, 30), seen from 100 mm in front.
OrthographicCamera FrontCamera()
{
    OrthographicCamera camera;
    camera.SetEye({10, -80, 30});
    camera.SetOrigin({10, 20, 30});
    camera.RotateToY();
    return camera;
}

// Turned away from every axis.
OrthographicCamera ObliqueCamera()
{
    OrthographicCamera camera = FrontCamera();
    camera.RotateH(0.7f);
    camera.RotateV(0.4f);
    camera.RotateScreen(-1.2f);
    return camera;
}

void ExpectSize(const Camera& camera, double width, double height)
{
    double actualWidth, actualHeight;
    EXPECT_TRUE(camera.GetSize(actualWidth, actualHeight));
    EXPECT_EQ(actualWidth, width);
    EXPECT_EQ(actualHeight, height);
}

TEST(OrthographicCamera, StartsUnzoomedWithBaseSize1)
{
    struct Fields : OrthographicCamera
    {
        using OrthographicCamera::baseHeight_;
        using OrthographicCamera::baseWidth_;
        using OrthographicCamera::zoom_;
    };
    Fields camera;
    EXPECT_EQ(camera.zoom_, 1.0f);
    EXPECT_EQ(camera.baseWidth_, 1.0);
    EXPECT_EQ(camera.baseHeight_, 1.0);
    camera.Zoom(2.0f);
    EXPECT_EQ(camera.zoom_, 2.0f);
    camera.Zoom(-3.0f); // kept although the size is refused
    EXPECT_EQ(camera.zoom_, -3.0f);
    camera.Zoom(kNaN);
    EXPECT_EQ(camera.zoom_, -3.0f);
    EXPECT_TRUE(camera.SetSize(30.0f, 20.0f));
    EXPECT_EQ(camera.zoom_, 1.0f);
    EXPECT_EQ(camera.baseWidth_, 30.0);
    EXPECT_EQ(camera.baseHeight_, 20.0);
}

TEST(OrthographicCamera, LooksFromTheEyeToTheOrigin)
{
    OrthographicCamera camera;
    camera.SetEye({-3, 0, -4});
    ExpectNear(camera.Eye(), {-3, 0, -4}, 0.0);
    ExpectNear(camera.Direction(), {0.6, 0, 0.8});
    ExpectNear(camera.AxisX(), {0, -1, 0}); // (0.6, 0, 0.8) x (0, 0, 1), as a unit vector
    ExpectNear(camera.Up(), {-0.8, 0, 0.6});
    ExpectNear(camera.AxisY(), {0.8, 0, -0.6});
    camera.SetOrigin({-3, 12, -9}); // 12 to posterior, 5 down
    ExpectNear(camera.Origin(), {-3, 12, -9}, 0.0);
    ExpectNear(camera.Direction(), {0, 12.0 / 13.0, -5.0 / 13.0});
    ExpectScreenAxes(camera);
}

TEST(OrthographicCamera, KeepsDirectionAndAxesWhenEyeAndOriginCoincide)
{
    OrthographicCamera camera = ObliqueCamera();
    const Vec3d direction = camera.Direction(), up = camera.Up(), x = camera.AxisX(), y = camera.AxisY();
    camera.SetEye(camera.Origin());
    ExpectNear(camera.Eye(), {10, 20, 30}, 0.0);
    ExpectView(camera, direction, up, x, y);
    camera.RotateH(1.0f);
    camera.RotateV(1.0f);
    camera.RotateToBack();
    ExpectNear(camera.Eye(), {10, 20, 30}, 0.0);
    ExpectView(camera, direction, up, x, y);
    camera.RotateToX(); // only up is taken, for the next direction
    ExpectView(camera, direction, {0, -1, 0}, x, y);
}

TEST(OrthographicCamera, TakesADistanceOfATenThousandthForNone)
{
    OrthographicCamera camera;
    camera.SetEye({0, 0, -0.0001});
    ExpectNear(camera.Direction(), {0, 1, 0}, 0.0);
    camera.SetEye({0, 0, -0.000101});
    ExpectNear(camera.Direction(), {0, 0, 1});
}

TEST(OrthographicCamera, RebuildsUpFromTheXAxisWhenItLooksAlongUp)
{
    OrthographicCamera camera;
    camera.SetEye({0, 0, -10}); // along up
    ExpectView(camera, {0, 0, 1}, {0, -1, 0}, {1, 0, 0}, {0, 1, 0});
    OrthographicCamera down;
    down.SetEye({0, 0, 10}); // against up
    ExpectView(down, {0, 0, -1}, {0, 1, 0}, {1, 0, 0}, {0, -1, 0});
}

TEST(OrthographicCamera, TakesUpForParallelWithinAHundredThousandthOfEachComponent)
{
    OrthographicCamera near;
    near.SetEye({-0.9e-5, 0, -1});
    ExpectNear(near.AxisX(), {1, 0, 0}, 1e-4); // kept
    OrthographicCamera beyond;
    beyond.SetEye({-1.1e-5, 0, -1});
    ExpectNear(beyond.AxisX(), {0, -1, 0}, 1e-4); // (1.1e-5, 0, 1) x (0, 0, 1)
    ExpectScreenAxes(beyond, 1e-10);
}

TEST(OrthographicCamera, FindsAxesWhenBothUpAndXAxisLieAlongTheNewDirection)
{
    OrthographicCamera camera;
    camera.RotateToSagittal(); // x axis to posterior
    camera.SetEye(camera.Origin());
    camera.RotateToAxial();    // up to anterior, the axes stay
    camera.SetEye({0, -5, 0}); // looks to posterior
    ExpectNear(camera.Direction(), {0, 1, 0}, 0.0);
    ExpectScreenAxes(camera);
}

TEST(OrthographicCamera, ShowsTheStandardViewsFromItsDistance)
{
    OrthographicCamera camera = ObliqueCamera();
    camera.RotateToSagittal();
    ExpectView(camera, {-1, 0, 0}, {0, 0, 1}, {0, 1, 0}, {0, 0, -1});
    ExpectNear(camera.Eye(), {110, 20, 30}, 1e-11);
    camera.RotateToCoronal();
    ExpectView(camera, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}, {0, 0, -1});
    ExpectNear(camera.Eye(), {10, -80, 30}, 1e-11);
    camera.RotateToAxial();
    ExpectView(camera, {0, 0, 1}, {0, -1, 0}, {1, 0, 0}, {0, 1, 0});
    ExpectNear(camera.Eye(), {10, 20, -70}, 1e-11);
    camera.RotateToX();
    ExpectView(camera, {-1, 0, 0}, {0, -1, 0}, {0, 0, 1}, {0, 1, 0});
    ExpectNear(camera.Eye(), {110, 20, 30}, 1e-11);
    camera.RotateToBack();
    ExpectView(camera, {1, 0, 0}, {0, -1, 0}, {0, 0, -1}, {0, 1, 0});
    ExpectNear(camera.Eye(), {-90, 20, 30}, 1e-11);
    ExpectNear(camera.Origin(), {10, 20, 30}, 0.0);
}

TEST(OrthographicCamera, OrbitsTowardsItsXAxis)
{
    OrthographicCamera camera = FrontCamera();
    camera.RotateH(0.5f);
    ExpectNear(camera.Eye(), {10 + 100 * std::sin(0.5), 20 - 100 * std::cos(0.5), 30}, 1e-12);
    ExpectNear(camera.Direction(), {-std::sin(0.5), std::cos(0.5), 0});
    ExpectNear(camera.AxisX(), {std::cos(0.5), std::sin(0.5), 0});
    ExpectNear(camera.Up(), {0, 0, 1});
}

TEST(OrthographicCamera, OrbitsTowardsItsUp)
{
    OrthographicCamera camera = FrontCamera();
    camera.RotateV(0.5f);
    ExpectNear(camera.Eye(), {10, 20 - 100 * std::cos(0.5), 30 + 100 * std::sin(0.5)}, 1e-12);
    ExpectNear(camera.Direction(), {0, std::cos(0.5), -std::sin(0.5)});
    ExpectNear(camera.AxisX(), {1, 0, 0});
    ExpectNear(camera.Up(), {0, std::sin(0.5), std::cos(0.5)});
}

TEST(OrthographicCamera, OrbitsAnObliqueViewAboutItsOwnAxes)
{
    for (const float angle : {0.3f, -1.1f, 1.5f})
    {
        OrthographicCamera camera = ObliqueCamera();
        const Vec3d arm = camera.Eye() - camera.Origin(), up = camera.Up();
        camera.RotateH(angle);
        ExpectNear(camera.Eye() - camera.Origin(), Turned(arm, up, angle), 1e-11);

        camera = ObliqueCamera();
        const Vec3d x = camera.AxisX();
        camera.RotateV(angle);
        ExpectNear(camera.Eye() - camera.Origin(), Turned(arm, x, -double(angle)), 1e-11);
        ExpectNear(camera.Up(), Turned(up, x, -double(angle)), 1e-11);
        EXPECT_NEAR(core::Length(camera.Origin() - camera.Eye()), 100.0, 1e-11);
    }
}

TEST(OrthographicCamera, ComesBackAfterFourQuarterTurns)
{
    const double turned = 4.0 * double(kQuarterTurn); // a full turn but for 1.7e-7
    OrthographicCamera camera = ObliqueCamera();
    const Vec3d arm = camera.Eye() - camera.Origin(), x = camera.AxisX(), up = camera.Up();
    for (int quarter = 0; quarter < 4; ++quarter)
        camera.RotateH(kQuarterTurn);
    ExpectNear(camera.Eye() - camera.Origin(), Turned(arm, up, turned), 1e-11);
    ExpectNear(camera.Eye() - camera.Origin(), arm, 1e-4);
    ExpectNear(camera.AxisX(), x, 1e-6);

    camera = ObliqueCamera();
    for (int quarter = 0; quarter < 4; ++quarter)
        camera.RotateV(kQuarterTurn);
    ExpectNear(camera.Eye() - camera.Origin(), Turned(arm, x, -turned), 1e-11);
    ExpectNear(camera.AxisX(), x, 1e-11);
    ExpectNear(camera.Up(), up, 1e-6);
}

TEST(OrthographicCamera, RefusesSizesThatAreNotAboveZeroAndFinite)
{
    OrthographicCamera camera;
    EXPECT_TRUE(camera.SetSize(30.0f, 20.0f));
    ExpectSize(camera, 30.0, 20.0);
    const std::vector<double> before = StateOf(camera);
    for (const float bad : {0.0f, -1.0f, kNaN, kInfinity, -kInfinity})
    {
        EXPECT_FALSE(camera.SetSize(bad, 5.0f)) << bad;
        EXPECT_FALSE(camera.SetSize(5.0f, bad)) << bad;
    }
    EXPECT_EQ(StateOf(camera), before);
    camera.Zoom(1.0f); // from the size that was accepted
    ExpectSize(camera, 30.0, 20.0);
}

TEST(OrthographicCamera, ZoomsFromTheSizeThatWasSet)
{
    OrthographicCamera camera;
    camera.SetSize(30.0f, 20.0f);
    camera.Zoom(2.0f);
    camera.Zoom(2.0f);
    ExpectSize(camera, 60.0, 40.0);
    const float third = 1.0f / 3.0f;
    camera.Zoom(third);
    ExpectSize(camera, 30.0f * third, 20.0f * third); // rounded to single precision
    for (const float bad : {0.0f, -2.0f, kNaN, kInfinity, 3e38f})
    {
        camera.Zoom(bad);
        ExpectSize(camera, 30.0f * third, 20.0f * third);
    }
    camera.Zoom(1.0f);
    ExpectSize(camera, 30.0, 20.0);
}

TEST(OrthographicCamera, WidensASquareViewToAWideImage)
{
    OrthographicCamera camera;
    PnImageParam param = {};
    EXPECT_TRUE(camera.GetImageParams(256, 512, param));
    EXPECT_EQ(param.rows, 256u);
    EXPECT_EQ(param.columns, 512u);
    EXPECT_EQ(param.rowSpacing, 1.0 / 256);
    EXPECT_EQ(param.columnSpacing, 1.0 / 256);
    ExpectNear(core::VecOf(param.rowDirection), {1, 0, 0}, 0.0);
    ExpectNear(core::VecOf(param.columnDirection), {0, 0, -1}, 0.0);
    ExpectNear(core::VecOf(param.position), {-1.0, -1.0, 0.5}, 0.0);
}

TEST(OrthographicCamera, HeightensAViewToATallImage)
{
    OrthographicCamera camera = FrontCamera();
    camera.SetSize(200.0f, 100.0f);
    PnImageParam param = {};
    EXPECT_TRUE(camera.GetImageParams(300, 400, param)); // shows 200 x 150 mm
    EXPECT_EQ(param.rows, 300u);
    EXPECT_EQ(param.columns, 400u);
    EXPECT_DOUBLE_EQ(param.rowSpacing, 0.5);
    EXPECT_DOUBLE_EQ(param.columnSpacing, 0.5);
    ExpectNear(core::VecOf(param.position), {10 - 100, -80, 30 + 75}, 1e-12);
}

TEST(OrthographicCamera, WidensAViewThatIsNotSquare)
{
    OrthographicCamera camera = FrontCamera();
    camera.SetSize(200.0f, 100.0f);
    camera.RotateToSagittal(); // eye (110, 20, 30), x axis to posterior
    PnImageParam param = {};
    EXPECT_TRUE(camera.GetImageParams(100, 400, param)); // shows 400 x 100 mm
    EXPECT_EQ(param.rowSpacing, 1.0);
    EXPECT_EQ(param.columnSpacing, 1.0);
    ExpectNear(core::VecOf(param.rowDirection), {0, 1, 0}, 0.0);
    ExpectNear(core::VecOf(param.columnDirection), {0, 0, -1}, 0.0);
    ExpectNear(core::VecOf(param.position), {110, 20 - 200, 30 + 50}, 1e-12);
    double width, height;
    camera.GetSize(width, height);
    EXPECT_EQ(width, 200.0); // the camera's own size stays
    EXPECT_EQ(height, 100.0);
}

TEST(OrthographicCamera, GivesSquarePixelsThatShowTheWholeViewForEveryImageShape)
{
    OrthographicCamera camera = ObliqueCamera();
    camera.SetSize(170.0f, 90.0f);
    for (const int rows : {1, 7, 90, 513, 100000})
    {
        for (const int columns : {1, 13, 170, 512, 100000})
        {
            PnImageParam param = {};
            EXPECT_TRUE(camera.GetImageParams(rows, columns, param));
            EXPECT_NEAR(param.rowSpacing / param.columnSpacing, 1.0, kRounding);
            const double width = columns * param.columnSpacing, height = rows * param.rowSpacing;
            EXPECT_NEAR(std::min(width / 170.0, height / 90.0), 1.0, kRounding);
            const Vec3d center = core::VecOf(param.position) + (width / 2) * core::VecOf(param.rowDirection) +
                                 (height / 2) * core::VecOf(param.columnDirection);
            ExpectNear(center, camera.Eye(), 1e-15 * std::max(width, height) + 1e-12);
        }
    }
}
} // namespace
} // namespace corvane::camera
