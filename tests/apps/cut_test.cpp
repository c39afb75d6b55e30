#include "run_program.h"

#include "host/label_byte.h"
#include "host/read_volume.h"

#include <algorithm>
#include <functional>

namespace corvane
{
namespace
{
using host::Contains;
using host::Grid;
using host::kCutBit;
using host::kLabelBits;
using host::PngFile;
using host::ReadBytes;
using host::ReadPng;
using host::ScratchFolder;
using host::Vec3;
using host::Volume;
using host::WriteBytes;

// Voxels that are not square, so that the two in-plane spacings must not be exchanged; the same with square ones; and
// a tilted stack.
const std::string kUnequal = "phantom:size=64x48x40,spacing=4.8x6.4x7.9,noise=0";
const std::string kSquare = "phantom:size=64x64x48,spacing=4.8x4.8x6.6,noise=0";
const std::string kTilted = "phantom:size=64x64x48,spacing=4.8x4.8x6.6,tilt=20,noise=0";
const std::string kTriangle = "20,20:70,30:40,80";

using Arguments = std::vector<std::string>;

Arguments Joined(Arguments first, const Arguments& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// Runs a command that must succeed without a word of warning. Returns its standard output.
std::string Done(const ScratchFolder& folder, const Arguments& arguments)
{
    const Outcome outcome = Corvane(folder, arguments);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return outcome.out;
}

std::vector<uint8_t> LabelsIn(const ScratchFolder& folder, const std::string& name, const Volume& volume)
{
    return host::ReadLabels(folder / name, volume.grid);
}

Vec3 PointOf(const Grid& grid, size_t voxel)
{
    const size_t x = size_t(grid.sizeX), slice = grid.VoxelsPerSlice();
    return host::IndexToPatient(grid, {double(voxel % x), double(voxel % slice / x), double(voxel / slice)});
}

Vec3 VectorOf(const Json& json) { return {json[0], json[1], json[2]}; }

// A place in a picture, by the numbers that corvane vr prints about it.
struct Place
{
    double column, row;
};
Place SeenAt(const Json& picture, Vec3 point)
{
    const Vec3 offset = point - VectorOf(picture["position"]);
    const double size = picture["pixelSize"];
    return {Dot(offset, VectorOf(picture["rowDirection"])) / size,
            Dot(offset, VectorOf(picture["columnDirection"])) / size};
}

// How far a place lies inside of a triangle whose corners run clockwise in the picture; negative outside.
double InsideBy(const std::vector<Place>& triangle, Place place)
{
    double least = INFINITY;
    for (size_t n = 0; n < 3; ++n)
    {
        const Place a = triangle[n], b = triangle[(n + 1) % 3];
        const double along = b.column - a.column, down = b.row - a.row;
        least =
            std::min(least, (along * (place.row - a.row) - down * (place.column - a.column)) / std::hypot(along, down));
    }
    return least;
}

size_t Count(const std::vector<uint8_t>& labels, const std::function<bool(uint8_t)>& what)
{
    return size_t(std::count_if(labels.begin(), labels.end(), what));
}

bool IsCut(uint8_t label) { return label & kCutBit; }

TEST(Cut, FitsThePictureThatVrMakesWithTheSameOptions)
{
    const std::vector<Place> triangle = {{20, 20}, {70, 30}, {40, 80}};
    const Arguments views[] = {{},
                               {"--view", "left", "--roll", "30", "--zoom", "1.5"},
                               {"--azimuth", "35", "--elevation", "20", "--crop", "-80,-60,-90,70,50,100"},
                               {"--view", "inferior", "--crop-voxels", "5,6,7,50,40,30", "--pad", "all"}};
    for (const std::string& phantom : {kUnequal, kSquare, kTilted})
        for (const Arguments& view : views)
        {
            const ScratchFolder folder;
            const Arguments options = Joined({"--size", "100x96", "--json"}, view);
            const Json seen = Json::parse(Done(folder, Joined({"vr", phantom, "-o", "a.png"}, options)))["pictures"][0];
            const Json cut =
                Json::parse(Done(folder, Joined({"cut", phantom, "--polygon", kTriangle, "-o", "cut.nrrd"}, options)));
            const Volume volume = host::ReadVolume(phantom);
            const std::vector<uint8_t> labels = LabelsIn(folder, "cut.nrrd", volume);
            const bool cropped = !view.empty() && view[0] != "--view";
            size_t inside = 0, wrong = 0;
            for (size_t voxel = 0; voxel < labels.size(); ++voxel)
            {
                const Vec3 point = PointOf(volume.grid, voxel);
                const double deep = InsideBy(triangle, SeenAt(seen, point));
                const size_t x = size_t(volume.grid.sizeX), i = voxel % x;
                const size_t j = voxel % volume.grid.VoxelsPerSlice() / x, k = voxel / volume.grid.VoxelsPerSlice();
                bool shown = true;
                if (cropped)
                    shown = point.x >= -80 && point.x <= 70 && point.y >= -60 && point.y <= 50 && point.z >= -90 &&
                            point.z <= 100;
                else if (std::find(view.begin(), view.end(), "--crop-voxels") != view.end())
                    shown = i >= 5 && i <= 50 && j >= 6 && j <= 40 && k >= 7 && k <= 30;
                inside += deep > 0 && shown;
                // Up to half a pixel's diagonal from the triangle's edge a voxel may be on either side.
                wrong += std::fabs(deep) > 0.708 && IsCut(labels[voxel]) != (deep > 0 && shown);
            }
            EXPECT_GT(inside, 300u);
            EXPECT_EQ(wrong, 0u) << phantom << (view.empty() ? "" : view[0]);
            EXPECT_EQ(cut["cut"], Count(labels, IsCut));
        }
}

TEST(Cut, TakesPolygonsInPatientMillimetres)
{
    // A triangle in the coronal plane, by x and z alone: seen from in front or from behind it covers the same voxels.
    const auto insideBy = [](Vec3 p) { // of the triangle (-60, -50), (70, -50), (5, 90)
        return InsideBy({{-60, 50}, {5, -90}, {70, 50}}, {p.x, -p.z});
    };
    const Volume volume = host::ReadVolume(kUnequal);
    for (const bool ras : {false, true})
        for (const std::string view : {"anterior", "posterior"})
        {
            const ScratchFolder folder;
            const std::string polygon = ras ? "60,0,-50:-5,99,90:-70,-8,-50" : "-60,0,-50:5,-99,90:70,8,-50";
            Arguments arguments = {"cut", kUnequal, "--view", view,        "--size",
                                   "400", "-o",     "c.nii",  "--polygon", polygon};
            if (ras)
                arguments.push_back("--ras");
            Done(folder, arguments);
            const std::vector<uint8_t> labels = LabelsIn(folder, "c.nii", volume);
            size_t inside = 0, wrong = 0;
            for (size_t voxel = 0; voxel < labels.size(); ++voxel)
            {
                const double deep = insideBy(PointOf(volume.grid, voxel));
                inside += deep > 0;
                wrong += std::fabs(deep) > 1 && IsCut(labels[voxel]) != (deep > 0); // pixels are about 1 mm
            }
            EXPECT_GT(inside, 3000u);
            EXPECT_EQ(wrong, 0u) << view << ras;
        }
}

TEST(Cut, SaysHowMuchItTakesAway)
{
    const ScratchFolder folder;
    const std::string all = "-1,-1:100,-1:100,100:-1,100";
    const Outcome outcome = Corvane(folder, {"cut", kTilted, "--size", "64", "--polygon", all, "-o", "cut.nrrd"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(Contains(outcome.err, "a polygon reaches out of the picture of 64 x 64 pixels")) << outcome.err;
    // 64 * 64 * 48 voxels; the slices lean by 20 degrees, so that they are 6.6 mm * cos 20 apart.
    EXPECT_TRUE(Contains(outcome.out, "cut.nrrd  cut away  196608 voxels, "));
    const Json json =
        Json::parse(Corvane(folder, {"cut", kTilted, "--size", "64", "--polygon", all, "-o", "a.nrrd", "--json"}).out);
    EXPECT_EQ(json["cut"], 196608);
    EXPECT_NEAR(json["cutMm3"], 196608 * 4.8 * 4.8 * 6.6 * std::cos(20 * std::numbers::pi / 180), 1);
    EXPECT_EQ(json["regionPixels"], 64 * 64);
    EXPECT_EQ(json["side"], "inside");
    EXPECT_EQ(json["labels"].size(), 1u);
    EXPECT_EQ(json["labels"][0]["left"], 0);
    EXPECT_EQ(json["picture"]["columns"], 64);
    EXPECT_EQ(json["warnings"].size(), 1u);
}

TEST(Cut, KeepsTheRegionAndCutsTheRestWhenAsked)
{
    const Volume volume = host::ReadVolume(kUnequal);
    const ScratchFolder folder;
    const Arguments common = {"cut", kUnequal, "--size", "100", "--polygon", kTriangle, "--azimuth", "20"};
    Done(folder, Joined(common, {"--inside", "-o", "in.nrrd"}));
    Done(folder, Joined(common, {"--outside", "-o", "out.nrrd"}));
    Done(folder, Joined(common, {"--keep", "-o", "keep.nrrd"}));
    const std::vector<uint8_t> in = LabelsIn(folder, "in.nrrd", volume), out = LabelsIn(folder, "out.nrrd", volume);
    for (size_t voxel = 0; voxel < in.size(); ++voxel)
        EXPECT_NE(IsCut(in[voxel]), IsCut(out[voxel])) << voxel;
    EXPECT_EQ(ReadBytes(folder / "keep.nrrd"), ReadBytes(folder / "out.nrrd"));
}

TEST(Cut, PreviewsAreThePicturesOfVrBeforeAndAfter)
{
    const ScratchFolder folder;
    const Arguments look = {"--preset", "skin", "--size", "100", "--azimuth", "20", "--background", "102030"};
    Done(folder, Joined({"cut", kUnequal, "--polygon", kTriangle, "-o", "cut.nii.gz", "--preview", "p/"}, look));
    EXPECT_EQ(FilesIn(folder / "p"), (Arguments{"cut_after.png", "cut_before.png", "cut_region.png"}));
    Done(folder, Joined({"vr", kUnequal, "-o", "before.png"}, look));
    Done(folder, Joined({"vr", kUnequal, "-o", "after.png", "--labels", "cut.nii.gz"}, look));
    const std::string before = ReadBytes(folder / "before.png"), after = ReadBytes(folder / "after.png");
    EXPECT_EQ(ReadBytes(folder / "p/cut_before.png"), before);
    EXPECT_EQ(ReadBytes(folder / "p/cut_after.png"), after);
    // The region has a yellow line along its edge: in row 60 the triangle begins at column 33.3.
    const PngFile region = ReadPng(ReadBytes(folder / "p/cut_region.png"));
    EXPECT_EQ(region.At(60, 34, 0), 255);
    EXPECT_EQ(region.At(60, 34, 1), 220);
    EXPECT_EQ(region.At(60, 34, 2), 60);
    // Outside of the region, and a pixel away from it, before and after are alike; inside all has gone.
    const PngFile was = ReadPng(before), is = ReadPng(after);
    const std::vector<Place> triangle = {{20, 20}, {70, 30}, {40, 80}};
    size_t gone = 0;
    for (int row = 0; row < 100; ++row)
        for (int column = 0; column < 100; ++column)
        {
            // A sample counts as cut when its nearest voxel is, half a voxel's diagonal away at most: 5.6 mm, less
            // than two pixels of 5 mm.
            const double deep = InsideBy(triangle, {double(column), double(row)});
            if (deep > 2)
            {
                gone += was.At(row, column, 0) != 0x10;
                EXPECT_EQ(is.At(row, column, 0), 0x10) << row << " " << column;
            }
            else if (deep < -2)
            {
                EXPECT_EQ(is.At(row, column, 0), was.At(row, column, 0)) << row << " " << column;
            }
        }
    EXPECT_GT(gone, 500u);
}

TEST(Cut, TriesACutWithoutWritingLabels)
{
    const ScratchFolder folder;
    const std::string out =
        Done(folder, {"cut", kSquare, "--polygon", kTriangle, "--size", "100", "--preview", "{picture}_1.png"});
    EXPECT_EQ(FilesIn(folder.Path()), (Arguments{"after_1.png", "before_1.png", "region_1.png"}));
    EXPECT_TRUE(Contains(out, "to be cut away"));
    EXPECT_TRUE(Contains(out, "region_1.png  100 x 100 pixels of "));
}

TEST(Cut, AddsToEarlierCutsAndEveryStepHasItsFile)
{
    const Volume volume = host::ReadVolume(kSquare);
    const ScratchFolder folder;
    Done(folder, {"cut", kSquare, "--size", "100", "--polygon", kTriangle, "-o", "1.nrrd"});
    const Json second =
        Json::parse(Done(folder, {"cut", kSquare, "--size", "100", "--view", "left", "--polygon",
                                  "10,30:90,30:90,60:10,60", "--labels", "1.nrrd", "-o", "2.nrrd", "--json"}));
    Done(folder, {"cut", kSquare, "--size", "100", "--view", "left", "--polygon", "10,30:90,30:90,60:10,60", "-o",
                  "only2.nrrd"});
    const std::vector<uint8_t> one = LabelsIn(folder, "1.nrrd", volume), two = LabelsIn(folder, "2.nrrd", volume);
    const std::vector<uint8_t> only2 = LabelsIn(folder, "only2.nrrd", volume);
    for (size_t voxel = 0; voxel < one.size(); ++voxel)
        EXPECT_EQ(two[voxel], one[voxel] | only2[voxel]) << voxel;
    EXPECT_EQ(second["cutBefore"], Count(one, IsCut));
    EXPECT_EQ(second["cut"], Count(two, IsCut) - Count(one, IsCut));
}

TEST(Cut, KeepsLabelsAndLeavesHiddenOnesAlone)
{
    const Volume volume = host::ReadVolume(kSquare);
    const ScratchFolder folder;
    const std::string all = "0,0:99.9,0:99.9,99.9:0,99.9";
    const auto cut = [&](const Arguments& options)
    {
        Done(folder, Joined({"cut", kSquare, "--size", "100", "--polygon", all, "-o", "c.nrrd", "--force"}, options));
        return LabelsIn(folder, "c.nrrd", volume);
    };
    const auto expect = [&](const std::vector<uint8_t>& labels, const std::function<bool(int)>& isCut)
    {
        for (size_t voxel = 0; voxel < labels.size(); ++voxel)
        {
            ASSERT_EQ(labels[voxel] & kLabelBits, volume.labels[voxel]);
            ASSERT_EQ(IsCut(labels[voxel]), isCut(volume.labels[voxel])) << int(volume.labels[voxel]);
        }
    };
    expect(cut({"--show-labels"}), [](int) { return true; });
    expect(cut({"--show-labels", "--only-label", "2", "--only-label", "5"}),
           [](int label) { return label == 2 || label == 5; });
    expect(cut({"--label-palette", "1:hide", "--label-palette", "2:bone"}), [](int label) { return label != 1; });
    // Labels that no option asks for take no part, as for corvane vr.
    EXPECT_EQ(cut({}), std::vector<uint8_t>(volume.labels.size(), kCutBit));
}

TEST(Cut, StaysWithinADepth)
{
    // From in front, depth grows with y; its middle is that of the volume, which lies at y = 0.
    const Volume volume = host::ReadVolume(kUnequal);
    const ScratchFolder folder;
    const double middle = Json::parse(Done(folder, {"info", kUnequal, "--json"}))["center"][1];
    Done(folder,
         {"cut", kUnequal, "--size", "100", "--polygon", "0,0:99,0:99,99:0,99", "--depth", "-31,53", "-o", "c.nrrd"});
    const std::vector<uint8_t> labels = LabelsIn(folder, "c.nrrd", volume);
    for (size_t voxel = 0; voxel < labels.size(); ++voxel)
    {
        const double deep = PointOf(volume.grid, voxel).y - middle;
        ASSERT_EQ(IsCut(labels[voxel]), deep > -31 && deep < 53) << deep;
    }
}

TEST(Cut, JoinsPolygonsAndReadsThemBackFromItsOwnReport)
{
    const ScratchFolder folder;
    const Arguments common = {"cut", kUnequal, "--size", "100"};
    WriteBytes(folder / "b.txt", "# a square\n50 50\n60 50\n60 60\n50 60\n");
    const std::string report =
        Done(folder, Joined(common, {"--polygon", "10,10:30,10:30,30:10,30", "--polygon", "20,20:40,20:40,40:20,40",
                                     "--polygons", "b.txt", "-o", "a.nrrd", "--json"}));
    // 20 x 20 + 20 x 20 - 10 x 10 + 10 x 10 pixels
    EXPECT_EQ(Json::parse(report)["regionPixels"], 800);
    WriteBytes(folder / "again.json", report);
    Done(folder, Joined(common, {"--polygons", "again.json", "-o", "again.nrrd"}));
    EXPECT_EQ(ReadBytes(folder / "again.nrrd"), ReadBytes(folder / "a.nrrd"));
}

TEST(Cut, IsUnderstoodByTheOtherCommands)
{
    const ScratchFolder folder;
    const std::string all = "0,0:99.9,0:99.9,99.9:0,99.9";
    Done(folder, {"cut", kSquare, "--size", "100", "--polygon", all, "-o", "c.nrrd"});
    EXPECT_TRUE(Contains(Done(folder, {"info", "c.nrrd"}), "64 to 64"));
    // Nothing is left of the volume.
    for (const Arguments& command : {Arguments{"vr", kSquare}, Arguments{"ve", kSquare}})
    {
        Done(folder, Joined(command, {"--size", "64", "--labels", "c.nrrd", "-o", "a.png", "--force"}));
        const PngFile file = ReadPng(ReadBytes(folder / "a.png"));
        for (int row = 0; row < 64; ++row)
            for (int column = 0; column < 64; ++column)
                ASSERT_EQ(file.At(row, column, 0), 0) << command[0];
    }
    for (const std::string kind : {"mip", "aip", "minip"})
    {
        Done(folder, {kind, kSquare, "--size", "64", "--labels", "c.nrrd", "-o", kind + ".nrrd"});
        const Volume projected = host::ReadVolume(folder / (kind + ".nrrd"));
        EXPECT_EQ(projected.voxels.size(), 64u * 64);
        EXPECT_TRUE(std::all_of(projected.voxels.begin(), projected.voxels.end(), [](int v) { return v == -1024; }))
            << kind;
    }
    // Planes show the values still, but darker.
    Done(folder, {"mpr", kSquare, "--plane", "axial", "--no-letters", "-o", "plain.png"});
    Done(folder, {"mpr", kSquare, "--plane", "axial", "--no-letters", "--labels", "c.nrrd", "--label-opacity", "0.5",
                  "-o", "cut.png"});
    const PngFile plain = ReadPng(ReadBytes(folder / "plain.png")), dark = ReadPng(ReadBytes(folder / "cut.png"));
    for (int row = 0; row < plain.rows; ++row)
        for (int column = 0; column < plain.columns; ++column)
            ASSERT_EQ(dark.At(row, column, 0), (plain.At(row, column, 0) + 1) / 2);
}

TEST(Cut, WritesLabelsToStandardOutput)
{
    const ScratchFolder folder;
    const Arguments common = {"cut", kSquare, "--size", "100", "--polygon", kTriangle};
    Done(folder, Joined(common, {"-o", "c.nrrd"}));
    EXPECT_EQ(Done(folder, Joined(common, {"-o", "-"})), ReadBytes(folder / "c.nrrd"));
    EXPECT_EQ(FilesIn(folder.Path()), Arguments{"c.nrrd"}); // and no file of the library's own
}

TEST(Cut, SaysSoWhenNothingIsCut)
{
    const ScratchFolder folder;
    const Outcome outcome = Corvane(folder, {"cut", kSquare, "--size", "100", "--polygon", "0,0:2,0:2,2:0,2", "--depth",
                                             "9000,9001", "-o", "c.nrrd"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(Contains(outcome.err, "nothing was cut"));
    EXPECT_TRUE(Contains(outcome.out, "cut away  0 voxels, 0 mm3"));
}

TEST(Cut, ReplacesNothingUnasked)
{
    const ScratchFolder folder;
    const Arguments common = {"cut", kSquare, "--size", "100", "--polygon", kTriangle};
    WriteBytes(folder / "mine.nrrd", "mine");
    WriteBytes(folder / "region.png", "mine");
    ExpectRefusal(Corvane(folder, Joined(common, {"-o", "mine.nrrd"})), 4, "--force");
    ExpectRefusal(Corvane(folder, Joined(common, {"-o", "new.nrrd", "--preview", "{picture}.png"})), 4, "--force");
    ExpectRefusal(Corvane(folder, Joined(common, {"-o", "absent/a.nrrd"})), 4, "folder does not exist");
    ExpectRefusal(Corvane(folder, Joined(common, {"-o", "a.nrrd", "--preview", "absent/p/"})), 4, "absent/p");
    const Outcome full =
        RunIn(folder, "/bin/sh",
              {"-c", std::string(kOnAFullDisk) + "cut phantom: --polygon 9,9:99,9:9,99 -o full.nii", CORVANE_PROGRAM});
    ExpectRefusal(full, 4, "cannot be written");
    EXPECT_EQ(FilesIn(folder.Path()), (Arguments{"mine.nrrd", "region.png"}));
    EXPECT_EQ(ReadBytes(folder / "mine.nrrd"), "mine");
    EXPECT_EQ(ReadBytes(folder / "region.png"), "mine");
    Done(folder, Joined(common, {"-o", "mine.nrrd", "--force"}));
    EXPECT_EQ(ReadBytes(folder / "mine.nrrd").substr(0, 4), "NRRD");
}

TEST(Cut, ExplainsAWrongCommandLineAndLeavesNothing)
{
    const ScratchFolder folder;
    const auto refuse = [&](const Arguments& options, const std::string& part) {
        ExpectRefusal(Corvane(folder, Joined({"cut", kSquare}, options)), 2, part);
    };
    const Arguments polygon = {"--polygon", kTriangle};
    const auto withPolygon = [&](const Arguments& options) { return Joined(polygon, options); };
    refuse(polygon, "--output");
    refuse({"-o", "a.nrrd"}, "--polygon COLUMN,ROW");
    refuse({"-o", "a.nrrd", "--polygon", "1,2:3,4"}, "three corners at least");
    refuse({"-o", "a.nrrd", "--polygon", "a square"}, "COLUMN,ROW");
    refuse({"-o", "a.nrrd", "--polygon", "600,600:700,600:700,700"}, "cover no pixel of the picture of 512 x 512");
    refuse({"-o", "a.nrrd", "--polygon", "1,1:9,9:20,20"}, "cover no pixel");
    refuse(withPolygon({"-o", "a.png"}), ".nrrd, .nii or .nii.gz");
    refuse(withPolygon({"-o", "a.nrrd", "--inside", "--keep"}), "not both");
    refuse(withPolygon({"-o", "a.nrrd", "--only-label", "64"}), "from 0 to 63");
    refuse(withPolygon({"-o", "a.nrrd", "--depth", "3"}), "--depth takes FROM,TO");
    refuse(withPolygon({"-o", "a.nrrd", "--view", "top"}), "--view is anterior");
    refuse(withPolygon({"-o", "a.nrrd", "--zoom", "0"}), "--zoom takes");
    refuse(withPolygon({"-o", "a.nrrd", "--size", "1"}), "--size takes");
    refuse(withPolygon({"-o", "a.nrrd", "--preset", "bone", "--palette", "p.json"}), "not both");
    refuse(withPolygon({"-o", "a.nrrd", "--preview", "a.png"}), "{picture}");
    refuse(withPolygon({"-o", "a.nrrd", "--preview", "{picture}.jpg"}), ".png");
    refuse(withPolygon({"-o", "-", "--json"}), "both want standard output");
    refuse(withPolygon({"-o", "a.nrrd", "--crop", "900,0,0,950,9,9"}), "--crop leaves nothing");
    refuse({"-o", "a.nrrd", "--turntable", "9"}, "see corvane cut --help");
    ExpectRefusal(Corvane(folder, {"cut", kSquare, "-o", "a.nrrd", "--polygons", "absent.txt"}), 3, "absent.txt");
    ExpectRefusal(Corvane(folder, {"cut", "absent.nii", "-o", "a.nrrd", "--polygon", kTriangle}), 3, "absent.nii");
    Done(folder, {"cut", kUnequal, "--size", "100", "--polygon", kTriangle, "-o", "u.nrrd"});
    ExpectRefusal(Corvane(folder, {"cut", kSquare, "-o", "a.nrrd", "--polygon", kTriangle, "--labels", "u.nrrd"}), 3,
                  "another grid");
    EXPECT_EQ(FilesIn(folder.Path()), Arguments{"u.nrrd"});
}

TEST(Cut, TeachesItsUse)
{
    const ScratchFolder folder;
    const std::string help = Done(folder, {"cut", "--help"});
    for (const char* part : {"--polygon", "--keep", "--labels", "non-zero winding", "Examples:", "Exit codes:"})
        EXPECT_TRUE(Contains(help, part));
}
} // namespace
} // namespace corvane
