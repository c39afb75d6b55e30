#include "run_program.h"

#include <set>

namespace corvane
{
namespace
{
using host::Contains;
using host::PngFile;
using host::ReadBytes;
using host::ReadPng;
using host::ScratchFolder;
using host::WriteBytes;

const std::string kSmall = "phantom:size=64x64x48,spacing=4.8x4.8x6.6,noise=0";

PngFile Picture(const ScratchFolder& folder, const std::string& name) { return ReadPng(ReadBytes(folder / name)); }

// The part of the pixels that differ from black.
double Covered(const PngFile& file)
{
    double count = 0;
    for (int row = 0; row < file.rows; ++row)
        for (int column = 0; column < file.columns; ++column)
            count += file.At(row, column, 0) > 0;
    return count / (double(file.rows) * file.columns);
}

PngFile Rendered(const std::vector<std::string>& more, const std::string& size = "96")
{
    const ScratchFolder folder;
    std::vector<std::string> arguments = {"vr", kSmall, "--size", size, "-o", "a.png"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Outcome outcome = Corvane(folder, arguments);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return Picture(folder, "a.png");
}

TEST(Vr, WritesOnePictureAndSaysSo)
{
    const ScratchFolder folder;
    const Outcome outcome = Corvane(folder, {"vr", kSmall, "--size", "80x60", "-o", "a.png"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(Contains(outcome.out, "a.png  80 x 60 pixels of "));
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 1) << outcome.out;
    EXPECT_EQ(FilesIn(folder.Path()), std::vector<std::string>{"a.png"}); // and no file of the library's own
    const PngFile file = Picture(folder, "a.png");
    EXPECT_EQ(file.rows, 60);
    EXPECT_EQ(file.columns, 80);
    EXPECT_GT(Covered(file), 0.05);
}

TEST(Vr, WritesTheSameBytesToStandardOutput)
{
    const ScratchFolder folder;
    EXPECT_EQ(Corvane(folder, {"vr", kSmall, "--size", "64", "-o", "a.png"}).code, 0);
    const Outcome outcome = Corvane(folder, {"vr", kSmall, "--size", "64", "-o", "-"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, ReadBytes(folder / "a.png"));
}

TEST(Vr, DescribesItsViewAsJson)
{
    const ScratchFolder folder;
    const Outcome outcome =
        Corvane(folder, {"vr", kSmall, "--size", "40", "--view", "left", "-o", "a.png", "--json", "--preset", "bone"});
    const Json json = Json::parse(outcome.out);
    EXPECT_EQ(json["palette"], "bone");
    const Json& picture = json["pictures"][0];
    EXPECT_EQ(picture["file"], "a.png");
    EXPECT_EQ(picture["direction"], (Json{-1.0, 0.0, 0.0}));
    EXPECT_EQ(picture["letters"], (Json{{"left", "A"}, {"right", "P"}, {"top", "S"}, {"bottom", "I"}}));
    EXPECT_EQ(Picture(folder, "a.png").pixelsPerMetreX, uint32_t(1000 / picture["pixelSize"].get<double>() + 0.5));
    const Outcome ras =
        Corvane(folder, {"vr", kSmall, "--size", "40", "--view", "left", "-o", "b.png", "--json", "--ras"});
    EXPECT_EQ(Json::parse(ras.out)["pictures"][0]["direction"], (Json{1.0, 0.0, 0.0}));
}

TEST(Vr, PutsThePatientsLeftOnTheRightOfAFrontView)
{
    // The bead of the phantom at (70, -68, 112): the patient's left, in front, near the top.
    const ScratchFolder folder;
    const Outcome outcome = Corvane(folder, {"vr",     kSmall,
                                             "--size", "192",
                                             "-o",     "a.png",
                                             "--json", "--label-palette",
                                             "0:hide", "--label-palette",
                                             "1:hide", "--label-palette",
                                             "2:hide", "--label-palette",
                                             "3:hide", "--label-palette",
                                             "4:hide", "--label-palette",
                                             "5:hide", "--label-palette",
                                             "6:hide", "--label-palette",
                                             "7:bone"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const Json geometry = Json::parse(outcome.out)["pictures"][0];
    const double size = geometry["pixelSize"], x = geometry["position"][0], z = geometry["position"][2];
    const PngFile file = Picture(folder, "a.png");
    double rows = 0, columns = 0, count = 0;
    for (int row = 0; row < file.rows; ++row)
        for (int column = 0; column < file.columns; ++column)
            if (file.At(row, column, 0) > 40)
            {
                rows += row;
                columns += column;
                ++count;
            }
    ASSERT_GT(count, 4);
    EXPECT_NEAR(columns / count, (70 - x) / size, 2.0);
    EXPECT_NEAR(rows / count, (z - 112) / size, 2.0);
}

TEST(Vr, ListsItsPresetsAndRendersThemAll)
{
    const ScratchFolder folder;
    const Outcome list = Corvane(folder, {"vr", "--list-presets"});
    EXPECT_EQ(list.code, 0);
    EXPECT_TRUE(Contains(list.out, "bone      bone, and"));
    const Json json = Json::parse(Corvane(folder, {"vr", "--list-presets", "--json"}).out);
    std::set<std::string> pictures;
    for (const Json& preset : json["presets"])
    {
        const std::string name = preset["name"];
        const Outcome outcome = Corvane(folder, {"vr", kSmall, "--size", "48", "--preset", name, "-o", name + ".png"});
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_GT(Covered(Picture(folder, name + ".png")), 0.03) << name;
        pictures.insert(ReadBytes(folder / (name + ".png")));
    }
    EXPECT_EQ(pictures.size(), json["presets"].size());
    EXPECT_GE(pictures.size(), 9u);
}

TEST(Vr, ReadsPalettesFromFiles)
{
    const ScratchFolder folder;
    WriteBytes(folder / "p.json", R"({"opacityDistance": 1, "shading": {"ambient": 1, "diffuse": 0}, "points": [
        {"value": 300, "color": "#204060", "opacity": 0}, {"value": 500, "color": "#204060", "opacity": 1}]})");
    WriteBytes(folder / "p.xml", R"(<S><VolumeProperty name="A B" scalarOpacity="4 300 0 500 1" shade="0"
        gradientOpacity="4 0 0 50 1" colorTransfer="4 300 0.12549 0.25098 0.37647"/><VolumeProperty name="C"/></S>)");
    EXPECT_EQ(Corvane(folder, {"vr", kSmall, "--size", "64", "--palette", "p.json", "-o", "j.png"}).err, "");
    const Outcome xml = Corvane(folder, {"vr", kSmall, "--size", "64", "--palette", "p.xml#A B", "-o", "x.png"});
    EXPECT_EQ(xml.code, 0);
    EXPECT_TRUE(Contains(xml.err, "corvane: warning: the palette 'A B' has a gradient opacity"));
    const PngFile json = Picture(folder, "j.png");
    EXPECT_EQ(ReadBytes(folder / "j.png"), ReadBytes(folder / "x.png")); // the same colours, the same curve
    int deepest = 0;
    for (int row = 0; row < 64; ++row)
        for (int column = 0; column < 64; ++column)
            deepest = std::max(deepest, json.At(row, column, 2));
    EXPECT_NEAR(deepest, 0x60, 1);
    ExpectRefusal(Corvane(folder, {"vr", kSmall, "--palette", "p.xml", "-o", "y.png"}), 3, "A B, C");
    ExpectRefusal(Corvane(folder, {"vr", kSmall, "--palette", "absent.json", "-o", "y.png"}), 3, "absent.json");
}

TEST(Vr, ShowsLabelsEachInItsOwnWay)
{
    const double all = Covered(Rendered({"--show-labels"}));
    const double some = Covered(Rendered({"--show-labels", "--label-palette", "1:hide"}));
    EXPECT_GT(all, 0.5); // the whole body
    EXPECT_LT(some, 0.9 * all);
    // Only the vessels, label 3, are left, in the red of the preset.
    const PngFile vessels = Rendered({"--label-palette", "0:hide", "--label-palette", "1:hide", "--label-palette",
                                      "2:hide", "--label-palette", "4:hide", "--label-palette", "5:hide",
                                      "--label-palette", "6:hide", "--label-palette", "7:hide", "--preset", "vessels"});
    EXPECT_GT(Covered(vessels), 0.01);
    EXPECT_LT(Covered(vessels), 0.2);
    for (int row = 0; row < vessels.rows; ++row)
        for (int column = 0; column < vessels.columns; ++column)
            EXPECT_GE(vessels.At(row, column, 0), vessels.At(row, column, 2));
}

TEST(Vr, WarnsOfALabelThatNoVoxelHas)
{
    const ScratchFolder folder;
    const Outcome outcome =
        Corvane(folder, {"vr", kSmall, "--size", "32", "--label-palette", "44:bone", "-o", "a.png"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(Contains(outcome.err, "no voxel has label 44"));
}

TEST(Vr, CropsToABox)
{
    const double whole = Covered(Rendered({"--preset", "skin"}, "128"));
    // The same scale: the upper half fills the picture less than the whole.
    const ScratchFolder folder;
    const Outcome outcome = Corvane(folder, {"vr", kSmall, "--preset", "skin", "--size", "128", "--crop",
                                             "-500,-500,0,500,500,500", "-o", "a.png", "--json"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const Json geometry = Json::parse(outcome.out)["pictures"][0];
    const PngFile file = Picture(folder, "a.png");
    const double size = geometry["pixelSize"], top = geometry["position"][2];
    const int firstBelow = int((top + 2) / size) + 1; // row, 2 mm below the cut
    ASSERT_LT(firstBelow, file.rows);
    for (int row = firstBelow; row < file.rows; ++row)
        for (int column = 0; column < file.columns; ++column)
            ASSERT_EQ(file.At(row, column, 0), 0) << row;
    EXPECT_GT(Covered(file), 0.4 * whole);
    // The same half by voxels: slice 24 of 48 lies just above z = 0.
    const PngFile voxels = Rendered({"--preset", "skin", "--crop-voxels", "0,0,24,63,63,47"}, "128");
    EXPECT_NEAR(Covered(voxels), Covered(file), 0.05);
}

TEST(Vr, ShowsASingleVoxelAndASingleSlice)
{
    // A voxel in the spine fills what it can of the picture.
    const PngFile voxel = Rendered({"--preset", "skin", "--crop-voxels", "31,40,24,31,40,24"});
    EXPECT_GT(Covered(voxel), 0.3);
    EXPECT_GT(Covered(Rendered({"--preset", "skin", "--view", "superior", "--crop-voxels", "0,0,24,63,63,24"})), 0.2);
}

TEST(Vr, ShowsPlanesInTheirPlaces)
{
    // From above, an axial plane at the centre hides everything below it.
    const PngFile planes =
        Rendered({"--view", "superior", "--planes", "axial", "--center", "0,0,0", "--preset", "bone"});
    const PngFile bare = Rendered({"--view", "superior", "--preset", "bone"});
    EXPECT_GT(Covered(planes), Covered(bare) + 0.2);
    const int middle = 96 / 2;
    EXPECT_GT(planes.At(middle - 12, middle, 0), 60); // soft tissue in the abdominal window
    const PngFile all = Rendered({"--planes", "axial,sagittal,coronal", "--azimuth", "30", "--elevation", "30"});
    EXPECT_GT(Covered(all), 0.2);
}

TEST(Vr, MakesAsManyPicturesAsATurntableHas)
{
    const ScratchFolder folder;
    const Outcome outcome =
        Corvane(folder, {"vr", kSmall, "--size", "32", "--turntable", "12", "-o", "turn", "--json"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(FilesIn(folder.Path()), std::vector<std::string>{"turn"});
    const std::vector<std::string> files = FilesIn(folder / "turn");
    ASSERT_EQ(files.size(), 12u);
    EXPECT_EQ(files.front(), "vr_001.png");
    EXPECT_EQ(files.back(), "vr_012.png");
    const Json pictures = Json::parse(outcome.out)["pictures"];
    EXPECT_EQ(pictures.size(), 12u);
    EXPECT_NEAR(pictures[3]["direction"][0].get<double>(), -1, 1e-9); // a quarter of the way: from the left
    std::set<double> sizes;
    for (const Json& picture : pictures)
        sizes.insert(picture["pixelSize"].get<double>());
    EXPECT_EQ(sizes.size(), 1u); // the patient keeps its size
    EXPECT_EQ(Corvane(folder, {"vr", kSmall, "--size", "32", "--turntable", "2", "-o", "t{index}.png"}).code, 0);
    EXPECT_EQ(FilesIn(folder.Path()), (std::vector<std::string>{"t001.png", "t002.png", "turn"}));
}

TEST(Vr, HasABackground)
{
    const PngFile file = Rendered({"--background", "102030"});
    EXPECT_EQ(file.At(0, 0, 0), 0x10);
    EXPECT_EQ(file.At(0, 0, 1), 0x20);
    EXPECT_EQ(file.At(0, 0, 2), 0x30);
}

TEST(Vr, AddsLettersOnRequest)
{
    // White letters and bar in the corners and edges that the patient leaves black; nothing else changes.
    const PngFile with = Rendered({"--letters", "--preset", "bone"}, "200"),
                  without = Rendered({"--preset", "bone"}, "200");
    int changed = 0, white = 0;
    for (size_t n = 0; n < with.samples.size(); ++n)
    {
        changed += with.samples[n] != without.samples[n];
        white += with.samples[n] == 255 && without.samples[n] != 255;
    }
    EXPECT_GT(white, 150);
    EXPECT_LT(changed, 200 * 200 * 3 / 20);
}

TEST(Vr, RendersATiltedStackWhereThePatientLies)
{
    const PngFile straight = Rendered({"--preset", "bone", "--crop", "-200,-200,-60,200,200,60"});
    const ScratchFolder folder;
    ASSERT_EQ(Corvane(folder, {"vr", "phantom:size=64x64x48,spacing=4.8x4.8x6.6,noise=0,tilt=20", "--preset", "bone",
                               "--size", "96", "--crop", "-200,-200,-60,200,200,60", "-o", "a.png"})
                  .code,
              0);
    const PngFile tilted = Picture(folder, "a.png");
    EXPECT_NEAR(Covered(tilted), Covered(straight), 0.15 * Covered(straight) + 0.02);
}

TEST(Vr, KeepsFilesThatStandThere)
{
    const ScratchFolder folder;
    WriteBytes(folder / "a.png", "mine");
    ExpectRefusal(Corvane(folder, {"vr", kSmall, "--size", "32", "-o", "a.png"}), 4, "exists already");
    EXPECT_EQ(ReadBytes(folder / "a.png"), "mine");
    EXPECT_EQ(Corvane(folder, {"vr", kSmall, "--size", "32", "-o", "a.png", "--force"}).code, 0);
    EXPECT_EQ(Picture(folder, "a.png").rows, 32);
}

TEST(Vr, ExplainsAWrongCommandLineAndLeavesNothing)
{
    const ScratchFolder folder;
    const auto refuses = [&](std::vector<std::string> more, const std::string& part)
    {
        more.insert(more.begin(), "vr");
        ExpectRefusal(Corvane(folder, more), 2, part);
    };
    refuses({kSmall}, "say where the pictures go");
    refuses({kSmall, "-o", "a.png", "--view", "top"}, "--view is anterior");
    refuses({kSmall, "-o", "a.png", "--zoom", "0"}, "--zoom takes a number from 0.01 to 1000");
    refuses({kSmall, "-o", "a.png", "--zoom", "big"}, "--zoom takes a number from 0.01 to 1000");
    refuses({kSmall, "-o", "a.png", "--size", "0"}, "--size takes");
    refuses({kSmall, "-o", "a.png", "--size", "5x5x5"}, "--size takes");
    refuses({kSmall, "-o", "a.png", "--preset", "brain"}, "there is no preset 'brain'; choose one of default, bone");
    refuses({kSmall, "-o", "a.png", "--preset", "bone", "--palette", "x"}, "not both");
    refuses({kSmall, "-o", "a.png", "--background", "red"}, "--background takes RRGGBB");
    refuses({kSmall, "-o", "a.png", "--azimuth", "left"}, "--azimuth takes degrees");
    refuses({kSmall, "-o", "a.png", "--turntable", "1"}, "--turntable takes");
    refuses({kSmall, "-o", "a.png", "--turntable", "5"}, "5 pictures need more than one name");
    refuses({kSmall, "-o", "-", "--turntable", "5"}, "standard output takes one picture");
    refuses({kSmall, "-o", "-", "--json"}, "both want standard output");
    refuses({kSmall, "-o", "a.jpg"}, "pictures are PNG files");
    refuses({kSmall, "-o", "a.png", "--planes", "oblique"}, "--planes takes axial");
    refuses({kSmall, "-o", "a.png", "--center", "0,0,0"}, "belong to --planes");
    refuses({kSmall, "-o", "a.png", "--crop", "1,2,3"}, "--crop takes two corners");
    refuses({kSmall, "-o", "a.png", "--crop", "900,0,0,950,9,9"}, "--crop leaves nothing");
    refuses({kSmall, "-o", "a.png", "--crop-voxels", "64,0,0,70,9,9"}, "--crop-voxels leaves nothing");
    refuses({kSmall, "-o", "a.png", "--label-palette", "bone"}, "--label-palette takes LABEL:NAME");
    refuses({kSmall, "-o", "a.png", "--label-palette", "64:bone"}, "from 0 to 63");
    refuses({kSmall, "-o", "a.png", "--label-palette", "1:bone", "--label-palette", "1:skin"}, "two palettes");
    refuses({kSmall, "-o", "a.png", "--pad", "some"}, "--pad is auto");
    refuses({kSmall, "-o", "a.png", "--video", "a.avi"}, "--video takes a name that ends in");
    ExpectRefusal(Corvane(folder, {"vr", "absent.nii", "-o", "out/"}), 3, "absent.nii");
    ExpectRefusal(Corvane(folder, {"vr", kSmall, "-o", "absent/a.png"}), 4, "its folder does not exist");
    EXPECT_TRUE(FilesIn(folder.Path()).empty());
}
} // namespace
} // namespace corvane
