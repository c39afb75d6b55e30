#include "host/label_colours.h"
#include "read_testing.h"

#include <set>

namespace corvane::host
{
namespace
{
std::string RefusalOf(const std::string& table)
{
    const ScratchFolder folder;
    WriteBytes(folder / "table.txt", table);
    return ErrorOf([&] { ReadLabelColours(folder / "table.txt"); });
}

TEST(LabelColours, OfThemselvesDifferFromLabelToLabelAndHideLabelZero)
{
    const LabelColours colours = DefaultLabelColours();
    EXPECT_EQ(colours[0].opacity, 0);
    std::set<int> seen;
    for (size_t label = 1; label < colours.size(); ++label)
    {
        EXPECT_EQ(colours[label].opacity, 1);
        EXPECT_TRUE(seen.insert(colours[label].red << 16 | colours[label].green << 8 | colours[label].blue).second);
    }
}

TEST(LabelColours, AreReadFromAColourTable)
{
    const ScratchFolder folder;
    WriteBytes(folder / "organs.ctbl", "# Color table file organs.ctbl\n"
                                       "# 4 values\n"
                                       "0 background 0 0 0 0\n"
                                       "5 left_kidney 185 102 83 255\r\n"
                                       "\n"
                                       "12 vessel 255 0 7 51\n"
                                       "300 elsewhere 1 2 3 255\n");
    const LabelColours colours = ReadLabelColours(folder / "organs.ctbl");
    EXPECT_EQ(colours[0].opacity, 0);
    EXPECT_EQ(colours[1].opacity, 0); // not named
    EXPECT_EQ(colours[5].name, "left kidney");
    EXPECT_EQ(colours[5].red, 185);
    EXPECT_EQ(colours[5].green, 102);
    EXPECT_EQ(colours[5].blue, 83);
    EXPECT_EQ(colours[5].opacity, 1);
    EXPECT_EQ(colours[12].blue, 7);
    EXPECT_DOUBLE_EQ(colours[12].opacity, 0.2);
}

TEST(LabelColours, AreReadFromLabelDescriptions)
{
    const ScratchFolder folder;
    WriteBytes(folder / "labels.txt", "################\n"
                                      "# IDX -R- -G- -B- -A-- VIS MSH LABEL\n"
                                      "################\n"
                                      "    0     0    0    0        0  0  0    \"Clear Label\"\n"
                                      "    1   255    0   30        1  1  1    \"Left lung\"\n"
                                      "    2     0  255    0      0.5  1  0    \"Heart\"\n"
                                      "    3     0    0  255        1  0  0    \"Hidden one\"\n");
    const LabelColours colours = ReadLabelColours(folder / "labels.txt");
    EXPECT_EQ(colours[1].name, "Left lung");
    EXPECT_EQ(colours[1].red, 255);
    EXPECT_EQ(colours[1].blue, 30);
    EXPECT_EQ(colours[1].opacity, 1);
    EXPECT_EQ(colours[2].opacity, 0.5);
    EXPECT_EQ(colours[3].opacity, 0);
}

TEST(LabelColours, NamesAreOneLineOfText)
{
    const ScratchFolder folder;
    WriteBytes(folder / "labels.txt", "1 255 0 30 1 1 1 \"Left\x1b[2J\tlung\"\n");
    EXPECT_EQ(ReadLabelColours(folder / "labels.txt")[1].name, "Left [2J lung");
}

TEST(LabelColours, RefusalsNameTheLine)
{
    EXPECT_TRUE(Contains(RefusalOf("# fine\n1 liver 10 20 30 255\n2 spleen 10 20 300 255\n"), "line 3: blue"));
    EXPECT_TRUE(Contains(RefusalOf("1 liver 10 20 30\n"), "line 1: a line is"));
    EXPECT_TRUE(Contains(RefusalOf("one liver 10 20 30 255\n"), "line 1: a label is a whole number"));
    EXPECT_TRUE(Contains(RefusalOf("-1 liver 10 20 30 255\n"), "line 1: a label is 0 or more"));
    EXPECT_TRUE(Contains(RefusalOf("1 255 0 0 2 1 1 \"too opaque\"\n"), "line 1: opacity"));
    EXPECT_TRUE(Contains(RefusalOf("# only a comment\n"), "names no label"));
    EXPECT_TRUE(Contains(ErrorOf([] { ReadLabelColours("absent.ctbl"); }), "absent.ctbl: cannot be read"));
    EXPECT_TRUE(Contains(RefusalOf(std::string("\x89PNG\r\n\x1a\n\0\0\0", 11)), "line 1"));
    EXPECT_TRUE(Contains(ErrorOf([] { ReadLabelColours("/"); }), "/: cannot be read, it is a folder"));
}
} // namespace
} // namespace corvane::host
