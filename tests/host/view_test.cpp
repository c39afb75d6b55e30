#include "host/plane.h"
#include "host/turntable.h"
#include "host/view.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
TEST(View, HasThePatientTheRightWayRound)
{
    const struct
    {
        const char* name;
        Vec3 direction, right, down;
    } expectations[] = {
        {"anterior", {0, 1, 0}, {1, 0, 0}, {0, 0, -1}},    {"coronal", {0, 1, 0}, {1, 0, 0}, {0, 0, -1}},
        {"posterior", {0, -1, 0}, {-1, 0, 0}, {0, 0, -1}}, {"left", {-1, 0, 0}, {0, 1, 0}, {0, 0, -1}},
        {"sagittal", {-1, 0, 0}, {0, 1, 0}, {0, 0, -1}},   {"right", {1, 0, 0}, {0, -1, 0}, {0, 0, -1}},
        {"superior", {0, 0, -1}, {-1, 0, 0}, {0, 1, 0}},   {"inferior", {0, 0, 1}, {1, 0, 0}, {0, 1, 0}},
        {"axial", {0, 0, 1}, {1, 0, 0}, {0, 1, 0}},
    };
    for (const auto& [name, direction, right, down] : expectations)
    {
        const View view = NamedView(name);
        ExpectNear(view.direction, direction, 0, name);
        ExpectNear(RightOf(view), right, 0, name);
        ExpectNear(DownOf(view), down, 0, name);
    }
    EXPECT_TRUE(Contains(ErrorOf([] { NamedView("top"); }, ErrorKind::Usage), "not 'top'"));
}

TEST(View, MovesTheEyeToTheRightAndUp)
{
    const View front = NamedView("anterior");
    // From the front the viewer's right is the patient's left.
    ExpectNear(Turned(front, 90, 0, 0).direction, NamedView("left").direction, 1e-12, "azimuth");
    ExpectNear(Turned(front, 180, 0, 0).direction, NamedView("posterior").direction, 1e-12, "half a turn");
    ExpectNear(Turned(front, 0, 90, 0).direction, {0, 0, -1}, 1e-12, "from above");
    ExpectNear(Turned(front, 0, 90, 0).up, {0, 1, 0}, 1e-12, "from above, the back on top");
    const View oblique = Turned(front, 30, 0, 0);
    ExpectNear(oblique.direction, {-0.5, std::sqrt(0.75), 0}, 1e-12, "azimuth");
    ExpectNear(oblique.up, {0, 0, 1}, 1e-12, "azimuth");
}

TEST(View, TurnsThePictureClockwise)
{
    // What was on top, superior, is on the right after a quarter.
    const View rolled = Turned(NamedView("anterior"), 0, 0, 90);
    ExpectNear(RightOf(rolled), {0, 0, 1}, 1e-12, "right");
    ExpectNear(DownOf(rolled), {1, 0, 0}, 1e-12, "down");
}

TEST(View, KeepsItsAxesAtRightAngles)
{
    for (int n = 0; n < 50; ++n)
    {
        const View view = Turned(NamedView("left"), 37.0 * n, 11.0 * n, 23.0 * n);
        EXPECT_NEAR(Length(view.direction), 1, 1e-12);
        EXPECT_NEAR(Length(view.up), 1, 1e-12);
        EXPECT_NEAR(Dot(view.direction, view.up), 0, 1e-12);
        ExpectNear(DownOf(view), -1.0 * view.up, 1e-12, "down");
    }
}

TEST(View, FitsTheVolumeIntoThePicture)
{
    const Grid grid = ObliqueGrid(60, 50, 40, 15);
    const Corners corners = CornersOf(grid);
    const View view = Turned(NamedView("anterior"), 20, 30, 40);
    const double size = FittingPixelSize({view}, corners, 200, 300);
    const PnImageParam plane = ViewPlaneOf(view, corners, 200, 300, size);
    double nearestEdge = INFINITY, shallowest = INFINITY;
    for (const Vec3& corner : corners)
    {
        const Vec3 offset = corner - FirstPixel(plane);
        const double column = Dot(offset, RowDirection(plane)) / size, row = Dot(offset, ColumnDirection(plane)) / size;
        EXPECT_TRUE(column > 0 && column < 299 && row > 0 && row < 199) << column << " " << row;
        nearestEdge = std::min({nearestEdge, column, 299 - column, row, 199 - row});
        shallowest = std::min(shallowest, Dot(offset, view.direction));
    }
    EXPECT_LT(nearestEdge, 8);   // it fills the picture
    EXPECT_GT(shallowest, 10.0); // and lies behind the plane
    const Vec3 middle = IndexToPatient(grid, {29.5, 24.5, 19.5});
    const Vec3 offset = middle - FirstPixel(plane);
    EXPECT_NEAR(Dot(offset, RowDirection(plane)) / size, 149.5, 1e-6);
    EXPECT_NEAR(Dot(offset, ColumnDirection(plane)) / size, 99.5, 1e-6);
}

TEST(Turntable, TurnsRoundOnceInEvenSteps)
{
    const std::vector<View> views = TurntableViews(NamedView("anterior"), 15, 20, 0, 8);
    ASSERT_EQ(views.size(), 8u);
    const View first = Turned(NamedView("anterior"), 15, 20, 0);
    ExpectNear(views[0].direction, first.direction, 0, "first");
    for (size_t n = 0; n < 8; ++n)
    {
        EXPECT_NEAR(views[n].direction.z, -std::sin(20 * std::numbers::pi / 180), 1e-12);
        const Vec3 next = views[(n + 1) % 8].direction, flat = {views[n].direction.x, views[n].direction.y, 0};
        const double cosine = Dot(Unit(flat), Unit({next.x, next.y, 0}));
        EXPECT_NEAR(cosine, std::cos(std::numbers::pi / 4), 1e-12);
        EXPECT_GT(Cross(flat, next).z, 0) << "always the same way";
    }
}
} // namespace
} // namespace corvane::host
