#include "host/error.h"

#include <gtest/gtest.h>

namespace corvane::host
{
namespace
{
std::string MessageOf(const std::string& text) { return Error(ErrorKind::Input, text).what(); }

TEST(Error, IsOneLineWhateverItQuotes)
{
    EXPECT_EQ(MessageOf("a file: no label; give one"), "a file: no label; give one");
    EXPECT_EQ(MessageOf("two\nlines\r and \x1b[2J a\x7f" + std::string(1, '\0') + "."), "two lines  and  [2J a  .");
    EXPECT_EQ(MessageOf("Sch\xc3\xa4"
                        "del"),
              "Sch\xc3\xa4"
              "del");
}

TEST(Error, LeavesOutTheMiddleOfAVeryLongText)
{
    EXPECT_EQ(MessageOf(std::string(2000, 'x')).size(), 2000u);
    const std::string message = MessageOf("file: begins " + std::string(100000, 'x') + "; do this");
    EXPECT_LT(message.size(), 2000u);
    EXPECT_TRUE(message.starts_with("file: begins x"));
    EXPECT_TRUE(message.ends_with("x; do this"));
}
} // namespace
} // namespace corvane::host
