#include "camera/camera.h"

#include <random>
#include <type_traits>

#include "camera/orthographic_camera.h"
#include "camera/perspective_camera.h"
#include "camera_checks.h"

namespace corvane::camera
{
namespace
{
// What both cameras have in common, through the interface that they share.
template <class Kind>
class EveryCamera : public testing::Test
{
public:
    Kind kind;
    Camera& camera = kind;
};

using Kinds = testing::Types<OrthographicCamera, PerspectiveCamera>;
TYPED_TEST_SUITE(EveryCamera, Kinds);

TYPED_TEST(EveryCamera, StartsLookingToPosteriorWithTheHeadUp)
{
    const Camera& camera = this->camera;
    ExpectNear(camera.Origin(), {0, 0, 0}, 0.0);
    ExpectNear(camera.Eye(), {0, -1, 0}, 0.0);
    ExpectView(camera, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}, {0, 0, -1});
    double width = 0, height = 0;
    EXPECT_TRUE(camera.GetSize(width, height));
    EXPECT_EQ(width, 1.0);
    EXPECT_EQ(height, 1.0);
}

TYPED_TEST(EveryCamera, StartsWithDistance1AndTheUnreadNumber512)
{
    struct Fields : TypeParam
    {
        using TypeParam::distance_;
        using TypeParam::usualImageSide_;
    };
    EXPECT_EQ(Fields().distance_, 1.0);
    EXPECT_EQ(Fields().usualImageSide_, 512);
}

TYPED_TEST(EveryCamera, HandsOutAxesByCopyAndByReference)
{
    Camera& camera = this->camera;
    camera.RotateH(0.3f);
    camera.RotateV(0.2f);
    double x[3], y[3];
    camera.GetAxisX(x);
    camera.GetAxisY(y);
    ExpectNear(core::VecOf(x), camera.AxisX(), 0.0);
    ExpectNear(core::VecOf(y), camera.AxisY(), 0.0);
    const Vec3d& live = camera.AxisX();
    camera.RotateToSagittal();
    ExpectNear(live, {0, 1, 0}, 0.0);
}

TYPED_TEST(EveryCamera, PutsTheFirstCornerHalfTheSizeToTheUpperLeftOfTheEye)
{
    Camera& camera = this->camera;
    camera.SetEye({7, -20, 3});
    camera.RotateToAxial(); // x to the patient's left, y to posterior
    const Vec3d eye = camera.Eye();
    double corner[3];
    camera.GetImageOrigin(30.0, 8.0, corner);
    ExpectNear(core::VecOf(corner), eye - Vec3d{15, 4, 0}, 0.0);
    camera.GetImageOrigin(corner);
    ExpectNear(core::VecOf(corner), eye - Vec3d{0.5, 0.5, 0}, 0.0);
}

TYPED_TEST(EveryCamera, RollsAboutTheViewingDirection)
{
    Camera& camera = this->camera;
    camera.RotateH(0.7f);
    camera.RotateV(-0.4f);
    const Vec3d eye = camera.Eye(), origin = camera.Origin(), direction = camera.Direction();
    const Vec3d x = camera.AxisX(), y = camera.AxisY(), up = camera.Up();
    camera.RotateScreen(0.9f);
    ExpectNear(camera.Eye(), eye, 0.0);
    ExpectNear(camera.Origin(), origin, 0.0);
    ExpectNear(camera.Direction(), direction, 0.0);
    ExpectNear(camera.AxisX(), std::cos(double(0.9f)) * x + std::sin(double(0.9f)) * y);
    ExpectNear(camera.AxisY(), Turned(y, direction, 0.9f));
    ExpectNear(camera.Up(), Turned(up, direction, 0.9f));
}

TYPED_TEST(EveryCamera, RollsTheScreenXAxisDownForAPositiveAngle)
{
    this->camera.RotateScreen(kQuarterTurn);
    // The angle in single precision misses a quarter turn by 4.4e-8.
    ExpectNear(this->camera.AxisX(), {0, 0, -1}, 1e-7);
    ExpectNear(this->camera.AxisY(), {-1, 0, 0}, 1e-7);
    ExpectNear(this->camera.Up(), {1, 0, 0}, 1e-7);
}

TYPED_TEST(EveryCamera, RollsThereAndBack)
{
    this->camera.RotateH(0.5f);
    const Vec3d x = this->camera.AxisX(), y = this->camera.AxisY();
    this->camera.RotateScreen(2.5f);
    this->camera.RotateScreen(-2.5f);
    ExpectNear(this->camera.AxisX(), x);
    ExpectNear(this->camera.AxisY(), y);
}

TYPED_TEST(EveryCamera, KeepsTheRollWhenTurnedAfterwards)
{
    Camera& camera = this->camera;
    camera.RotateScreen(1.1f);
    const Vec3d up = camera.Up();
    camera.RotateH(0.6f); // about the rolled up
    ExpectNear(camera.Up(), up);
    ExpectScreenAxes(camera);
}

TYPED_TEST(EveryCamera, ShowsTheSameViewForZAndAxialAndForYAndCoronal)
{
    this->camera.RotateH(0.4f);
    TypeParam other = this->kind;
    this->camera.RotateToZ();
    other.RotateToAxial();
    EXPECT_EQ(StateOf(this->camera), StateOf(other));
    this->camera.RotateH(0.4f);
    other.RotateH(0.4f);
    this->camera.RotateToY();
    other.RotateToCoronal();
    EXPECT_EQ(StateOf(this->camera), StateOf(other));
}

TYPED_TEST(EveryCamera, LooksAtTheBackWithReversedDirectionAndXAxis)
{
    Camera& camera = this->camera;
    camera.RotateH(0.4f);
    camera.RotateV(0.3f);
    const Vec3d direction = camera.Direction(), up = camera.Up(), x = camera.AxisX(), y = camera.AxisY();
    camera.RotateToBack();
    ExpectNear(camera.Direction(), -1.0 * direction);
    ExpectNear(camera.AxisX(), -1.0 * x);
    ExpectNear(camera.Up(), up);
    ExpectNear(camera.AxisY(), y);
    camera.RotateToBack();
    ExpectNear(camera.Direction(), direction);
    ExpectNear(camera.AxisX(), x);
}

TYPED_TEST(EveryCamera, FindsAxesThatFollowFromDirectionAndUp)
{
    Camera& camera = this->camera;
    camera.RotateV(-0.5f);
    const Vec3d up = camera.Up();
    camera.RotateH(0.8f);
    ExpectNear(camera.Up(), up); // already perpendicular to the new direction
    ExpectScreenAxes(camera);
}

TYPED_TEST(EveryCamera, KeepsTheXAxisWhenTurnedToLookAlongItsUp)
{
    Camera& camera = this->camera;
    for (int quarter = 1; quarter <= 4; ++quarter)
    {
        const Vec3d direction = camera.Direction(), up = camera.Up();
        camera.RotateV(kQuarterTurn);
        ExpectNear(camera.AxisX(), {1, 0, 0});
        EXPECT_NEAR(std::abs(core::Dot(camera.Direction(), up)), 1.0, kRounding);
        EXPECT_NEAR(std::abs(core::Dot(camera.Up(), direction)), 1.0, kRounding);
        ExpectScreenAxes(camera);
    }
}

TYPED_TEST(EveryCamera, ReversesTheXAxisWhenTurnedVerticallyBeyondARightAngle)
{
    Camera& camera = this->camera;
    camera.RotateV(2.0f);
    ExpectNear(camera.AxisX(), {-1, 0, 0});
    EXPECT_GT(camera.Up().z, 0.0); // up stays on the side where it was
    EXPECT_NEAR(camera.Direction().y, std::cos(2.0), kRounding);
    ExpectScreenAxes(camera);
}

TYPED_TEST(EveryCamera, StaysSquareOverTenThousandTurns)
{
    Camera& camera = this->camera;
    camera.SetEye({3, -40, 12});
    const double distance = core::Length(camera.Origin() - camera.Eye());
    const bool orbits = std::is_same_v<TypeParam, OrthographicCamera>;
    const Vec3d still = orbits ? camera.Origin() : camera.Eye();
    std::mt19937 random(7);
    for (int i = 0; i < 10000; ++i)
    {
        const float angle = (float(random() % 20001) - 10000.0f) * 0.001f;
        switch (random() % 3)
        {
        case 0:
            camera.RotateH(angle);
            break;
        case 1:
            camera.RotateV(angle);
            break;
        default:
            camera.RotateScreen(angle);
        }
        // Where up and the new direction differ by little more than 1e-5, their cross product keeps 11 digits.
        ExpectScreenAxes(camera, 1e-10);
        ASSERT_FALSE(testing::Test::HasFailure()) << "turn " << i << " by " << angle;
    }
    EXPECT_NEAR(core::Length(camera.Origin() - camera.Eye()) / distance, 1.0, 1e-11);
    ExpectNear(orbits ? camera.Origin() : camera.Eye(), still, 0.0);
}

TYPED_TEST(EveryCamera, TurnsAlikeOnEveryMachine)
{
    this->camera.RotateScreen(1.0f);
    EXPECT_DOUBLE_EQ(this->camera.AxisX().x, 0.54030230586813972);  // cos 1
    EXPECT_DOUBLE_EQ(this->camera.AxisX().z, -0.84147098480789651); // -sin 1
}

TYPED_TEST(EveryCamera, IgnoresAnglesThatAreNotFinite)
{
    Camera& camera = this->camera;
    camera.RotateH(0.4f);
    const std::vector<double> before = StateOf(camera);
    for (const float angle : {kNaN, kInfinity, -kInfinity})
    {
        camera.RotateScreen(angle);
        camera.RotateH(angle);
        camera.RotateV(angle);
        EXPECT_EQ(StateOf(camera), before) << angle;
    }
}

TYPED_TEST(EveryCamera, TakesTheLargestFiniteAngle)
{
    Camera& camera = this->camera;
    const float angle = std::numeric_limits<float>::max();
    camera.RotateScreen(angle);
    camera.RotateH(-angle);
    camera.RotateV(angle);
    ExpectScreenAxes(camera, 1e-10);
}

TYPED_TEST(EveryCamera, IgnoresPointsThatAreNotFiniteOrTooFarAway)
{
    Camera& camera = this->camera;
    camera.SetEye({3, -40, 12});
    const std::vector<double> before = StateOf(camera);
    for (const double bad : {double(kNaN), double(kInfinity), double(-kInfinity), 1e101, -1e300})
    {
        for (const Vec3d point : {Vec3d{bad, 0, 0}, Vec3d{0, bad, 0}, Vec3d{0, 0, bad}})
        {
            camera.SetEye(point);
            camera.SetOrigin(point);
            EXPECT_EQ(StateOf(camera), before) << bad;
        }
    }
}

TYPED_TEST(EveryCamera, StaysFiniteAtTheFarthestPoints)
{
    Camera& camera = this->camera;
    camera.SetEye({1e100, -1e100, 1e100});
    camera.SetOrigin({-1e100, 1e100, -1e100});
    camera.RotateH(1.0f);
    camera.RotateV(1.0f);
    camera.RotateToX();
    camera.RotateToBack();
    for (const double number : StateOf(camera))
        EXPECT_TRUE(std::isfinite(number));
    camera.SetEye({0, -1, 0});
    camera.SetOrigin({0, 0, 0});
    camera.RotateToY();
    ExpectView(camera, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}, {0, 0, -1});
}

TYPED_TEST(EveryCamera, WritesNothingForAnImageWithoutPixels)
{
    PnImageParam param = {};
    param.rows = 77;
    param.position[2] = 5.5;
    for (const int bad : {0, -1, std::numeric_limits<int>::min()})
    {
        EXPECT_FALSE(this->camera.GetImageParams(bad, 10, param));
        EXPECT_FALSE(this->camera.GetImageParams(10, bad, param));
    }
    EXPECT_EQ(param.rows, 77u);
    EXPECT_EQ(param.columns, 0u);
    EXPECT_EQ(param.rowSpacing, 0.0);
    EXPECT_EQ(param.rowDirection[0], 0.0);
    EXPECT_EQ(param.position[2], 5.5);
}
} // namespace
} // namespace corvane::camera
