#include "host/view_path.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
TEST(ViewPath, MakesRightAnglesOfAnUpwardHint)
{
    const InsideView view = InsideViewOf({1, 2, 3}, {0, 0, -4}, {0, 3, 5});
    ExpectNear(view.eye, {1, 2, 3}, 0, "eye");
    ExpectNear(view.direction, {0, 0, -1}, 1e-12, "direction");
    ExpectNear(view.up, {0, 1, 0}, 1e-12, "up");
    ExpectNear(InsideViewOf({}, {0, 2, 0}).up, {0, 0, 1}, 1e-12, "superior without a hint");
    ExpectNear(InsideViewOf({}, {0, 0, 1}).up, {0, -1, 0}, 1e-12, "to the front when looking along that");
    ExpectNear(InsideViewOf({}, {0, 1, 0}, {0, 7, 0}).up, {0, 0, 1}, 1e-12, "a hint along the direction");
    EXPECT_TRUE(Contains(ErrorOf([] { InsideViewOf({}, {0, 0, 0}); }, ErrorKind::Usage), "no length"));
}

TEST(ViewPath, FliesAlongAStraightLineInEvenSteps)
{
    const std::vector<InsideView> views = FlyThrough({{0, 0, 0}, {0, 0, 30}, {0, 0, 40}}, 5);
    ASSERT_EQ(views.size(), 5u);
    for (size_t n = 0; n < 5; ++n)
    {
        ExpectNear(views[n].eye, {0, 0, 10.0 * double(n)}, 0.02, "eye");
        ExpectNear(views[n].direction, {0, 0, 1}, 1e-9, "direction");
        ExpectNear(views[n].up, {0, -1, 0}, 1e-9, "up");
    }
}

TEST(ViewPath, KeepsThePictureStillInABend)
{
    // A quarter of a circle of radius 50 mm in the plane z = 0, with z upwards.
    std::vector<Vec3> points;
    for (int degrees = 0; degrees <= 90; degrees += 15)
        points.push_back(
            {50 * std::cos(degrees * std::numbers::pi / 180), 50 * std::sin(degrees * std::numbers::pi / 180), 0});
    const std::vector<InsideView> views = FlyThrough(points, 40, {0, 0, 1});
    for (size_t n = 0; n < views.size(); ++n)
    {
        EXPECT_NEAR(Length(views[n].eye), 50, 0.3);
        ExpectNear(views[n].up, {0, 0, 1}, 1e-9, "up");
        EXPECT_GT(Dot(views[n].direction, Unit(Cross({0, 0, 1}, views[n].eye))), std::cos(0.25)) << n;
        if (n > 0)
        {
            EXPECT_NEAR(Length(views[n].eye - views[n - 1].eye), 50 * std::numbers::pi / 2 / 39, 0.05);
        }
    }
}

TEST(ViewPath, NeedsTwoPoints)
{
    EXPECT_TRUE(Contains(ErrorOf([] { FlyThrough({{1, 1, 1}}, 5); }, ErrorKind::Usage), "two different points"));
    EXPECT_TRUE(Contains(ErrorOf([] { FlyThrough({{1, 1, 1}, {1, 1, 1}}, 5); }, ErrorKind::Usage), "two different"));
    EXPECT_TRUE(Contains(ErrorOf([] { FlyThrough({{0, 0, 0}, {1, 1, 1}}, 1); }, ErrorKind::Usage), "two views"));
}

TEST(ViewPath, IsNoLongerThanAPatientCouldBe)
{
    const auto refusal = [](double x) {
        return ErrorOf([&] { FlyThrough({{0, 0, 0}, {x, 0, 0}}, 2); }, ErrorKind::Usage);
    };
    EXPECT_EQ(refusal(5000), "no error");
    EXPECT_TRUE(Contains(refusal(2e5), "a path of 200000 mm is longer than the 100000 mm"));
    EXPECT_TRUE(Contains(refusal(1e300), "is longer than"));
}

TEST(ViewPath, ReadsPointsFromText)
{
    const ScratchFolder folder;
    WriteBytes(folder / "line.txt", "# bowel\n 1 2 3\n\n-4.5,5,6e1 # end\r\n7\t8\t9");
    const std::vector<Vec3> points = ReadPoints(folder / "line.txt");
    ASSERT_EQ(points.size(), 3u);
    ExpectNear(points[1], {-4.5, 5, 60}, 0, "second");
    ExpectNear(points[2], {7, 8, 9}, 0, "third");
    WriteBytes(folder / "bad.txt", "1 2 3\n1 2\n");
    EXPECT_TRUE(
        Contains(ErrorOf([&] { ReadPoints(folder / "bad.txt"); }), "bad.txt, line 2: a point is three numbers"));
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadPoints(folder / "absent"); }), "cannot be read"));
}
} // namespace
} // namespace corvane::host
