#include "host/plane.h"
#include "host/quiet_output.h"
#include "host/view.h"
#include "host/view_planes.h"
#include "read_testing.h"

#include <cstdio>
#include <iostream>
#include <optional>

namespace corvane::host
{
namespace
{
const Vec3 kBall = {23, 17, 21}; // mm
constexpr double kRadius = 6;
constexpr int kSide = 44; // voxels of 1 mm, the first at (0, 0, 0)

// Air with a bright ball.
Volume BallInAir()
{
    Volume volume;
    volume.grid.sizeX = volume.grid.sizeY = volume.grid.sizeZ = kSide;
    volume.grid.spacing = {1, 1, 1};
    volume.grid.rowDirection = {1, 0, 0};
    volume.grid.columnDirection = {0, 1, 0};
    volume.grid.sliceDirection = {0, 0, 1};
    for (int k = 0; k < kSide; ++k)
        for (int j = 0; j < kSide; ++j)
            for (int i = 0; i < kSide; ++i)
                volume.voxels.push_back(Length(Vec3{double(i), double(j), double(k)} - kBall) <= kRadius ? 1000
                                                                                                         : -1000);
    return volume;
}

// What is above 0 is red and opaque, without light; the rest is clear.
Palette RedBall() { return {{{0, 0xFF0000, 1}, {2000, 0xFF0000, 1}}, {1, 0, 0}, {}}; }

Palette Nothing() { return {{{30000, 0, 0}, {30001, 0, 0}}, {1, 0, 0}, {}}; }

// A square across the volume, perpendicular to one axis.
PnImageParam Section(char axis, double place)
{
    PnImageParam plane = {};
    plane.rows = plane.columns = 41;
    plane.rowSpacing = plane.columnSpacing = 1;
    plane.rowDirection[axis == 'x' ? 1 : 0] = 1;
    plane.columnDirection[axis == 'z' ? 1 : 2] = 1;
    for (int n = 0; n < 3; ++n)
        plane.position[n] = n == axis - 'x' ? place : 1.5;
    return plane;
}

double Along(Vec3 vector, char axis) { return axis == 'x' ? vector.x : axis == 'y' ? vector.y : vector.z; }

struct Crossing
{
    double distance, depthInside; // mm along the ray; mm from the nearest edge of the square, below 0 outside
    double fromBall;              // mm
};

// Where a ray meets a section, computed here from the plane's equation.
std::optional<Crossing> CrossingOf(Vec3 start, Vec3 direction, char axis, double place)
{
    const double distance = (place - Along(start, axis)) / Along(direction, axis);
    const Vec3 point = start + distance * direction;
    double inside = INFINITY;
    for (char other : {'x', 'y', 'z'})
        if (other != axis)
            inside = std::min({inside, Along(point, other) - 1.5, 41.5 - Along(point, other)});
    return Crossing{distance, inside, Length(point - kBall)};
}

int Red(uint32_t pixel) { return int(pixel >> 8 & 255); }
int Green(uint32_t pixel) { return int(pixel >> 16 & 255); }

TEST(ViewPlanes, ShowTheVolumeWhereTheirRaysCross)
{
    const Volume volume = BallInAir();
    const VolumeView view(volume, {});
    const PaletteTables tables({{0, Nothing()}});
    ViewRenderer renderer(view, tables);
    const Corners corners = CornersOf(volume.grid);
    const struct
    {
        char axis;
        double place;
    } sections[] = {{'z', 22.5}, {'x', 20.25}, {'y', 19}};
    int bright = 0, dark = 0, empty = 0;
    for (double azimuth : {20.0, 130.0, 250.0})
    {
        const View look = Turned(NamedView("anterior"), azimuth, 35, 10);
        const Framing framing = {look, 150, 170, FittingPixelSize({look}, corners, 150, 170), {}};
        const PnImageParam picture = renderer.PlaneOf(framing);
        std::vector<SeenPlane> seen;
        std::vector<KsBlendImage> records;
        for (const auto& [axis, place] : sections)
            seen.push_back(*SeenPlaneOf(Section(axis, place), picture, view, volume, {0, 2000}, {0, 0, 255}));
        for (const SeenPlane& plane : seen)
            records.push_back(plane.record);
        const RenderedImage image = renderer.Render(framing, records);
        for (int row = 0; row < 150; ++row)
            for (int column = 0; column < 170; ++column)
            {
                const Vec3 start = PixelToPatient(picture, row, column);
                std::optional<Crossing> nearest;
                bool isEdge = false;
                for (const auto& [axis, place] : sections)
                {
                    const std::optional<Crossing> crossing = CrossingOf(start, look.direction, axis, place);
                    isEdge |= std::fabs(crossing->depthInside) < 2.5;
                    if (crossing->depthInside > 0 && (!nearest || crossing->distance < nearest->distance - 0.5))
                        nearest = crossing;
                    else if (nearest && crossing->depthInside > 0)
                        isEdge |= std::fabs(crossing->distance - nearest->distance) <= 0.5;
                }
                if (isEdge)
                    continue;
                const uint32_t pixel = image.pixels[size_t(row) * 170 + size_t(column)];
                if (!nearest)
                {
                    ++empty;
                    ASSERT_EQ(pixel & 255, 0u) << row << " " << column;
                    continue;
                }
                ASSERT_EQ(pixel & 255, 255u) << row << " " << column;
                if (nearest->fromBall < kRadius - 1.5)
                {
                    ++bright;
                    ASSERT_EQ(Green(pixel), 255) << row << " " << column;
                }
                if (nearest->fromBall > kRadius + 1.5)
                {
                    ++dark;
                    ASSERT_EQ(Green(pixel), 0) << row << " " << column;
                }
            }
    }
    EXPECT_GT(bright, 100);
    EXPECT_GT(dark, 5000);
    EXPECT_GT(empty, 5000);
}

TEST(ViewPlanes, HideWhatLiesBehindThem)
{
    const Volume volume = BallInAir();
    const VolumeView view(volume, {});
    const PaletteTables tables({{0, RedBall()}});
    ViewRenderer renderer(view, tables);
    const View look = NamedView("anterior");
    const Framing framing = {look, 88, 88, 0.5, {}};
    const PnImageParam picture = renderer.PlaneOf(framing);
    // The pixel before the ball's middle.
    const Vec3 offset = kBall - FirstPixel(picture);
    const size_t middle = size_t(std::lround(Dot(offset, DownOf(look)) / 0.5)) * 88 +
                          size_t(std::lround(Dot(offset, RightOf(look)) / 0.5));
    const auto at = [&](double place)
    {
        const std::optional<SeenPlane> plane =
            SeenPlaneOf(Section('y', place), picture, view, volume, {0, 2000}, {0, 0, 255});
        return renderer.Render(framing, {plane->record}).pixels[middle];
    };
    EXPECT_EQ(Red(renderer.Render(framing).pixels[middle]), 255);
    EXPECT_EQ(Red(at(kBall.y + 10)), 255); // behind the ball
    EXPECT_EQ(Green(at(kBall.y + 10)), 0);
    EXPECT_EQ(Red(at(kBall.y - 10)), 0); // before it, black air
    EXPECT_EQ(at(kBall.y - 10) & 255, 255u);
    EXPECT_EQ(Green(at(kBall.y)), 0); // through its middle: the front half is red
    EXPECT_FALSE(SeenPlaneOf(Section('x', 20), picture, view, volume, {0, 2000}, {0, 0, 0})) << "seen from its edge";
}

TEST(ViewRendering, ShowsOnlyTheVisibleBox)
{
    const Volume volume = BallInAir();
    const VolumeView view(volume, {});
    const PaletteTables tables({{0, RedBall()}});
    ViewRenderer renderer(view, tables);
    renderer.SetVisibleBox({{44, 44, 44}, {kBall.x, 0, 0}}); // the ball's left half; corners in any order
    const RenderedImage image = renderer.Render({NamedView("anterior"), 88, 88, 0.5, {}});
    int left = 0, right = 0;
    for (int row = 0; row < 88; ++row)
        for (int column = 0; column < 88; ++column)
            if (image.pixels[size_t(row) * 88 + size_t(column)] & 255)
                ++(PixelToPatient(image.plane, row, column).x < kBall.x - 0.5 ? right : left);
    EXPECT_EQ(right, 0);
    EXPECT_NEAR(left, 0.5 * std::numbers::pi * kRadius * kRadius / 0.25, 40);
}

TEST(ViewRendering, LooksFromInsideInPerspective)
{
    const Volume volume = BallInAir();
    const VolumeView view(volume, {});
    const PaletteTables tables({{0, RedBall()}});
    ViewRenderer renderer(view, tables);
    // The eye looks to posterior past the ball, which lies to the left and above.
    const Vec3 eye = kBall - Vec3{6, 13, 4};
    const RenderedImage image = renderer.RenderInside({eye, {0, 1, 0}, {0, 0, 1}}, 100, 201, 241);
    double rows = 0, columns = 0, count = 0;
    for (int row = 0; row < 201; ++row)
        for (int column = 0; column < 241; ++column)
            if (Red(image.pixels[size_t(row) * 241 + size_t(column)]) > 128)
            {
                rows += row;
                columns += column;
                ++count;
            }
    // A ball's image is an ellipse that leans outwards; its middle lies a little beyond that of the ball.
    const double focal = 100 / std::tan(50 * std::numbers::pi / 180); // pixels
    ASSERT_GT(count, 100);
    EXPECT_NEAR(columns / count, 120 + focal * 6 / 13, 14);
    EXPECT_NEAR(rows / count, 100 - focal * 4 / 13, 10);
    EXPECT_GT(columns / count, 120 + 20);
    EXPECT_LT(rows / count, 100 - 15);
}

TEST(ViewRendering, StandsBeforeItsBackground)
{
    RenderedImage image = {};
    image.plane.rows = 1;
    image.plane.columns = 3;
    image.plane.rowSpacing = image.plane.columnSpacing = 0.5;
    image.pixels = {0, 0x332211FF, 0x20100080}; // empty; opaque; half there
    const Picture picture = PictureOf(image, {100, 200, 250}, true);
    // 127 / 255 of the background: 50, 100 and 125, rounded.
    EXPECT_EQ(picture.rgb, (std::vector<uint8_t>{100, 200, 250, 0x11, 0x22, 0x33, 50, 100 + 0x10, 125 + 0x20}));
    EXPECT_EQ(picture.columnSpacing, 0.5);
    EXPECT_EQ(PictureOf(image, {}, false).columnSpacing, 0);
}

TEST(QuietOutput, LetsNothingThroughWhileItLives)
{
    testing::internal::CaptureStdout();
    std::printf("a");
    std::cout << "b";
    {
        const QuietOutput quiet;
        std::printf("c");
        std::cout << "d" << std::flush;
        EXPECT_EQ(write(STDOUT_FILENO, "e", 1), 1);
    }
    std::printf("f");
    std::cout << "g" << std::flush;
    const Volume volume = BallInAir();
    const VolumeView view(volume, {});
    const PaletteTables tables({{0, RedBall()}});
    ViewRenderer renderer(view, tables);
    renderer.Render({NamedView("left"), 20, 20, 2, {}});
    renderer.RenderInside({{20, 20, 20}, {0, 1, 0}, {0, 0, 1}}, 90, 20, 20);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "abfg");
}
} // namespace
} // namespace corvane::host
