#include "run_program.h"

namespace corvane
{
namespace
{
using host::ScratchFolder;

TEST(Verify, FindsThePicturesOfEveryMachineAndSaysNothingElse)
{
    const ScratchFolder folder;
    const Outcome outcome = Corvane(folder, {"verify"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(FilesIn(folder.Path()).empty());
    EXPECT_EQ(outcome.out.find("take time"), std::string::npos); // the library's own lines
    EXPECT_NE(outcome.out.find("  tilted/cut\n"), std::string::npos);
    const std::string end = " pictures are what they are on every machine\n";
    ASSERT_GT(outcome.out.size(), end.size());
    EXPECT_EQ(outcome.out.substr(outcome.out.size() - end.size()), end);
}

TEST(Verify, OfMachinesWithoutReadersSaysThatItsOutputIsLost)
{
    const ScratchFolder folder;
    EXPECT_EQ(RunIn(folder, CORVANE_VERIFY, {}).code, 0);
    const Outcome full = RunIn(folder, "/bin/sh", {"-c", "\"$0\" >/dev/full", CORVANE_VERIFY});
    EXPECT_EQ(full.code, 4);
    EXPECT_EQ(full.err, "corvane_verify: standard output cannot be written; is the disk full?\n");
}
} // namespace
} // namespace corvane
