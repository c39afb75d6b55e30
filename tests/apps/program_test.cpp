// What holds for the program as a whole.

#include "run_program.h"

#include <algorithm>

namespace corvane
{
namespace
{
using host::Contains;
using host::ScratchFolder;

TEST(Program, TeachesItsUse)
{
    const ScratchFolder folder;
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--help"}, {"info", "--help"}, {"mpr", "--help"}})
    {
        const Outcome help = Corvane(folder, arguments);
        EXPECT_EQ(help.code, 0);
        EXPECT_EQ(help.err, "");
        for (const char* part : {"Examples:", "  corvane ", "Exit codes:", "  5  "})
            EXPECT_TRUE(Contains(help.out, part));
    }
    for (const char* option : {"--plane", "--rotate", "--center-voxel", "--window", "--labels", "--format", "--force"})
        EXPECT_TRUE(Contains(Corvane(folder, {"mpr", "--help"}).out, option));
    EXPECT_TRUE(FilesIn(folder.Path()).empty());
}

TEST(Program, SaysItsVersion)
{
    const ScratchFolder folder;
    const Outcome version = Corvane(folder, {"--version"});
    EXPECT_EQ(version.code, 0);
    EXPECT_EQ(version.out.rfind("corvane ", 0), 0u);
    EXPECT_TRUE(isdigit(static_cast<unsigned char>(version.out[8])));
}

TEST(Program, ExplainsAWrongCommandLineInOneLine)
{
    const ScratchFolder folder;
    ExpectRefusal(Corvane(folder, {}), 2, "see corvane --help");
    ExpectRefusal(Corvane(folder, {"paint"}), 2, "paint");
    ExpectRefusal(Corvane(folder, {"info", "phantom:", "--colour"}), 2, "--colour");
    ExpectRefusal(Corvane(folder, {"mpr", "phantom:"}), 2, "see corvane mpr --help");
    ExpectRefusal(Corvane(folder, {"mpr", "phantom:", "--output"}), 2, "see corvane mpr --help");
    EXPECT_TRUE(FilesIn(folder.Path()).empty());
}

TEST(Program, TakesThePhantomWhenNoVolumeIsNamed)
{
    const ScratchFolder folder;
    const Outcome unnamed = Corvane(folder, {"info"});
    EXPECT_EQ(unnamed.code, 0) << unnamed.err;
    EXPECT_EQ(unnamed.out, Corvane(folder, {"info", "phantom:"}).out);
    EXPECT_NE(unnamed.out, Corvane(folder, {"info", "phantom:size=64x64x64"}).out);
}

TEST(Program, ReportsInputThatCannotBeRead)
{
    const ScratchFolder folder;
    ExpectRefusal(Corvane(folder, {"info", "absent.nii.gz"}), 3, "absent.nii.gz");
    ExpectRefusal(Corvane(folder, {"mpr", "absent", "-o", "a.png"}), 3, "absent");
    host::WriteBytes(folder / "text\nfile", "no volume");
    ExpectRefusal(Corvane(folder, {"info", "text\nfile"}), 3, "text file");
    EXPECT_EQ(FilesIn(folder.Path()).size(), 1u);
}

TEST(Program, ReportsResultsThatCannotBeWritten)
{
    const ScratchFolder folder;
    const Outcome full = RunIn(folder, "/bin/sh", {"-c", "\"$0\" info phantom: >/dev/full", CORVANE_PROGRAM});
    ExpectRefusal(full, 4, "standard output");
}

TEST(Gallery, IsAPageWhosePicturesAllExist)
{
    const ScratchFolder folder;
    const Outcome outcome =
        RunIn(folder, CORVANE_GALLERY, {CORVANE_PROGRAM, "phantom:size=48x48x40,spacing=6.4x6.4x8", "a page"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(FilesIn(folder.Path()), std::vector<std::string>{"a page"});
    const std::string page = host::ReadBytes(folder / "a page/index.html");
    size_t pictures = 0;
    for (size_t at = page.find("src=\""); at != std::string::npos; at = page.find("src=\"", at + 1), ++pictures)
    {
        const std::string name = page.substr(at + 5, page.find('"', at + 5) - at - 5);
        EXPECT_GT(host::ReadPng(host::ReadBytes(folder / ("a page/" + name))).columns, 0) << name;
    }
    const std::vector<std::string> files = FilesIn(folder / "a page");
    const auto labels =
        std::count_if(files.begin(), files.end(), [](const std::string& name) { return name.ends_with(".nrrd"); });
    EXPECT_EQ(pictures, files.size() - size_t(labels) - 1); // all but the page itself and the labels of the cuts
    EXPECT_EQ(labels, 3);
    EXPECT_GE(pictures, 20u);
    EXPECT_TRUE(Contains(page, "corvane mpr phantom:size=48x48x40,spacing=6.4x6.4x8 --plane axial --pixel-size"));
    EXPECT_TRUE(Contains(page, "48 x 48 x 40 voxels"));
}

TEST(Gallery, ReportsInputThatCannotBeReadAndLeavesNothing)
{
    const ScratchFolder folder;
    const Outcome outcome = RunIn(folder, CORVANE_GALLERY, {CORVANE_PROGRAM, "absent", "page"});
    EXPECT_NE(outcome.code, 0);
    EXPECT_TRUE(Contains(outcome.err, "absent"));
    EXPECT_TRUE(FilesIn(folder.Path()).empty());
}
} // namespace
} // namespace corvane
