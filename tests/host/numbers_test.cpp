#include "host/numbers.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
TEST(Numbers, AreReadWholeOrNotAtAll)
{
    EXPECT_EQ(RequireNumber("-12.5", "x"), -12.5);
    EXPECT_EQ(RequireNumber("+3", "x"), 3);
    EXPECT_EQ(RequireInteger("-7", "x"), -7);
    for (const char* bad : {"", "1,5", "12mm", "nan", "inf", "1e999", "--1"})
        EXPECT_TRUE(Contains(ErrorOf([&] { RequireNumber(bad, "--step takes mm"); }, ErrorKind::Usage),
                             "--step takes mm, not '" + std::string(bad) + "'"));
    for (const char* bad : {"", "1.5", "7x", "99999999999"})
        EXPECT_TRUE(Contains(ErrorOf([&] { RequireInteger(bad, "a count"); }, ErrorKind::Usage), "a count, not"));
}

TEST(Numbers, AListHasExactlyAsManyAsAreWanted)
{
    EXPECT_EQ(RequireNumbers("1,-2,3.5", ',', 3, "x"), (std::vector<double>{1, -2, 3.5}));
    for (const char* bad : {"1,2", "1,2,3,4", "1,,3", "1;2;3", ""})
        EXPECT_TRUE(Contains(ErrorOf([&] { RequireNumbers(bad, ',', 3, "X,Y,Z"); }, ErrorKind::Usage), "X,Y,Z, not"));
}

TEST(Numbers, ExactTextReadsBackAsTheSameNumber)
{
    for (const double value : {0.1, 1.0 / 3, -1024.0, 1.07421875, 1e-300})
        EXPECT_EQ(RequireNumber(ExactNumber(value), "x"), value);
    EXPECT_EQ(ExactNumber(0.1), "0.1");
}

TEST(Numbers, SplittingKeepsEmptyPieces)
{
    EXPECT_EQ(Split("a::b", ':'), (std::vector<std::string>{"a", "", "b"}));
    EXPECT_EQ(Split("", ':'), std::vector<std::string>{""});
}
} // namespace
} // namespace corvane::host
