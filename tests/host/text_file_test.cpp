#include "host/text_file.h"
#include "read_testing.h"

#include <sys/stat.h>

namespace corvane::host
{
namespace
{
TEST(TextFile, GivesAllBytes)
{
    const ScratchFolder folder;
    const std::string bytes("a\0b\r\nc", 6);
    WriteBytes(folder / "file", bytes);
    EXPECT_EQ(TextOfFile(folder / "file", "a text"), bytes);
    WriteBytes(folder / "empty", "");
    EXPECT_EQ(TextOfFile(folder / "empty", "a text"), "");
}

TEST(TextFile, NeverWaitsForAPipeNorReadsADeviceWithoutEnd)
{
    const ScratchFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (const std::string& path : {folder / "pipe", std::string("/dev/zero")})
        EXPECT_TRUE(Contains(ErrorOf([&] { TextOfFile(path, "a text"); }), path + ": cannot be read, it is a pipe"));
}

TEST(TextFile, SaysWhyAFileCannotBeReadAndWhatToGive)
{
    const ScratchFolder folder;
    const auto problem = [](const std::string& path) { return ErrorOf([&] { TextOfFile(path, "a text"); }); };
    EXPECT_TRUE(Contains(problem(folder.Path()), "it is a folder; give a file"));
    EXPECT_TRUE(Contains(problem(folder / "absent"), "cannot be read (No such file or directory); give a text"));
    std::filesystem::create_symlink("loop", folder / "loop");
    EXPECT_TRUE(Contains(problem(folder / "loop"), "cannot be read"));
    WriteBytes(folder / "large", "");
    std::filesystem::resize_file(folder / "large", (uintmax_t(16) << 20) + 1); // takes no room on the disk
    EXPECT_TRUE(Contains(problem(folder / "large"), "is too large for a text"));
}
} // namespace
} // namespace corvane::host
