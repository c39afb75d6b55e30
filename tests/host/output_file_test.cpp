#include "host/output_file.h"
#include "read_testing.h"

#include <sys/resource.h>
#include <sys/stat.h>

namespace corvane::host
{
namespace
{
namespace fs = std::filesystem;

size_t FilesIn(const ScratchFolder& folder)
{
    return size_t(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()));
}

TEST(OutputFile, WritesAllBytesAndNothingElse)
{
    const ScratchFolder folder;
    const std::string bytes("a\0b\nc", 5);
    WriteOutput(folder / "file", bytes, false);
    EXPECT_EQ(ReadBytes(folder / "file"), bytes);
    EXPECT_EQ(FilesIn(folder), 1u);
}

TEST(OutputFile, ReplacesOnlyOnRequest)
{
    const ScratchFolder folder;
    WriteBytes(folder / "file", "old");
    EXPECT_TRUE(Contains(ErrorOf([&] { WriteOutput(folder / "file", "new", false); }, ErrorKind::Output), "--force"));
    EXPECT_EQ(ReadBytes(folder / "file"), "old");
    WriteOutput(folder / "file", "new", true);
    EXPECT_EQ(ReadBytes(folder / "file"), "new");
    EXPECT_EQ(FilesIn(folder), 1u);
}

TEST(OutputFile, LeavesNothingAndKeepsTheOldFileWhenWritingFails)
{
    const ScratchFolder folder;
    WriteBytes(folder / "file", "old");
    // No file may grow beyond ten bytes: as on a full disk.
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto ignored = signal(SIGXFSZ, SIG_IGN);
    const rlimit tight = {10, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &tight);
    const std::string problem =
        ErrorOf([&] { WriteOutput(folder / "file", std::string(1000, 'x'), true); }, ErrorKind::Output);
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, ignored);
    EXPECT_TRUE(Contains(problem, "cannot be written"));
    EXPECT_EQ(ReadBytes(folder / "file"), "old");
    EXPECT_EQ(FilesIn(folder), 1u);
}

TEST(OutputFile, IsNotHinderedByWhatAKilledRunLeft)
{
    const ScratchFolder folder;
    const std::string left = folder / "file." + std::to_string(getpid()) + ".part";
    WriteBytes(left, "half");
    WriteOutput(folder / "file", "new", false);
    EXPECT_EQ(ReadBytes(folder / "file"), "new");
    EXPECT_EQ(ReadBytes(left), "half");
    EXPECT_EQ(FilesIn(folder), 2u);
}

TEST(OutputFile, ReportsAFullDevice)
{
    EXPECT_TRUE(
        Contains(ErrorOf([] { WriteOutput("/dev/full", "x", false); }, ErrorKind::Output), "/dev/full: cannot"));
    EXPECT_EQ(ErrorOf([] { WriteOutput("/dev/null", "x", false); }), "no error");
}

TEST(OutputFile, NamesWhatIsInTheWay)
{
    const ScratchFolder folder;
    const auto refusal = [](const std::string& path)
    { return ErrorOf([&] { CheckOutput(path, false); }, ErrorKind::Output); };
    EXPECT_TRUE(Contains(refusal(folder / "absent/file"), "its folder does not exist"));
    EXPECT_TRUE(Contains(refusal(folder.Path()), "is a folder"));
    EXPECT_TRUE(Contains(refusal(""), "empty"));
    fs::create_symlink("nowhere", folder / "dangling");
    EXPECT_TRUE(Contains(refusal(folder / "dangling"), "exists already"));
    fs::create_symlink("loop", folder / "loop");
    EXPECT_TRUE(Contains(refusal(folder / "loop"), "exists already"));
    EXPECT_TRUE(Contains(refusal(folder / "loop/file"), "its folder does not exist"));
    const std::string longName(300, 'x');
    EXPECT_TRUE(Contains(ErrorOf([&] { WriteOutput(folder / longName, "", false); }, ErrorKind::Output), "too long"));
    EXPECT_EQ(refusal(folder / "new"), "no error");
    EXPECT_EQ(refusal("-"), "no error");
    EXPECT_EQ(FilesIn(folder), 2u);
}
} // namespace
} // namespace corvane::host
