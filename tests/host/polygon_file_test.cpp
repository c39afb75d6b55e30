#include "host/polygon_file.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
using Corners = std::vector<std::vector<double>>;

std::vector<Corners> Read(const std::string& text)
{
    const ScratchFolder folder;
    WriteBytes(folder / "polygons", text);
    std::vector<Corners> polygons;
    for (const GivenPolygon& polygon : ReadPolygons(folder / "polygons"))
        polygons.push_back(polygon.corners);
    return polygons;
}

std::string Refusal(const std::string& text)
{
    return ErrorOf([&] { Read(text); });
}

const std::vector<Corners> kTwo = {{{1, 2}, {3, 4}, {5, 6}}, {{7, 8}, {9, 10}, {11, 12.5}}};

TEST(PolygonFile, ReadsLinesWithBlanksOrCommas)
{
    EXPECT_EQ(Read("1 2\n3 4\n5 6\n\n7 8\n9 10\n11 12.5\n"), kTwo);
    EXPECT_EQ(Read("# two of them\n1,2\r\n3, 4\r\n5,6 # the last\r\n\r\n\r\n7\t8\n# between\n9,10\n11,12.5"), kTwo);
    EXPECT_EQ(Read("1 2 3\n4 5 6\n7 8 9\n"), (std::vector<Corners>{{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}}));
}

TEST(PolygonFile, ReadsJson)
{
    EXPECT_EQ(Read(R"({"polygons": [[[1, 2], [3, 4], [5, 6]], [[7, 8], [9, 10], [11, 12.5]]]})"), kTwo);
    EXPECT_EQ(Read(" [[[1, 2], [3, 4], [5, 6]], [[7, 8], [9, 10], [11, 12.5]]]"), kTwo);
    EXPECT_EQ(Read("[[1, 2, 3], [4, 5, 6], [7, 8, 9]]"), (std::vector<Corners>{{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}}));
}

TEST(PolygonFile, SaysWhereItIsWrong)
{
    EXPECT_TRUE(Contains(Refusal("1 2\n3 x\n"), "line 2: a corner is two or three numbers, not '3 x'"));
    EXPECT_TRUE(Contains(Refusal("1 2\n3 4\n5 6\n\n\n1 2\n3 4\n"), "polygon from line 6: a polygon has three corners"));
    EXPECT_TRUE(Contains(Refusal("1 2\n3 4 5\n5 6\n"), "polygon from line 1: every corner"));
    EXPECT_TRUE(Contains(Refusal("[[[1, 2], [3, 4], [5, 6]], [[1, 2], [3, 4]]]"), "polygon 2: a polygon has three"));
    EXPECT_TRUE(Contains(Refusal("[[[1, 2], [3, \"a\"], [5, 6]]]"), "polygon 1: a corner is a list"));
    EXPECT_TRUE(Contains(Refusal("[5]"), "polygon 1: a polygon is a list of corners"));
    EXPECT_TRUE(Contains(Refusal("{\"polygon\": []}"), "\"polygons\""));
    EXPECT_TRUE(Contains(Refusal("[[1, 2], "), "neither JSON nor lines"));
    EXPECT_TRUE(Contains(Refusal("# nothing\n"), "holds no polygon"));
    EXPECT_TRUE(Contains(Refusal(""), "holds no polygon"));
    EXPECT_TRUE(Contains(Refusal("[]"), "holds no polygon"));
    EXPECT_TRUE(Contains(ErrorOf([] { ReadPolygons("/nowhere/polygons.txt"); }), "cannot be read"));
    EXPECT_TRUE(Contains(ErrorOf([] { ReadPolygons("/"); }), "cannot be read"));
}
} // namespace
} // namespace corvane::host
