#include "run_program.h"

#include "host/phantom.h"
#include "host/read_volume.h"

#include <csignal>
#include <numbers>

namespace corvane
{
namespace
{
using host::Contains;
using host::PngFile;
using host::ReadBytes;
using host::ReadPng;
using host::ScratchFolder;

const std::string kSmall = "phantom:size=64x56x48,spacing=4.8x5.4x6.6";

Json Pictures(const Outcome& outcome)
{
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return Json::parse(outcome.out)["pictures"];
}

double Product(const Json& a, const Json& b)
{
    return a[0].get<double>() * b[0].get<double>() + a[1].get<double>() * b[1].get<double>() +
           a[2].get<double>() * b[2].get<double>();
}

TEST(Mpr, WritesTheThreeStandardPlanes)
{
    const ScratchFolder folder;
    const Json pictures = Pictures(Corvane(folder, {"mpr", kSmall, "-o", "out", "--json"}));
    EXPECT_EQ(FilesIn(folder.Path()), std::vector<std::string>{"out"});
    EXPECT_EQ(FilesIn(folder / "out"), (std::vector<std::string>{"axial.png", "coronal.png", "sagittal.png"}));
    const char* letters[3][4] = {{"R", "L", "A", "P"}, {"A", "P", "S", "I"}, {"R", "L", "S", "I"}};
    for (size_t n = 0; n < 3; ++n)
    {
        const Json& picture = pictures[n];
        const PngFile file = ReadPng(ReadBytes(folder / picture["file"].get<std::string>()));
        EXPECT_EQ(file.rows, picture["rows"]);
        EXPECT_EQ(file.columns, picture["columns"]);
        EXPECT_EQ(file.pixelsPerMetreX, 208u); // pixels of 4.8 mm
        EXPECT_EQ(
            picture["letters"],
            (Json{
                {"left", letters[n][0]}, {"right", letters[n][1]}, {"top", letters[n][2]}, {"bottom", letters[n][3]}}));
    }
}

TEST(Mpr, PutsEveryPixelWhereTheJsonSays)
{
    // Stored values of the picture against the phantom's own, at voxels that pixels of the same size fall on.
    const ScratchFolder folder;
    const host::Volume volume = host::MakePhantom(kSmall);
    const Outcome outcome =
        Corvane(folder, {"mpr", kSmall, "--position", "-91.2,-91.8,9.9", "--row", "1,0,0", "--column", "0,1,0",
                         "--size", "30x38", "--pixel-size", "5.4x4.8", "-o", "a.png", "--format", "png16"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const PngFile file = ReadPng(ReadBytes(folder / "a.png"));
    ASSERT_EQ(file.rows, 30);
    ASSERT_EQ(file.columns, 38);
    // The origin lies at (-151.2, -148.5, -155.1): the first pixel is voxel (12.5, 10.5, 25), then one voxel a step.
    for (int row = 0; row < 30; ++row)
        for (int column = 0; column < 38; ++column)
        {
            double mean = 0;
            for (int corner = 0; corner < 4; ++corner)
                mean += 0.25 * volume.voxels[size_t((25 * 56 + 10 + row + corner / 2) * 64 + 12 + column + corner % 2)];
            ASSERT_NEAR(file.At(row, column) - 32768, std::trunc(mean + 0.5), 1) << row << " " << column;
        }
}

TEST(Mpr, WritesNrrdWithItsPlaceInThePatient)
{
    const ScratchFolder folder;
    const Json picture = Pictures(Corvane(folder, {"mpr", kSmall, "--plane", "coronal", "-o", "c.nrrd", "--json"}))[0];
    const host::Volume slice = host::ReadVolume(folder / "c.nrrd");
    EXPECT_EQ(slice.grid.sizeX, picture["columns"]);
    EXPECT_EQ(slice.grid.sizeY, picture["rows"]);
    EXPECT_EQ(slice.grid.sizeZ, 1);
    EXPECT_NEAR(slice.grid.origin.x, picture["position"][0].get<double>(), 1e-9);
    EXPECT_NEAR(slice.grid.origin.z, picture["position"][2].get<double>(), 1e-9);
    EXPECT_NEAR(slice.grid.columnDirection.z, -1, 1e-12);
}

TEST(Mpr, RotatesTheOtherTwoPlanes)
{
    const ScratchFolder folder;
    const Json pictures = Pictures(Corvane(folder, {"mpr", kSmall, "--rotate", "axial:30", "-o", "out", "--json"}));
    const double c = std::cos(std::numbers::pi / 6), s = 0.5;
    EXPECT_NEAR(Product(pictures[0]["rowDirection"], Json{1, 0, 0}), 1, 1e-6);
    EXPECT_NEAR(Product(pictures[1]["rowDirection"], Json{-s, c, 0}), 1, 1e-6); // sagittal, turned about +z
    EXPECT_NEAR(Product(pictures[2]["rowDirection"], Json{c, s, 0}), 1, 1e-6);
    EXPECT_EQ(pictures[2]["letters"]["right"], "LP");

    const Json twice = Pictures(
        Corvane(folder, {"mpr", kSmall, "--rotate", "axial:90", "--rotate", "axial:-60", "-o", "two", "--json"}));
    EXPECT_NEAR(Product(pictures[2]["rowDirection"], twice[2]["rowDirection"]), 1, 1e-6);
}

TEST(Mpr, MovesPlanesToAPointAndAlongTheirNormal)
{
    const ScratchFolder folder;
    const auto position = [&](std::vector<std::string> options)
    {
        options.insert(options.begin(), {"mpr", kSmall, "--json", "--force", "-o", "a.png"});
        return Pictures(Corvane(folder, options))[0]["position"];
    };
    EXPECT_NEAR(position({"--plane", "axial", "--center", "-10.5,20,33"})[2].get<double>(), 33, 1e-9);
    EXPECT_NEAR(position({"--plane", "coronal", "--center", "-10.5,20,33"})[1].get<double>(), 20, 1e-9);
    EXPECT_NEAR(position({"--plane", "coronal", "--center", "-10.5,20,33", "--ras"})[1].get<double>(), 20, 1e-9);
    EXPECT_NEAR(position({"--plane", "axial", "--center-voxel", "3,4,10"})[2].get<double>(), -155.1 + 66, 1e-9);
    EXPECT_NEAR(position({"--plane", "axial", "--slice", "12"})[2].get<double>(), 12, 1e-4);
    EXPECT_NEAR(position({"--plane", "sagittal", "--slice", "12"})[0].get<double>(), -12, 1e-4); // to the right
    EXPECT_NEAR(position({"--plane", "coronal", "--slice", "-7"})[1].get<double>(), -7, 1e-4);
}

TEST(Mpr, RasInputNamesTheSamePlaneAsLps)
{
    const ScratchFolder folder;
    const std::vector<std::string> common = {"mpr", kSmall, "--size", "60x60", "--pixel-size", "3"};
    auto lps = common, ras = common;
    lps.insert(lps.end(), {"--position", "-80,-70,20", "--row", "0.8,0.6,0", "--column", "0,0,-1", "-o", "lps.png"});
    ras.insert(ras.end(),
               {"--position", "80,70,20", "--row", "-0.8,-0.6,0", "--column", "0,0,-1", "-o", "ras.png", "--ras"});
    ASSERT_EQ(Corvane(folder, lps).code, 0);
    ASSERT_EQ(Corvane(folder, ras).code, 0);
    EXPECT_EQ(ReadBytes(folder / "lps.png"), ReadBytes(folder / "ras.png"));
}

TEST(Mpr, StacksParallelSlicesAtEvenDistances)
{
    const ScratchFolder folder;
    const Json five = Pictures(Corvane(
        folder, {"mpr", kSmall, "--plane", "axial", "--count", "5", "--step", "4", "-o", "s_{index}.png", "--json"}));
    ASSERT_EQ(five.size(), 5u);
    for (size_t n = 0; n < 5; ++n)
    {
        EXPECT_EQ(five[n]["file"], "s_00" + std::to_string(n + 1) + ".png");
        EXPECT_NEAR(five[n]["position"][2].get<double>(), -8 + 4 * double(n), 1e-4);
        EXPECT_EQ(five[n]["rows"], five[0]["rows"]);
    }
    // Sampled from -147.84 to 147.84, 1.1 voxels within the ends at 155.1: 29 steps of 10 mm, the middle one at 0.
    const Json all = Pictures(Corvane(folder, {"mpr", kSmall, "--plane", "axial", "--count", "all", "--step", "10",
                                               "--no-letters", "-o", "all", "--json"}));
    ASSERT_EQ(all.size(), 29u);
    EXPECT_NEAR(all[0]["position"][2].get<double>(), -140, 1e-3);
    EXPECT_NEAR(all[28]["position"][2].get<double>(), 140, 1e-3);
    for (const Json& picture : all) // none is empty
    {
        const PngFile file = ReadPng(ReadBytes(folder / picture["file"].get<std::string>()));
        EXPECT_GT(*std::max_element(file.samples.begin(), file.samples.end()), 100);
    }
    EXPECT_EQ(FilesIn(folder / "all").front(), "axial_001.png");
}

TEST(Mpr, PixelsMayBeFinerOrCoarser)
{
    const ScratchFolder folder;
    const auto picture = [&](std::vector<std::string> options)
    {
        options.insert(options.begin(), {"mpr", kSmall, "--plane", "axial", "--json", "--force", "-o", "a.png"});
        return Pictures(Corvane(folder, options))[0];
    };
    const Json standard = picture({}), finer = picture({"--zoom", "2"}), given = picture({"--pixel-size", "1.2"});
    EXPECT_EQ(finer["rows"].get<int>(), 2 * standard["rows"].get<int>());
    EXPECT_NEAR(finer["rowSpacing"].get<double>(), 2.4, 1e-6);
    EXPECT_EQ(given["columns"].get<int>(), 4 * standard["columns"].get<int>());
}

TEST(Mpr, LabelsLieOnWhatTheyLabel)
{
    const ScratchFolder folder;
    host::WriteBytes(folder / "tube.ctbl", "4 tube 0 0 255 255\n");
    const std::vector<std::string> plane = {"mpr", "phantom:noise=0", "--plane", "coronal", "--no-letters"};
    auto plain = plane, coloured = plane;
    plain.insert(plain.end(), {"--window", "-480,960", "-o", "plain.png"}); // air black, tissue bright
    coloured.insert(coloured.end(), {"--show-labels", "--label-colors", "tube.ctbl", "--label-opacity", "1", "-o",
                                     "labels.png", "--window", "-480,960"});
    ASSERT_EQ(Corvane(folder, plain).code, 0);
    ASSERT_EQ(Corvane(folder, coloured).code, 0);
    const PngFile grey = ReadPng(ReadBytes(folder / "plain.png")), labels = ReadPng(ReadBytes(folder / "labels.png"));
    ASSERT_EQ(labels.channels, 3);
    ASSERT_EQ(labels.samples.size(), 3 * grey.samples.size());
    int blue = 0, dark = 0;
    for (int row = 0; row < grey.rows; ++row)
        for (int column = 0; column < grey.columns; ++column)
            if (labels.At(row, column, 2) == 255 && labels.At(row, column, 0) == 0)
            {
                ++blue;
                dark += grey.At(row, column) < 190;
            }
            else
                ASSERT_EQ(labels.At(row, column, 0), grey.At(row, column));
    EXPECT_GT(blue, 1000);
    EXPECT_GT(dark, 0.99 * blue); // pixels lie up to half a voxel from the labelled one
}

TEST(Mpr, ReadsLabelsFromAFileOfTheSameGrid)
{
    const ScratchFolder folder;
    const host::Volume volume = host::MakePhantom(kSmall);
    const auto text = [](double value) { return std::to_string(value); };
    std::string header = "NRRD0004\ntype: uint8\ndimension: 3\nspace: left-posterior-superior\nsizes: 64 56 48\n"
                         "space directions: (4.8,0,0) (0,5.4,0) (0,0,6.6)\nencoding: raw\nspace origin: (" +
                         text(volume.grid.origin.x) + "," + text(volume.grid.origin.y) + "," +
                         text(volume.grid.origin.z) + ")\n\n";
    host::WriteBytes(folder / "labels.nrrd", header + std::string(volume.labels.begin(), volume.labels.end()));
    ASSERT_EQ(Corvane(folder, {"mpr", kSmall, "--labels", "labels.nrrd", "-o", "file"}).code, 0);
    ASSERT_EQ(Corvane(folder, {"mpr", kSmall, "--show-labels", "-o", "own"}).code, 0);
    for (const char* plane : {"axial.png", "sagittal.png", "coronal.png"})
        EXPECT_EQ(ReadBytes(folder / ("file/" + std::string(plane))),
                  ReadBytes(folder / ("own/" + std::string(plane))));
    ExpectRefusal(Corvane(folder, {"mpr", "phantom:", "--labels", "labels.nrrd", "-o", "bad"}), 3, "labels.nrrd");
}

TEST(Mpr, WritesAPictureToStandardOutput)
{
    const ScratchFolder folder;
    const Outcome stream = Corvane(folder, {"mpr", kSmall, "--plane", "axial", "-o", "-"});
    EXPECT_EQ(stream.code, 0);
    EXPECT_EQ(stream.err, "");
    EXPECT_TRUE(FilesIn(folder.Path()).empty());
    ASSERT_EQ(Corvane(folder, {"mpr", kSmall, "--plane", "axial", "-o", "a.png"}).code, 0);
    EXPECT_EQ(stream.out, ReadBytes(folder / "a.png"));
    ExpectRefusal(Corvane(folder, {"mpr", kSmall, "-o", "-"}), 2, "one picture, not 3");
    ExpectRefusal(Corvane(folder, {"mpr", kSmall, "--plane", "axial", "-o", "-", "--json"}), 2, "standard output");
}

TEST(Mpr, ReplacesFilesOnlyOnRequest)
{
    const ScratchFolder folder;
    host::WriteBytes(folder / "coronal.png", "mine");
    ExpectRefusal(Corvane(folder, {"mpr", kSmall, "-o", "{plane}.png"}), 4, "--force");
    EXPECT_EQ(FilesIn(folder.Path()), std::vector<std::string>{"coronal.png"}); // checked before the first is written
    EXPECT_EQ(ReadBytes(folder / "coronal.png"), "mine");
    EXPECT_EQ(Corvane(folder, {"mpr", kSmall, "-o", "{plane}.png", "--force"}).code, 0);
    EXPECT_GT(ReadPng(ReadBytes(folder / "coronal.png")).rows, 0);
}

TEST(Mpr, LeavesNothingWhereItCannotWrite)
{
    const ScratchFolder folder;
    ExpectRefusal(Corvane(folder, {"mpr", kSmall, "--plane", "axial", "-o", "/dev/full"}), 4, "/dev/full");
    ExpectRefusal(Corvane(folder, {"mpr", kSmall, "-o", "absent/folder"}), 4, "absent/folder");
    ExpectRefusal(Corvane(folder, {"mpr", kSmall, "--plane", "axial", "-o", "absent/a.png"}), 4,
                  "folder does not exist");
    // A limit on the size of files acts like a full disk.
    const Outcome full =
        RunIn(folder, "/bin/sh", {"-c", std::string(kOnAFullDisk) + "mpr phantom: -o new", CORVANE_PROGRAM});
    ExpectRefusal(full, 4, "cannot be written");
    EXPECT_TRUE(FilesIn(folder.Path()).empty());
    host::WriteBytes(folder / "file", "mine");
    ExpectRefusal(Corvane(folder, {"mpr", kSmall, "-o", "file"}), 4, "is a file");
    EXPECT_EQ(ReadBytes(folder / "file"), "mine");
}

TEST(Mpr, LeavesOnlyWholeFilesWhenInterrupted)
{
    const ScratchFolder folder;
    // Ended once the third of 200 pictures stands there.
    const Outcome outcome = RunIn(
        folder, "/bin/sh",
        {"-c",
         "\"$0\" mpr phantom:size=48x48x40,spacing=6.4x6.4x8 --plane axial --count 200 --step 1 --zoom 6 -o new & "
         "while [ ! -e new/axial_003.png ]; do :; done; kill -TERM $!; wait $!",
         CORVANE_PROGRAM});
    EXPECT_EQ(outcome.code, 128 + SIGTERM);
    const std::vector<std::string> names = FilesIn(folder / "new");
    EXPECT_GE(names.size(), 3u);
    EXPECT_LT(names.size(), 200u);
    for (const std::string& name : names)
        EXPECT_GT(ReadPng(ReadBytes(folder / ("new/" + name))).rows, 0) << name;
}

TEST(Mpr, ExplainsWrongOptions)
{
    const ScratchFolder folder;
    const auto refuse = [&](std::vector<std::string> options, const std::string& part)
    {
        options.insert(options.begin(), {"mpr", kSmall, "-o", "out/"});
        ExpectRefusal(Corvane(folder, options), 2, part);
    };
    refuse({"--plane", "oblique"}, "axial, sagittal, coronal or all");
    refuse({"--rotate", "axial"}, "PLANE:DEGREES");
    refuse({"--rotate", "axial:x"}, "PLANE:DEGREES");
    refuse({"--center", "1,2"}, "X,Y,Z");
    refuse({"--center", "1,2,3", "--center-voxel", "1,2,3"}, "not both");
    refuse({"--center", "1,2,3000"}, "does not meet the volume");
    refuse({"--slice", "5000"}, "does not meet the volume");
    refuse({"--zoom", "0"}, "above 0");
    refuse({"--pixel-size", "0.0001"}, "larger pixels");
    refuse({"--step", "2"}, "--count");
    refuse({"--count", "0"}, "from 1 to 10000");
    refuse({"--count", "all", "--step", "0.001"}, "longer --step");
    refuse({"--window", "40"}, "CENTRE,WIDTH");
    refuse({"--pad", "some"}, "auto, all or none");
    refuse({"--format", "jpeg"}, "png, png16 or nrrd");
    refuse({"--format", "nrrd", "--window", "lung"}, "--format png");
    refuse({"--label-opacity", "0.5"}, "--show-labels");
    refuse({"--show-labels", "--label-opacity", "2"}, "0 to 1");
    refuse({"--position", "1,2,3"}, "needs all of");
    refuse({"--position", "0,0,0", "--row", "1,0,0", "--column", "1,1,0", "--size", "9x9"}, "right angles");
    refuse({"--position", "0,0,0", "--row", "1,0,0", "--column", "0,1,0", "--size", "9"}, "ROWSxCOLUMNS");
    refuse({"--position", "0,0,0", "--row", "1,0,0", "--column", "0,1,0", "--size", "9x9", "--zoom", "2"}, "--zoom");
    ExpectRefusal(Corvane(folder, {"mpr", kSmall, "-o", "a.png"}), 2, "{plane}");
    ExpectRefusal(Corvane(folder, {"mpr", kSmall, "-o", "{view}.png"}), 2, "{view}");
    ExpectRefusal(Corvane(folder, {"mpr", kSmall, "-o", "{index}.png"}), 2, "would be called 001.png");
    ExpectRefusal(Corvane(folder, {"mpr", kSmall, "--plane", "axial", "-o", "a.jpg"}), 2, ".jpg");
    ExpectRefusal(Corvane(folder, {"mpr", kSmall, "--plane", "axial", "--format", "nrrd", "-o", "a.png"}), 2, ".nrrd");
    EXPECT_TRUE(FilesIn(folder.Path()).empty());
}

TEST(Mpr, KeepsTheOutermostLayersOfThinVolumes)
{
    const ScratchFolder folder;
    const std::string thin = "phantom:size=64x64x8,spacing=4.8x4.8x6,noise=0";
    const auto rows = [&](const std::string& pad)
    {
        return Pictures(Corvane(
            folder, {"mpr", thin, "--plane", "coronal", "--pad", pad, "--json", "--force", "-o", "a.png"}))[0]["rows"]
            .get<int>();
    };
    // Sampled from 1.1 voxels within the first slice to 1.1 within the last: 7 - 2.2 steps of 6 mm; two more padded.
    EXPECT_EQ(rows("none"), 6);
    EXPECT_EQ(rows("auto"), 9);
    EXPECT_EQ(rows("all"), 9);
}

TEST(Mpr, GivesTheSameBytesEveryTime)
{
    const ScratchFolder folder;
    for (const char* name : {"one", "two"})
        ASSERT_EQ(Corvane(folder, {"mpr", kSmall, "--rotate", "coronal:33", "--show-labels", "-o", name}).code, 0);
    for (const char* plane : {"axial.png", "sagittal.png", "coronal.png"})
        EXPECT_EQ(ReadBytes(folder / ("one/" + std::string(plane))), ReadBytes(folder / ("two/" + std::string(plane))));
}
} // namespace
} // namespace corvane
