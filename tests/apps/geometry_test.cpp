// From files to pictures: what is round and how long in the patient is so in every picture.

#include "run_program.h"
#include "tests/host/dicom_writer.h"

namespace corvane
{
namespace
{
using host::Grid;
using host::ReadBytes;
using host::ReadPng;
using host::ScratchFolder;
using host::Vec3;

constexpr double kPi = std::numbers::pi;
constexpr double kSphereRadius = 30, kBallRadius = 6; // mm
const Vec3 kSphere = {12.5, -33.25, 71};
const Vec3 kBallLeft = kSphere + Vec3{46, 0, 0}, kBallBehind = kSphere + Vec3{0, 43, 0},
           kBallAbove = kSphere + Vec3{0, 0, 41};

// A stack on a tilted gantry: the slice planes lean, the table moves along z; three different spacings.
Grid TiltedGrid(double tiltDegrees)
{
    const double angle = tiltDegrees * kPi / 180;
    Grid grid;
    grid.sizeX = 150;
    grid.sizeY = 120;
    grid.sizeZ = 70;
    grid.spacing = {0.9, 1.1, 2.5};
    grid.rowDirection = {1, 0, 0};
    grid.columnDirection = {0, std::cos(angle), std::sin(angle)};
    grid.sliceDirection = {0, 0, 1};
    grid.origin =
        kSphere - (74 * 0.9) * grid.rowDirection - (58 * 1.1) * grid.columnDirection - (34 * 2.5) * grid.sliceDirection;
    return grid;
}

// 1000 inside the balls, -1000 outside, soft over one mm.
int BallsAt(Vec3 point)
{
    double distance = host::Length(point - kSphere) - kSphereRadius;
    for (const Vec3 ball : {kBallLeft, kBallBehind, kBallAbove})
        distance = std::min(distance, host::Length(point - ball) - kBallRadius);
    return int(std::lround(1000 * std::clamp(-2 * distance, -1.0, 1.0)));
}

// Area, middle (row, column in pixels) and spread of the bright pixels within a rectangle, weighted by brightness.
struct Spot
{
    double area = 0, row = 0, column = 0, rowSpread = 0, columnSpread = 0;
};

Spot Measure(const host::PngFile& file, double middleRow, double middleColumn, double reach)
{
    Spot spot;
    for (const bool second : {false, true})
        for (int row = int(std::max(0.0, middleRow - reach)); row < std::min<double>(file.rows, middleRow + reach);
             ++row)
            for (int column = int(std::max(0.0, middleColumn - reach));
                 column < std::min<double>(file.columns, middleColumn + reach); ++column)
            {
                const double weight = file.At(row, column) / 255.0;
                if (!second)
                {
                    spot.area += weight;
                    spot.row += weight * row;
                    spot.column += weight * column;
                    continue;
                }
                const double r = row - spot.row / spot.area, c = column - spot.column / spot.area;
                spot.rowSpread += weight * r * r;
                spot.columnSpread += weight * c * c;
            }
    spot.row /= spot.area;
    spot.column /= spot.area;
    spot.rowSpread = std::sqrt(spot.rowSpread / spot.area);
    spot.columnSpread = std::sqrt(spot.columnSpread / spot.area);
    return spot;
}

class TiltedStack : public testing::TestWithParam<double>
{
};

TEST_P(TiltedStack, KeepsSpheresRoundAndDistancesTrueInAllThreePlanes)
{
    const ScratchFolder folder;
    const Grid grid = TiltedGrid(GetParam());
    host::WriteDicomSeries(folder / "series", grid,
                           [&](int i, int j, int k) {
                               return BallsAt(host::IndexToPatient(grid, {double(i), double(j), double(k)}));
                           });
    if (GetParam() != 0)
    {
        char tilt[40];
        std::snprintf(tilt, sizeof tilt, "tilted by %.1f degrees", std::fabs(GetParam()));
        EXPECT_TRUE(host::Contains(Corvane(folder, {"info", "series"}).out, tilt));
    }
    const Outcome outcome = Corvane(folder, {"mpr", "series", "--center", "12.5,-33.25,71", "--window", "0,2000",
                                             "--no-letters", "--json", "-o", "out"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const Json pictures = Json::parse(outcome.out)["pictures"];
    ASSERT_EQ(pictures.size(), 3u);
    for (const Json& picture : pictures)
    {
        const std::string plane = picture["plane"];
        const host::PngFile file = ReadPng(ReadBytes(folder / picture["file"].get<std::string>()));
        const double pixel = picture["rowSpacing"];
        EXPECT_NEAR(pixel, 0.9, 1e-6);
        const auto vector = [&](const char* name) {
            return Vec3{picture[name][0], picture[name][1], picture[name][2]};
        };
        // Where a point of the plane must be seen.
        const auto rowOf = [&](Vec3 p) { return host::Dot(p - vector("position"), vector("columnDirection")) / pixel; };
        const auto columnOf = [&](Vec3 p) { return host::Dot(p - vector("position"), vector("rowDirection")) / pixel; };

        // A disc of radius R spreads by R / 2 in every direction.
        const double reach = (kSphereRadius + 3) / pixel;
        const Spot sphere = Measure(file, rowOf(kSphere), columnOf(kSphere), reach);
        EXPECT_NEAR(sphere.row, rowOf(kSphere), 0.25) << plane;
        EXPECT_NEAR(sphere.column, columnOf(kSphere), 0.25) << plane;
        EXPECT_NEAR(2 * sphere.rowSpread, kSphereRadius / pixel, 0.5) << plane;
        EXPECT_NEAR(2 * sphere.columnSpread, kSphereRadius / pixel, 0.5) << plane;
        EXPECT_NEAR(sphere.area, kPi * kSphereRadius * kSphereRadius / (pixel * pixel), 0.02 * sphere.area) << plane;

        // The two balls of this plane: the first to the right of the sphere or above, the second below or above.
        const Vec3 first = plane == "sagittal" ? kBallBehind : kBallLeft;
        const Vec3 second = plane == "axial" ? kBallBehind : kBallAbove;
        const Spot a = Measure(file, rowOf(first), columnOf(first), 9 / pixel);
        const Spot b = Measure(file, rowOf(second), columnOf(second), 9 / pixel);
        EXPECT_GT(a.column, sphere.column + 40) << plane;
        if (plane == "axial")
            EXPECT_GT(b.row, sphere.row + 40); // behind is below
        else
            EXPECT_LT(b.row, sphere.row - 40); // above is above
        const double seen = std::hypot(a.row - b.row, a.column - b.column) * pixel;
        EXPECT_NEAR(seen, host::Length(first - second), 0.5 * pixel) << plane;
        EXPECT_NEAR(std::hypot(a.row - sphere.row, a.column - sphere.column) * pixel, host::Length(first - kSphere),
                    0.5 * pixel)
            << plane;
    }
}

INSTANTIATE_TEST_SUITE_P(Angles, TiltedStack, testing::Values(0.0, 20.0, -27.5));
} // namespace
} // namespace corvane
