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
    EXPECT_EQ(outcome.out.find("take time"), std::string::npos); // the library's own lines
    EXPECT_NE(outcome.out.find("  tilted/cut\n"), std::string::npos);
    const std::string end = " pictures are what they are on every machine\n";
    ASSERT_GT(outcome.out.size(), end.size());
    EXPECT_EQ(outcome.out.substr(outcome.out.size() - end.size()), end);
}
} // namespace
} // namespace corvane
