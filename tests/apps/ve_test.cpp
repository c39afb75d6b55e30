#include "run_program.h"

#include <sys/stat.h>

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

const std::string kSmall = "phantom:size=96x96x80,spacing=3.2x3.2x4,noise=0";

TEST(Ve, ShowsTheInsideOfThePhantomsBowel)
{
    const ScratchFolder folder;
    const Outcome outcome = Corvane(folder, {"ve", kSmall, "--size", "80x60", "-o", "a.png"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "a.png  80 x 60 pixels, eye at (40, -45.5, -62.4) mm\n");
    EXPECT_EQ(FilesIn(folder.Path()), std::vector<std::string>{"a.png"});
    const PngFile file = ReadPng(ReadBytes(folder / "a.png"));
    EXPECT_EQ(file.rows, 60);
    EXPECT_EQ(file.columns, 80);
    EXPECT_EQ(file.pixelsPerMetreX, 0u); // pixels of a perspective picture have no size
    // A wall all around, in the preset's flesh colour.
    for (int row = 0; row < 60; ++row)
        for (int column = 0; column < 80; ++column)
            ASSERT_GT(file.At(row, column, 0), 15) << row << " " << column;
    EXPECT_GT(file.At(5, 5, 0), file.At(5, 5, 2));
}

TEST(Ve, TakesAnEyeInMillimetresVoxelsAndRas)
{
    const ScratchFolder folder;
    // The airway. The first voxel lies at (-152, -152, -158): x = 0 is voxel 47.5.
    const std::vector<std::string> more = {"--size", "40", "--up", "0,-1,0", "--json"};
    const auto render = [&](std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {"ve", kSmall});
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome outcome = Corvane(folder, arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return Json::parse(outcome.out);
    };
    const Json mm = render({"--eye", "1.6,8,130", "--direction", "0,0,-2", "-o", "a.png"});
    const Json voxel = render({"--eye-voxel", "48,50,72", "--direction", "0,0,-1", "-o", "b.png"});
    const ScratchFolder turned;
    const Outcome ras = Corvane(turned, {"ve", kSmall, "--eye", "-1.6,-8,130", "--direction", "0,0,-1", "-o", "c.png",
                                         "--size", "40", "--up", "0,1,0", "--ras"});
    EXPECT_EQ(mm["pictures"][0]["eye"], (Json{1.6, 8.0, 130.0}));
    EXPECT_EQ(mm["pictures"][0]["direction"], (Json{0.0, 0.0, -1.0}));
    for (int axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(voxel["pictures"][0]["eye"][axis].get<double>(), mm["pictures"][0]["eye"][axis].get<double>(),
                    1e-9);
    EXPECT_EQ(ReadBytes(folder / "a.png"), ReadBytes(folder / "b.png"));
    EXPECT_EQ(ReadBytes(folder / "a.png"), ReadBytes(turned / "c.png"));
}

TEST(Ve, WarnsOfAnEyeInTissue)
{
    const ScratchFolder folder;
    const Outcome outcome =
        Corvane(folder, {"ve", kSmall, "--eye", "0,40,0", "--direction", "1,0,0", "--size", "20", "-o", "a.png"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(Contains(outcome.err, "the eye stands in opaque tissue"));
}

TEST(Ve, FliesAlongAPath)
{
    const ScratchFolder folder;
    WriteBytes(folder / "line.txt", "2 8 150 # in the airway\n1 6 130\n0 6 90\n");
    const Outcome file =
        Corvane(folder, {"ve", kSmall, "--path", "line.txt", "--frames", "5", "--size", "24", "-o", "a", "--json"});
    ASSERT_EQ(file.code, 0) << file.err;
    EXPECT_EQ(FilesIn(folder / "a").size(), 5u);
    const Json pictures = Json::parse(file.out)["pictures"];
    EXPECT_NEAR(pictures[0]["eye"][2].get<double>(), 150, 1e-6);
    EXPECT_NEAR(pictures[2]["eye"][2].get<double>(), 120, 1);
    EXPECT_NEAR(pictures[4]["eye"][2].get<double>(), 90, 1e-6);
    const Outcome points = Corvane(folder, {"ve", kSmall, "--point", "2,8,150", "--point", "1,6,130", "--point",
                                            "0,6,90", "--frames", "5", "--size", "24", "-o", "b"});
    ASSERT_EQ(points.code, 0) << points.err;
    for (const std::string& name : FilesIn(folder / "a"))
        EXPECT_EQ(ReadBytes(folder / ("a/" + name)), ReadBytes(folder / ("b/" + name)));
}

TEST(Ve, ExplainsAWrongCommandLineAndLeavesNothing)
{
    const ScratchFolder folder;
    const auto refuses = [&](std::vector<std::string> more, const std::string& part)
    {
        more.insert(more.begin(), {"ve", "-o", "a.png"});
        ExpectRefusal(Corvane(folder, more), 2, part);
    };
    refuses({kSmall, "--eye", "0,0,0"}, "say where the eye is");
    refuses({kSmall, "--eye", "0,0,0", "--eye-voxel", "1,1,1", "--direction", "0,0,1"}, "not both");
    refuses({kSmall, "--eye", "0,0,900", "--direction", "0,0,1"}, "stands outside the volume");
    refuses({kSmall, "--eye", "0,0,0", "--direction", "0,0,0"}, "no length");
    refuses({kSmall, "--field-of-view", "190"}, "degrees from 5 to 175");
    refuses({kSmall, "--point", "0,0,0", "--frames", "1"}, "--frames takes");
    refuses({kSmall, "--point", "0,0,0", "--eye", "1,1,1"}, "a path does not go with --eye");
    ExpectRefusal(Corvane(folder, {"ve", kSmall, "--point", "0,0,0", "-o", "b"}), 2, "two different points");
    ExpectRefusal(Corvane(folder, {"ve", kSmall, "--path", "absent.txt", "-o", "b"}), 3, "absent.txt");
    EXPECT_TRUE(FilesIn(folder.Path()).empty());
}

Outcome WithPath(const ScratchFolder& folder, const std::string& path, std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), {"PATH=" + path, CORVANE_PROGRAM});
    return RunIn(folder, "/usr/bin/env", arguments);
}

TEST(Film, HandsEveryPictureToFfmpeg)
{
    const ScratchFolder folder;
    // Keeps what it reads, behind the words that it was called with.
    MakeFfmpeg(folder, "echo \"$*\" > words\n" + std::string(kKeepFilm));
    const Outcome outcome =
        WithPath(folder, folder / "bin",
                 {"vr", kSmall, "--size", "30x20", "--turntable", "3", "-o", "p", "--video", "f.mp4", "--fps", "12"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(Contains(outcome.out, "f.mp4  3 pictures"));
    EXPECT_EQ(FilesIn(folder.Path()), (std::vector<std::string>{"bin", "f.mp4", "p", "words"}));
    const std::string words = ReadBytes(folder / "words");
    EXPECT_TRUE(Contains(words, "-f rawvideo -pix_fmt rgb24 -s 30x20 -r 12 -i pipe:0"));
    const std::string film = ReadBytes(folder / "f.mp4");
    ASSERT_EQ(film.size(), 3u * 30 * 20 * 3);
    for (int n = 0; n < 3; ++n)
    {
        const PngFile picture = ReadPng(ReadBytes(folder / ("p/vr_00" + std::to_string(n + 1) + ".png")));
        for (size_t sample = 0; sample < 1800; ++sample)
            ASSERT_EQ(uint8_t(film[size_t(n) * 1800 + sample]), picture.samples[sample]);
    }
}

TEST(Film, NeedsNoPictureFiles)
{
    const ScratchFolder folder;
    MakeFfmpeg(folder, kKeepFilm);
    const Outcome outcome = WithPath(folder, folder / "bin", {"ve", kSmall, "--size", "8", "--video", "f.webm"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(ReadBytes(folder / "f.webm").size(), 192u);
    ExpectRefusal(WithPath(folder, folder / "bin", {"ve", kSmall, "--size", "8", "--video", "f.webm"}), 4,
                  "exists already");
}

TEST(Film, PassesOnWhatFfmpegSays)
{
    const ScratchFolder folder;
    MakeFfmpeg(folder, "echo 'no such encoder' >&2\nexit 1\n");
    const Outcome outcome = WithPath(folder, folder / "bin", {"ve", kSmall, "--size", "200", "--video", "f.mp4"});
    ExpectRefusal(outcome, 4, "ffmpeg has made no film: no such encoder");
    EXPECT_EQ(FilesIn(folder.Path()), std::vector<std::string>{"bin"});
}

TEST(Film, SaysThatFfmpegIsMissing)
{
    const ScratchFolder folder;
    ExpectRefusal(WithPath(folder, folder.Path(), {"vr", kSmall, "--turntable", "4", "-o", "p", "--video", "f.mp4"}), 4,
                  "needs the program ffmpeg");
    EXPECT_TRUE(FilesIn(folder.Path()).empty());
}
} // namespace
} // namespace corvane
