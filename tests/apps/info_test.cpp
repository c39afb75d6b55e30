#include "run_program.h"
#include "tests/host/dicom_writer.h"

namespace corvane
{
namespace
{
using host::Contains;
using host::ScratchFolder;

TEST(Info, DescribesATiltedVolume)
{
    const ScratchFolder folder;
    const Outcome outcome = Corvane(folder, {"info", "phantom:size=40x30x20,spacing=5x6x8,tilt=18"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
    for (const char* part : {"40 x 30 x 20 voxels", "5 x 6 x 8 mm", "tilted by 18.0 degrees", "(0, 0, 1)", "LPS",
                             " HU\n", "label 5", "CT\n", "center            (0, 0, 0) mm (LPS)"})
        EXPECT_TRUE(Contains(outcome.out, part));
}

TEST(Info, GivesTheSameAsJson)
{
    const ScratchFolder folder;
    const Outcome outcome = Corvane(folder, {"info", "phantom:size=40x30x20,spacing=5x6x8,tilt=18", "--json"});
    const Json info = Json::parse(outcome.out);
    EXPECT_EQ(info["size"], (Json{40, 30, 20}));
    EXPECT_EQ(info["spacing"], (Json{5, 6, 8}));
    EXPECT_NEAR(info["tiltDegrees"].get<double>(), 18, 1e-9);
    EXPECT_NEAR(info["origin"][0].get<double>(), -19.5 * 5, 1e-9);
    EXPECT_EQ(info["unit"], "HU");
    size_t voxels = 0;
    for (const Json& label : info["labels"])
        voxels += label["voxels"].get<size_t>();
    EXPECT_EQ(voxels, size_t(40 * 30 * 20));
    EXPECT_TRUE(info["warnings"].empty());
}

TEST(Info, TurnsPointsAndDirectionsToRasOnRequest)
{
    const ScratchFolder folder;
    const auto origin = [&](bool ras)
    {
        std::vector<std::string> arguments = {"info", "phantom:size=40x30x20,spacing=5x6x8", "--json"};
        if (ras)
            arguments.push_back("--ras");
        return Json::parse(Corvane(folder, arguments).out);
    };
    const Json lps = origin(false), ras = origin(true);
    EXPECT_EQ(lps["space"], "LPS");
    EXPECT_EQ(ras["space"], "RAS");
    for (const char* name : {"origin", "rowDirection", "columnDirection", "sliceDirection"})
        for (size_t axis = 0; axis < 3; ++axis)
            EXPECT_EQ(ras[name][axis].get<double>(), (axis < 2 ? -1 : 1) * lps[name][axis].get<double>());
}

TEST(Info, ListsTheSeriesOfAFolderAndReadsTheChosenOne)
{
    const ScratchFolder folder;
    host::Grid grid = host::ObliqueGrid(12, 10, 9, 0);
    host::DicomSeriesOptions first, second;
    first.description = "thin";
    second.description = "thick";
    second.uid = "1.2.3.4.2";
    second.filePrefix = "B";
    host::WriteDicomSeries(folder / "study", grid, host::TestValue, first);
    grid.sizeZ = 7;
    host::WriteDicomSeries(folder / "study", grid, host::TestValue, second);

    const Outcome list = Corvane(folder, {"info", "study"});
    EXPECT_EQ(list.code, 0);
    EXPECT_EQ(list.err, "");
    for (const char* part : {"2 series", "--series", "thin", "thick", "1.2.3.4.1", "1.2.3.4.2", "9 files", "7 files"})
        EXPECT_TRUE(Contains(list.out, part));
    const Json series = Json::parse(Corvane(folder, {"info", "study", "--json"}).out)["series"];
    ASSERT_EQ(series.size(), 2u);
    const size_t thick = series[0]["description"] == "thick" ? 0 : 1;
    EXPECT_EQ(series[thick]["number"], thick + 1);
    EXPECT_EQ(series[thick]["files"], 7);
    EXPECT_EQ(series[1 - thick]["files"], 9);

    const std::string number = std::to_string(thick + 1);
    const Json byNumber = Json::parse(Corvane(folder, {"info", "study", "--series", number, "--json"}).out);
    const Json byUid = Json::parse(Corvane(folder, {"info", "study", "--series", "1.2.3.4.2", "--json"}).out);
    EXPECT_EQ(byNumber["size"][2], 7);
    EXPECT_EQ(byNumber, byUid);
    ExpectRefusal(Corvane(folder, {"mpr", "study", "-o", "a/"}), 3, "2 series");
    ExpectRefusal(Corvane(folder, {"info", "study", "--series", "9"}), 3, "9");
    EXPECT_EQ(FilesIn(folder.Path()), std::vector<std::string>{"study"});
}
} // namespace
} // namespace corvane
