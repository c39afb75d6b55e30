#include "host/polygon.h"
#include "read_testing.h"

#include <random>

namespace corvane::host
{
namespace
{
constexpr uint32_t kRows = 24, kColumns = 30;

std::vector<uint8_t> Draw(const std::vector<Polygon>& polygons) { return DrawPolygons(polygons, kRows, kColumns); }

// What a function of column and row says about every pixel.
std::vector<uint8_t> PixelsWhere(const std::function<bool(int, int)>& inside)
{
    std::vector<uint8_t> pixels;
    for (int row = 0; row < int(kRows); ++row)
        for (int column = 0; column < int(kColumns); ++column)
            pixels.push_back(inside(column, row));
    return pixels;
}

// How often a line goes round a point, by the angles under which the point sees the line's pieces.
int TurnsRound(const Polygon& polygon, double column, double row)
{
    double angle = 0;
    for (size_t n = 0; n < polygon.size(); ++n)
    {
        const PixelPoint a = polygon[n], b = polygon[(n + 1) % polygon.size()];
        const double ax = a.column - column, ay = a.row - row, bx = b.column - column, by = b.row - row;
        angle += std::atan2(ax * by - ay * bx, ax * bx + ay * by);
    }
    return int(std::lround(angle / (2 * std::numbers::pi)));
}

TEST(Polygon, ParsesPicturePlacesAndPatientPoints)
{
    EXPECT_EQ(ParsePolygon("1,2:3.5,-4:5,6").corners, (std::vector<std::vector<double>>{{1, 2}, {3.5, -4}, {5, 6}}));
    EXPECT_EQ(ParsePolygon("1,2,3:4,5,6:7,8,-9").corners,
              (std::vector<std::vector<double>>{{1, 2, 3}, {4, 5, 6}, {7, 8, -9}}));
}

TEST(Polygon, RefusesWhatIsNone)
{
    const auto message = [](const std::string& text) { return ErrorOf([&] { ParsePolygon(text); }, ErrorKind::Usage); };
    EXPECT_TRUE(Contains(message("1,2:3,4"), "three corners at least, not 2"));
    EXPECT_TRUE(Contains(message("1,2:3,4:5,6,7"), "every corner"));
    EXPECT_TRUE(Contains(message("1:2:3"), "every corner"));
    EXPECT_TRUE(Contains(message("1,2,3,4:1,2,3,4:1,2,3,4"), "every corner"));
    EXPECT_TRUE(Contains(message("1,2:3,4:"), "'1,2:3,4:'"));
    EXPECT_TRUE(Contains(message("1,2:3,x:5,6"), "COLUMN,ROW"));
    EXPECT_TRUE(Contains(message("1,2:3,nan:5,6"), "COLUMN,ROW"));
    EXPECT_TRUE(Contains(message("1,2:3,1e7:5,6"), "too far away"));
    EXPECT_TRUE(Contains(message(""), "COLUMN,ROW"));
}

TEST(Polygon, CoversThePixelsWhoseCentresLieInside)
{
    EXPECT_EQ(Draw({{{2, 3}, {9, 3}, {9, 7}, {2, 7}}}),
              PixelsWhere([](int c, int r) { return c >= 2 && c < 9 && r >= 3 && r < 7; }));
    EXPECT_EQ(Draw({{{1.5, 2.5}, {8.5, 2.5}, {8.5, 6.5}, {1.5, 6.5}}}),
              PixelsWhere([](int c, int r) { return c >= 2 && c <= 8 && r >= 3 && r <= 6; }));
    // Below the line from (0, 20.5) to (20.5, 0): column + row > 20.5.
    EXPECT_EQ(Draw({{{0, 20.5}, {20.5, 0}, {50, 0}, {50, 50}, {0, 50}}}),
              PixelsWhere([](int c, int r) { return c + r > 20; }));
}

TEST(Polygon, CoversTheSamePixelsWhicheverWayItRuns)
{
    const Polygon polygon = {{3.2, 1.7}, {22.9, 5.1}, {14.4, 20.8}, {1.1, 15.3}};
    EXPECT_EQ(Draw({polygon}), Draw({Polygon(polygon.rbegin(), polygon.rend())}));
}

TEST(Polygon, SharesNoPixelWithItsNeighbourAndLeavesNoneOut)
{
    // Triangles round a common corner fill the square that they make up, each pixel once.
    const Polygon square = {{2, 2}, {22, 2}, {22, 22}, {2, 22}};
    const PixelPoint middle = {11.3, 9.1};
    std::vector<int> times(size_t(kRows) * kColumns);
    for (size_t n = 0; n < 4; ++n)
    {
        const std::vector<uint8_t> triangle = Draw({{square[n], square[(n + 1) % 4], middle}});
        for (size_t pixel = 0; pixel < times.size(); ++pixel)
            times[pixel] += triangle[pixel];
    }
    const std::vector<uint8_t> whole = Draw({square});
    EXPECT_EQ(times, std::vector<int>(whole.begin(), whole.end()));
}

TEST(Polygon, CoversAllThatItsLineGoesRoundAlsoTwice)
{
    // A line that goes twice round the same square, and a figure of eight.
    const Polygon twice = {{2, 2}, {12, 2}, {12, 12}, {2, 12}, {2, 2}, {12, 2}, {12, 12}, {2, 12}};
    EXPECT_EQ(Draw({twice}), Draw({{{2, 2}, {12, 2}, {12, 12}, {2, 12}}}));
    const Polygon eight = {{2, 2}, {12.5, 12.5}, {12.5, 2}, {2, 12.5}};
    const std::vector<uint8_t> drawn = Draw({eight});
    EXPECT_EQ(drawn[7 * kColumns + 3], 1);  // the left loop
    EXPECT_EQ(drawn[7 * kColumns + 11], 1); // the right loop
    EXPECT_EQ(drawn[3 * kColumns + 7], 0);  // above the crossing
}

TEST(Polygon, AgreesWithTheAnglesSeenFromEveryPixelForRandomLines)
{
    std::mt19937 random(20);
    const auto number = [&](double low, double high) { return low + (high - low) * double(random()) / 4294967296.0; };
    for (int round = 0; round < 50; ++round)
    {
        std::vector<Polygon> polygons(1 + random() % 3);
        for (Polygon& polygon : polygons)
            for (size_t corner = 3 + random() % 9; corner > 0; --corner)
                polygon.push_back({number(-8, kColumns + 8), number(-8, kRows + 8)});
        const auto inside = [&](int column, int row)
        {
            return std::any_of(polygons.begin(), polygons.end(),
                               [&](const Polygon& polygon) { return TurnsRound(polygon, column, row) != 0; });
        };
        EXPECT_EQ(Draw(polygons), PixelsWhere(inside)) << "round " << round;
    }
}

TEST(Polygon, OutsideThePictureOrWithoutAreaCoversNothing)
{
    const std::vector<uint8_t> nothing(size_t(kRows) * kColumns);
    EXPECT_EQ(Draw({}), nothing);
    EXPECT_EQ(Draw({{{100, 100}, {200, 100}, {200, 200}}}), nothing);
    EXPECT_EQ(Draw({{{-9, -9}, {-1, -9}, {-1, -1}}}), nothing);
    EXPECT_EQ(Draw({{{2, 2}, {10, 10}, {20, 20}}}), nothing);
    EXPECT_EQ(Draw({{{-1e6, -1e6}, {1e6, -1e6}, {1e6, 1e6}, {-1e6, 1e6}}}), std::vector<uint8_t>(nothing.size(), 1));
}

TEST(Polygon, OfPatientPointsIsLookedAtFromThePicture)
{
    // Rows of 2 mm, columns of 4 mm, seen from in front: x to the right, z upwards.
    const PnImageParam picture = {100, 100, 2, 4, {1, 0, 0}, {0, 0, -1}, {-50, -300, 80}};
    const GivenPolygon given = {{{-50, 0, 80}, {-10, 77, 80}, {-50, -3, 30}}};
    const Polygon lps = InPicture(given, picture, false);
    ASSERT_EQ(lps.size(), 3u);
    EXPECT_NEAR(lps[0].column, 0, 1e-12);
    EXPECT_NEAR(lps[0].row, 0, 1e-12);
    EXPECT_NEAR(lps[1].column, 10, 1e-12); // 40 mm
    EXPECT_NEAR(lps[1].row, 0, 1e-12);
    EXPECT_NEAR(lps[2].column, 0, 1e-12);
    EXPECT_NEAR(lps[2].row, 25, 1e-12); // 50 mm
    const Polygon ras = InPicture({{{50, 0, 80}, {10, -77, 80}, {50, 3, 30}}}, picture, true);
    for (size_t n = 0; n < 3; ++n)
    {
        EXPECT_NEAR(ras[n].column, lps[n].column, 1e-12);
        EXPECT_NEAR(ras[n].row, lps[n].row, 1e-12);
    }
    const Polygon places = InPicture({{{1, 2}, {3, 4}, {5, 6}}}, picture, true);
    EXPECT_EQ(places[2].column, 5);
    EXPECT_EQ(places[2].row, 6);
}
} // namespace
} // namespace corvane::host
