#include "run_program.h"

#include "host/read_volume.h"

#include <algorithm>
#include <functional>

namespace corvane
{
namespace
{
using host::Contains;
using host::Grid;
using host::PngFile;
using host::ReadBytes;
using host::ReadPng;
using host::ScratchFolder;
using host::Vec3;
using host::WriteBytes;

const std::string kSmall = "phantom:size=64x64x48,spacing=4.8x4.8x6.6,noise=0";
const Vec3 kBall = {5, -3, 8};
constexpr double kRadius = 4; // mm

// A grid of about 48 mm along each side round (0, 0, 0) whose slices lean.
Grid CubeGrid(double spacingZ, double tiltDegrees)
{
    const double angle = tiltDegrees * std::numbers::pi / 180;
    Grid grid;
    grid.sizeX = grid.sizeY = 48;
    grid.sizeZ = int(48 / spacingZ);
    grid.spacing = {1, 1, spacingZ};
    grid.rowDirection = {1, 0, 0};
    grid.columnDirection = {0, std::cos(angle), std::sin(angle)};
    grid.sliceDirection = {0, 0, 1};
    grid.origin = host::IndexToPatient(grid, {-23.5, -23.5, -0.5 * (grid.sizeZ - 1)});
    return grid;
}

// Writes a NRRD file whose voxels are a function of their place in the patient.
template <typename T>
void WriteVolume(const std::string& path, const Grid& grid, const std::function<double(Vec3)>& value)
{
    const auto text = [](Vec3 v)
    { return "(" + std::to_string(v.x) + "," + std::to_string(v.y) + "," + std::to_string(v.z) + ")"; };
    std::string bytes = "NRRD0004\ntype: " + std::string(sizeof(T) == 2 ? "int16" : "uint8") +
                        "\ndimension: 3\nspace: left-posterior-superior\nendian: little\nencoding: raw\nsizes: " +
                        std::to_string(grid.sizeX) + " " + std::to_string(grid.sizeY) + " " +
                        std::to_string(grid.sizeZ) + "\nspace directions: " + text(grid.spacing.x * grid.rowDirection) +
                        " " + text(grid.spacing.y * grid.columnDirection) + " " +
                        text(grid.spacing.z * grid.sliceDirection) + "\nspace origin: " + text(grid.origin) + "\n\n";
    for (int k = 0; k < grid.sizeZ; ++k)
        for (int j = 0; j < grid.sizeY; ++j)
            for (int i = 0; i < grid.sizeX; ++i)
                bytes += host::BytesOf(T(std::lround(value(host::IndexToPatient(grid, {i * 1.0, j * 1.0, k * 1.0})))));
    WriteBytes(path, bytes);
}

double BallInAir(Vec3 point) { return Length(point - kBall) <= kRadius ? 1000 : -1000; }

// A picture's stored values, and what the program said of it.
struct Projected
{
    Json json;
    PngFile file;

    int At(int row, int column) const { return file.At(row, column) - 32768; }
    int Middle() const { return At(file.rows / 2, file.columns / 2); }
    int Most() const { return *std::max_element(file.samples.begin(), file.samples.end()) - 32768; }

    // Patient mm to pixels.
    double ColumnOf(Vec3 point) const { return Along("rowDirection", "columnSpacing", point); }
    double RowOf(Vec3 point) const { return Along("columnDirection", "rowSpacing", point); }

private:
    double Along(const char* direction, const char* spacing, Vec3 point) const
    {
        const auto vector = [&](const char* name) {
            return Vec3{json[name][0].get<double>(), json[name][1].get<double>(), json[name][2].get<double>()};
        };
        return Dot(point - vector("position"), vector(direction)) / json[spacing].get<double>();
    }
};

// Runs COMMAND INPUT ARGUMENT... for one picture of stored values.
Projected StoredValues(const ScratchFolder& folder, std::vector<std::string> arguments)
{
    arguments.insert(arguments.end(), {"--format", "png16", "-o", "stored.png", "--force", "--json"});
    const Outcome outcome = Corvane(folder, arguments);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return {Json::parse(outcome.out)["pictures"][0], ReadPng(ReadBytes(folder / "stored.png"))};
}

TEST(Projection, ShowsABrightBallInTheMaximumAndNotInTheMinimum)
{
    for (const double tilt : {0.0, 20.0})
        for (const std::string view : {"anterior", "left", "superior"})
        {
            const ScratchFolder folder;
            WriteVolume<int16_t>(folder / "v.nrrd", CubeGrid(1, tilt), BallInAir);
            const std::vector<std::string> look = {"v.nrrd", "--view", view, "--size", "120"};
            const auto with = [&](const char* command)
            {
                std::vector<std::string> arguments = look;
                arguments.insert(arguments.begin(), command);
                return StoredValues(folder, arguments);
            };
            const Projected most = with("mip"), least = with("minip"), mean = with("aip");
            EXPECT_EQ(most.Most(), 1000);
            EXPECT_EQ(least.Most(), -1000);
            EXPECT_GT(mean.Most(), -1000 + 2000 * 6 / 48); // 8 of about 48 mm
            EXPECT_LT(mean.Most(), -1000 + 2000 * 10 / 40);
            const double size = most.json["rowSpacing"];
            for (int row = 0; row < 120; ++row)
                for (int column = 0; column < 120; ++column)
                {
                    const double distance = size * std::hypot(row - most.RowOf(kBall), column - most.ColumnOf(kBall));
                    if (distance < kRadius - 1.5)
                    {
                        ASSERT_EQ(most.At(row, column), 1000) << tilt << view << " " << row << " " << column;
                    }
                    else if (distance > kRadius + 1.5)
                    {
                        ASSERT_LE(most.At(row, column), -1000) << tilt << view << " " << row << " " << column;
                    }
                }
        }
}

TEST(Projection, SlabsReachHalfTheirThicknessToEitherSide)
{
    // Values are 100 for each mm of height, 0 in the middle: what a slab finds tells how far it reaches.
    for (const double tilt : {0.0, 20.0})
        for (const double spacingZ : {1.0, 2.0})
        {
            const ScratchFolder folder;
            WriteVolume<int16_t>(folder / "v.nrrd", CubeGrid(spacingZ, tilt), [](Vec3 p) { return 100 * p.z; });
            for (const double thickness : {4.0, 7.5, 16.0})
                for (const double shift : {0.0, 3.0})
                {
                    const auto middle = [&](const char* command)
                    {
                        return StoredValues(folder,
                                            {command, "v.nrrd", "--plane", "axial", "--center", "0,0,0", "--slice",
                                             std::to_string(shift), "--thickness", std::to_string(thickness)})
                            .Middle();
                    };
                    // One sample a mm: the last stands up to 1 mm before the end; the nearest voxel is up to half
                    // a spacing away, along the tilted column direction a little more.
                    const double before = 1.1, beyond = 0.6 * spacingZ + 0.2;
                    EXPECT_GE(middle("mip"), 100 * (shift + thickness / 2 - before));
                    EXPECT_LE(middle("mip"), 100 * (shift + thickness / 2 + beyond));
                    EXPECT_LE(middle("minip"), 100 * (shift - thickness / 2 + before));
                    EXPECT_GE(middle("minip"), 100 * (shift - thickness / 2 - beyond));
                    EXPECT_NEAR(middle("aip"), 100 * shift, 100 * beyond);
                }
        }
}

TEST(Projection, ASlabShowsABallOnlyWhenItReachesIt)
{
    // Balls of 4 mm across, 6 mm before the plane and 12 mm behind it, beside each other.
    const ScratchFolder folder;
    const Vec3 before = {-8, -6, 0}, behind = {8, 12, 0};
    WriteVolume<int16_t>(folder / "v.nrrd", CubeGrid(2, 0),
                         [&](Vec3 p) { return Length(p - before) <= 2 || Length(p - behind) <= 2 ? 1000 : -1000; });
    const auto sees = [&](const char* thickness, Vec3 ball)
    {
        const Projected slab = StoredValues(
            folder, {"mip", "v.nrrd", "--plane", "coronal", "--center", "0,0,0", "--thickness", thickness});
        return slab.At(int(std::lround(slab.RowOf(ball))), int(std::lround(slab.ColumnOf(ball)))) > 0;
    };
    EXPECT_FALSE(sees("6", before)); // 3 mm to either side
    EXPECT_FALSE(sees("6", behind));
    EXPECT_TRUE(sees("12", before));
    EXPECT_FALSE(sees("12", behind));
    EXPECT_FALSE(sees("18", behind)); // 9 mm; the ball begins at 10
    EXPECT_TRUE(sees("24", behind));
}

TEST(Projection, TheAverageOfTwoLayersLiesBetweenThem)
{
    const ScratchFolder folder;
    WriteVolume<int16_t>(folder / "v.nrrd", CubeGrid(1, 0), [](Vec3 p) { return p.z < 0 ? 100 : 300; });
    const Projected above = StoredValues(folder, {"aip", "v.nrrd", "--view", "superior"});
    EXPECT_NEAR(above.Middle(), 200, 5); // one voxel of 46 more or less of either layer
    const Projected front = StoredValues(folder, {"aip", "v.nrrd", "--view", "anterior", "--size", "96"});
    const int column = front.file.columns / 2;
    EXPECT_EQ(front.At(int(front.RowOf({0, 0, 12})), column), 300);
    EXPECT_EQ(front.At(int(front.RowOf({0, 0, -12})), column), 100);
    // A quarter of a slab of 16 mm reaches beyond the border when it is moved by 4 mm.
    const Projected slab = StoredValues(
        folder, {"aip", "v.nrrd", "--plane", "axial", "--center", "0,0,0", "--slice", "4", "--thickness", "16"});
    EXPECT_NEAR(slab.Middle(), 0.25 * 100 + 0.75 * 300, 200.0 / 16 + 1);
}

TEST(Projection, LeavesOutHiddenLabels)
{
    const ScratchFolder folder;
    const Grid grid = CubeGrid(1, 0);
    WriteVolume<int16_t>(folder / "v.nrrd", grid, BallInAir);
    WriteVolume<uint8_t>(folder / "l.nrrd", grid, [](Vec3 p) { return Length(p - kBall) <= kRadius + 3 ? 3 : 0; });
    EXPECT_EQ(StoredValues(folder, {"mip", "v.nrrd", "--labels", "l.nrrd", "--hide-label", "3"}).Most(), -1000);
    EXPECT_EQ(StoredValues(folder, {"mip", "v.nrrd", "--labels", "l.nrrd", "--hide-label", "0"}).Most(), 1000);
    // Without the rest of the air the mean is that of the ball and a thin shell of air.
    const Projected ball = StoredValues(folder, {"aip", "v.nrrd", "--labels", "l.nrrd", "--hide-label", "0"});
    EXPECT_EQ(ball.At(4, 4), -1024);
    EXPECT_GT(ball.Most(), 0); // about 8 of 14 mm at 1000, the rest at -1000
    // A label that ends with the ball leaves an edge, which is mixed of ball and air, unless it is hidden, too.
    WriteVolume<uint8_t>(folder / "e.nrrd", grid, [](Vec3 p) { return Length(p - kBall) <= kRadius ? 3 : 0; });
    const std::vector<std::string> edge = {"mip", "v.nrrd", "--labels", "e.nrrd", "--hide-label", "3"};
    auto hidden = edge;
    hidden.insert(hidden.end(), {"--hide-margin", "1"});
    EXPECT_GT(StoredValues(folder, edge).Most(), -500);
    EXPECT_EQ(StoredValues(folder, hidden).Most(), -1000);
    const Outcome absent = Corvane(folder, {"mip", "v.nrrd", "--labels", "l.nrrd", "--hide-label", "7", "-o", "a.png"});
    EXPECT_EQ(absent.code, 0);
    EXPECT_EQ(absent.err, "corvane: warning: no voxel has label 7\n");
    ExpectRefusal(Corvane(folder, {"mip", "v.nrrd", "--hide-label", "3", "-o", "b.png"}), 2, "--labels FILE");
    ExpectRefusal(Corvane(folder, {"mip", "v.nrrd", "--labels", "l.nrrd", "-o", "b.png"}), 2, "needs --hide-label");
}

TEST(Projection, CropsToABoxOrToVoxels)
{
    const ScratchFolder folder;
    WriteVolume<int16_t>(folder / "v.nrrd", CubeGrid(1, 0), BallInAir);
    EXPECT_EQ(StoredValues(folder, {"mip", "v.nrrd", "--crop", "-20,-20,0,20,20,20"}).Most(), 1000);
    EXPECT_EQ(StoredValues(folder, {"mip", "v.nrrd", "--crop", "-20,-20,-20,20,20,3"}).Most(), -1000);
    EXPECT_EQ(StoredValues(folder,
                           {"mip", "v.nrrd", "--crop", "-20,-20,-3,20,20,-20", "--plane", "axial", "--thickness", "30"})
                  .Most(),
              -1000);
    EXPECT_EQ(StoredValues(folder, {"mip", "v.nrrd", "--crop-voxels", "0,0,30,47,47,33"}).Most(), 1000);
    EXPECT_EQ(StoredValues(folder, {"mip", "v.nrrd", "--crop-voxels", "0,0,0,47,47,26"}).Most(), -1000);
}

TEST(Projection, PaintsWhatRaysDoNotMeetBlackAndLeavesValuesAlone)
{
    // Air of exactly -1024: in the lung window ((-1024 + 600) / 1500 + 0.5) * 255 = 55.4, outside the volume 0.
    const ScratchFolder folder;
    WriteVolume<int16_t>(folder / "v.nrrd", CubeGrid(1, 0), [](Vec3 p) { return BallInAir(p) < 0 ? -1024 : 1000; });
    const std::vector<std::string> whole = {"minip", "v.nrrd", "--no-letters", "--size", "100", "-o", "a.png"};
    EXPECT_TRUE(Contains(Corvane(folder, whole).err, "the air around the patient; leave it out with --thickness"));
    const PngFile file = ReadPng(ReadBytes(folder / "a.png"));
    EXPECT_EQ(file.At(50, 50), 55);
    EXPECT_EQ(file.At(0, 50), 0);
    // 48 mm fill 96 of 100 pixels; 1.2 of 48 voxels at either end are not sampled.
    for (int row = 0; row < 100; ++row)
        for (int column = 0; column < 100; ++column)
            if (std::max(std::abs(row - 49.5), std::abs(column - 49.5)) < 44)
            {
                ASSERT_EQ(file.At(row, column), 55) << row << " " << column;
            }
    EXPECT_EQ(Corvane(folder, {"minip", "v.nrrd", "--plane", "axial", "--thickness", "5", "-o", "b.png"}).err, "");
}

TEST(Projection, ChoosesAWindowThatSuitsTheValues)
{
    const ScratchFolder folder;
    WriteVolume<int16_t>(folder / "v.nrrd", CubeGrid(1, 0), [](Vec3 p) { return p.z < 0 ? 100 : 300; });
    const auto window = [&](std::vector<std::string> arguments)
    {
        arguments.insert(arguments.end(), {"-o", "w.png", "--force", "--json"});
        const Json json = Json::parse(Corvane(folder, arguments).out)["window"];
        return std::pair(json["center"].get<double>(), json["width"].get<double>());
    };
    const auto pair = [](double centre, double width) { return std::pair(centre, width); };
    EXPECT_EQ(window({"mip", "v.nrrd"}), pair(200, 200)); // no HU: from 100 to 300, as the picture has them
    EXPECT_EQ(window({"mip", "v.nrrd", "--plane", "axial", "--center", "0,0,10", "--thickness", "8"}), pair(300, 1));
    EXPECT_EQ(window({"mip", kSmall}), pair(400, 1800));
    EXPECT_EQ(window({"mip", kSmall, "--plane", "axial", "--thickness", "20"}), pair(200, 800));
    EXPECT_EQ(window({"aip", kSmall, "--plane", "axial", "--thickness", "20"}), pair(50, 400));
    EXPECT_EQ(window({"minip", kSmall, "--plane", "axial", "--thickness", "20"}), pair(-600, 1500));
    EXPECT_EQ(window({"mip", kSmall, "--window", "brain"}), pair(40, 80));
    EXPECT_EQ(window({"mip", kSmall, "--window", "10,20"}), pair(10, 20));
}

TEST(Projection, WarnsWhereTheBackgroundHidesValues)
{
    // Not in Hounsfield units, because nothing is near -1000: an eighth at -5000, the rest at 2000.
    const ScratchFolder folder;
    WriteVolume<int16_t>(folder / "v.nrrd", CubeGrid(1, 0),
                         [](Vec3 p) { return p.x < 0 && p.y < 0 && p.z < 0 ? -5000 : 2000; });
    const auto said = [&](std::vector<std::string> arguments)
    {
        arguments.push_back("--force");
        const Outcome outcome = Corvane(folder, arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return outcome.err;
    };
    EXPECT_EQ(said({"mip", "v.nrrd", "-o", "a.png"}),
              "corvane: warning: 12.5 % of the stored values are below -1024 and show as -1024 where nothing higher "
              "lies on the ray\n");
    EXPECT_TRUE(Contains(said({"aip", "v.nrrd", "-o", "a.png"}), "averages leave out those below -1248"));
    EXPECT_TRUE(Contains(said({"minip", "v.nrrd", "-o", "a.nrrd"}), "pixels outside the volume hold -1024"));
    EXPECT_EQ(said({"minip", "v.nrrd", "-o", "a.png"}), ""); // pictures show the background black
    EXPECT_EQ(said({"mip", kSmall, "-o", "a.png"}), "");
}

TEST(Projection, StacksSlabsAtEvenDistances)
{
    const ScratchFolder folder;
    const auto pictures = [&](std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {"mip", kSmall, "--plane", "axial", "--thickness", "10", "--json"});
        const Outcome outcome = Corvane(folder, arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        return Json::parse(outcome.out)["pictures"];
    };
    const Json five = pictures({"--count", "5", "--step", "4", "-o", "s_{index}.png"});
    ASSERT_EQ(five.size(), 5u);
    for (size_t n = 0; n < 5; ++n)
    {
        EXPECT_EQ(five[n]["file"], "s_00" + std::to_string(n + 1) + ".png");
        EXPECT_NEAR(five[n]["position"][2].get<double>(), -8 + 4 * double(n), 1e-4);
        EXPECT_EQ(five[n]["thickness"], 10);
    }
    // Slab beside slab unless a step is given. Sampled to 22.4 * 6.6 = 147.84 mm from the middle: 29 steps of 10 mm.
    const Json all = pictures({"--count", "all", "-o", "all"});
    ASSERT_EQ(all.size(), 29u);
    EXPECT_NEAR(all[28]["position"][2].get<double>(), 140, 1e-3);
    EXPECT_EQ(FilesIn(folder / "all").size(), 29u);
    EXPECT_EQ(FilesIn(folder / "all").front(), "axial_001.png");
}

TEST(Projection, NamesItsPicturesAsPlanesAndRenderingsAreNamed)
{
    const ScratchFolder folder;
    EXPECT_EQ(Corvane(folder, {"aip", kSmall, "--thickness", "20", "-o", "planes"}).code, 0);
    EXPECT_EQ(FilesIn(folder / "planes"), (std::vector<std::string>{"axial.png", "coronal.png", "sagittal.png"}));
    EXPECT_EQ(Corvane(folder, {"mip", kSmall, "--size", "48", "--turntable", "4", "-o", "turn"}).code, 0);
    EXPECT_EQ(FilesIn(folder / "turn"),
              (std::vector<std::string>{"mip_001.png", "mip_002.png", "mip_003.png", "mip_004.png"}));
    EXPECT_EQ(Corvane(folder, {"minip", kSmall, "--size", "48", "-o", "one/"}).code, 0);
    EXPECT_EQ(FilesIn(folder / "one"), std::vector<std::string>{"minip.png"});
}

TEST(Projection, PutsASlabIntoThePatient)
{
    const ScratchFolder folder;
    const Outcome outcome = Corvane(
        folder, {"mip", kSmall, "--plane", "coronal", "--slice", "12", "--thickness", "15", "-o", "c.nrrd", "--json"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const Json json = Json::parse(outcome.out);
    EXPECT_EQ(json["projection"], "mip");
    EXPECT_EQ(json["through"], "slab");
    EXPECT_EQ(json["format"], "nrrd");
    const Json& picture = json["pictures"][0];
    EXPECT_EQ(picture["letters"], (Json{{"left", "R"}, {"right", "L"}, {"top", "S"}, {"bottom", "I"}}));
    const host::Volume slab = host::ReadVolume(folder / "c.nrrd");
    EXPECT_EQ(slab.grid.sizeX, picture["columns"]);
    EXPECT_EQ(slab.grid.sizeY, picture["rows"]);
    EXPECT_NEAR(slab.grid.spacing.z, 15, 1e-9);
    EXPECT_NEAR(slab.grid.origin.y, 12, 1e-4); // its middle plane
    EXPECT_EQ(picture["offset"], 12);
    const Json ras = Json::parse(Corvane(folder, {"mip", kSmall, "--plane", "coronal", "--slice", "12", "--thickness",
                                                  "15", "-o", "r.nrrd", "--json", "--ras"})
                                     .out);
    EXPECT_NEAR(ras["pictures"][0]["position"][1].get<double>(), -12, 1e-4);
}

TEST(Projection, TurnsWithItsView)
{
    const ScratchFolder folder;
    const Outcome outcome =
        Corvane(folder, {"mip", kSmall, "--view", "left", "--size", "60x40", "-o", "a.png", "--json"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const Json json = Json::parse(outcome.out);
    EXPECT_EQ(json["through"], "volume");
    const Json& picture = json["pictures"][0];
    EXPECT_EQ(picture["columns"], 60);
    EXPECT_EQ(picture["rows"], 40);
    EXPECT_EQ(picture["normal"], (Json{-1.0, 0.0, 0.0}));
    EXPECT_NEAR(picture["position"][0].get<double>(), 0, 1e-4);      // through the middle of the volume
    EXPECT_NEAR(picture["thickness"].get<double>(), 64 * 4.8, 1e-3); // and from one face to the other
    EXPECT_EQ(picture["letters"]["left"], "A");
    // From the front and from behind one sees the same, mirrored.
    const Projected front = StoredValues(folder, {"aip", kSmall, "--size", "80"});
    const Projected back = StoredValues(folder, {"aip", kSmall, "--size", "80", "--azimuth", "180"});
    const auto pointOf = [&](int row, int column) { // on the plane through the middle, which both share
        const double x = front.json["position"][0], z = front.json["position"][2], size = front.json["columnSpacing"];
        return Vec3{x + column * size, 0, z - row * size};
    };
    for (int row = 0; row < 80; ++row)
        for (int column = 0; column < 80; ++column)
        {
            const Vec3 point = pointOf(row, column);
            ASSERT_NEAR(back.RowOf(point), row, 1e-6);
            const int mirrored = int(std::lround(back.ColumnOf(point)));
            ASSERT_NEAR(back.ColumnOf(point), mirrored, 1e-6);
            if (mirrored < 80)
            {
                ASSERT_NEAR(front.At(row, column), back.At(row, mirrored), 60) << row << " " << column;
            }
        }
    EXPECT_GT(front.Most(), back.At(0, 0));
}

TEST(Projection, WritesTheSameBytesToStandardOutputAndNothingElse)
{
    const ScratchFolder folder;
    for (const std::vector<std::string>& how : {std::vector<std::string>{"--view", "right", "--size", "70"},
                                                std::vector<std::string>{"--plane", "sagittal", "--thickness", "9"}})
    {
        std::vector<std::string> stream = {"mip", kSmall, "-o", "-"}, file = {"mip", kSmall, "-o", "a.png", "--force"};
        stream.insert(stream.end(), how.begin(), how.end());
        file.insert(file.end(), how.begin(), how.end());
        const Outcome streamed = Corvane(folder, stream);
        EXPECT_EQ(streamed.code, 0);
        EXPECT_EQ(streamed.err, "");
        const Outcome written = Corvane(folder, file);
        EXPECT_EQ(written.out.rfind("a.png  ", 0), 0u) << written.out;
        EXPECT_EQ(std::count(written.out.begin(), written.out.end(), '\n'), 1) << written.out;
        EXPECT_EQ(streamed.out, ReadBytes(folder / "a.png"));
        EXPECT_EQ(FilesIn(folder.Path()), std::vector<std::string>{"a.png"});
    }
}

TEST(Projection, KeepsFilesThatStandThereAndLeavesNothingHalfWritten)
{
    const ScratchFolder folder;
    WriteBytes(folder / "coronal.png", "mine");
    ExpectRefusal(Corvane(folder, {"mip", kSmall, "--thickness", "9", "-o", "{plane}.png"}), 4, "--force");
    EXPECT_EQ(FilesIn(folder.Path()), std::vector<std::string>{"coronal.png"});
    EXPECT_EQ(ReadBytes(folder / "coronal.png"), "mine");
    ExpectRefusal(Corvane(folder, {"mip", kSmall, "-o", "absent/a.png"}), 4, "folder does not exist");
    const Outcome full =
        RunIn(folder, "/bin/sh", {"-c", std::string(kOnAFullDisk) + "mip phantom: -o new/", CORVANE_PROGRAM});
    ExpectRefusal(full, 4, "cannot be written");
    EXPECT_EQ(FilesIn(folder.Path()), std::vector<std::string>{"coronal.png"});
}

TEST(Projection, ExplainsAWrongCommandLineAndLeavesNothing)
{
    const ScratchFolder folder;
    const auto refuse = [&](std::vector<std::string> options, const std::string& part)
    {
        options.insert(options.begin(), {"mip", kSmall, "-o", "out/"});
        ExpectRefusal(Corvane(folder, options), 2, part);
    };
    refuse({"--plane", "axial"}, "needs --thickness MM");
    refuse({"--count", "3"}, "needs --thickness MM");
    refuse({"--thickness", "0.09"}, "--thickness takes mm from 0.1 to 5000");
    refuse({"--thickness", "thick"}, "--thickness takes mm");
    refuse({"--thickness", "nan"}, "--thickness takes mm");
    refuse({"--thickness", "9", "--view", "left"}, "does not go with --view");
    refuse({"--thickness", "9", "--turntable", "9"}, "does not go with --view");
    refuse({"--thickness", "9", "--hide-label", "1"}, "do not go with --thickness");
    refuse({"--thickness", "9", "--crop-voxels", "1,1,1,9,9,9"}, "do not go with --thickness");
    refuse({"--thickness", "9", "--plane", "oblique"}, "axial, sagittal, coronal or all");
    refuse({"--thickness", "9", "--slice", "5000"}, "does not meet the volume");
    refuse({"--thickness", "9", "--step", "2"}, "--count");
    refuse({"--thickness", "9", "--pad", "some"}, "auto, all or none");
    refuse({"--view", "top"}, "--view is anterior");
    refuse({"--zoom", "0"}, "--zoom takes");
    refuse({"--size", "1"}, "--size takes");
    refuse({"--hide-label", "64"}, "from 0 to 63");
    refuse({"--hide-label", "bone"}, "from 0 to 63");
    refuse({"--hide-margin", "1"}, "--hide-margin needs --hide-label");
    refuse({"--hide-label", "1", "--hide-margin", "-1"}, "from 0 to 100");
    refuse({"--crop", "900,0,0,950,9,9"}, "--crop leaves nothing");
    refuse({"--window", "40"}, "CENTRE,WIDTH");
    refuse({"--format", "nrrd", "--window", "lung"}, "--format png");
    refuse({"--format", "jpeg"}, "png, png16 or nrrd");
    refuse({"--turntable", "1"}, "--turntable takes");
    ExpectRefusal(Corvane(folder, {"mip", kSmall, "--thickness", "9", "-o", "-"}), 2, "one picture, not 3");
    ExpectRefusal(Corvane(folder, {"mip", kSmall, "-o", "-", "--json"}), 2, "both want standard output");
    ExpectRefusal(Corvane(folder, {"aip", kSmall}), 2, "see corvane aip --help");
    ExpectRefusal(Corvane(folder, {"minip", "absent.nii", "-o", "a.png"}), 3, "absent.nii");
    EXPECT_TRUE(FilesIn(folder.Path()).empty());
}

TEST(Projection, TeachesItsUse)
{
    const ScratchFolder folder;
    for (const char* command : {"mip", "aip", "minip"})
    {
        const Outcome help = Corvane(folder, {command, "--help"});
        EXPECT_EQ(help.code, 0);
        for (const char* part : {"Examples:", "--thickness MM", "whatever its label", "Exit codes:"})
            EXPECT_TRUE(Contains(help.out, part));
    }
}
} // namespace
} // namespace corvane
