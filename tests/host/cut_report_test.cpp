#include "host/cut_counts.h"
#include "host/cut_picture.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
TEST(CutCounts, TellNewCutsFromEarlierOnesByLabel)
{
    const CutCounts counts = CountCuts({0, 0, 1, 1, 1, 63, 64, 65}, {0, 64, 65, 65, 1, 127, 64, 65});
    EXPECT_EQ(counts.cut[0], 1u);
    EXPECT_EQ(counts.cut[1], 2u);
    EXPECT_EQ(counts.cut[63], 1u);
    EXPECT_EQ(counts.left[0], 1u);
    EXPECT_EQ(counts.left[1], 1u);
    EXPECT_EQ(counts.left[63], 0u);
    EXPECT_EQ(counts.cutBefore, 2u);
    EXPECT_EQ(counts.TotalCut(), 4u);
}

TEST(CutCounts, AVoxelOfATiltedStackIsSmaller)
{
    // 0.75 x 1.25 x 2.5 mm; the slices are 2.5 mm times the cosine of the tilt apart.
    EXPECT_NEAR(VoxelVolume(ObliqueGrid(4, 4, 4, 0)), 2.34375, 1e-12);
    EXPECT_NEAR(VoxelVolume(ObliqueGrid(4, 4, 4, 60)), 2.34375 / 2, 1e-12);
}

TEST(CutPicture, ReddensWhatIsCutAwayAndDrawsALineRoundTheRegion)
{
    // A region of 3 x 3 pixels in a picture of 5 x 5 that touches its lower right corner.
    DrawnRegion region = {{5, 5, 1, 1, {1, 0, 0}, {0, 1, 0}, {}}, std::vector<uint8_t>(25)};
    for (int row = 2; row < 5; ++row)
        for (int column = 2; column < 5; ++column)
            region.pixels[size_t(row * 5 + column)] = 1;
    for (const CutSide side : {CutSide::Inside, CutSide::Outside})
    {
        Picture picture = {5, 5, 1, 1, std::vector<uint8_t>(75, 100)};
        DrawRegion(picture, region, side);
        for (int row = 0; row < 5; ++row)
            for (int column = 0; column < 5; ++column)
            {
                const bool middle = row == 3 && column == 3, outside = row < 2 || column < 2;
                const bool red = side == CutSide::Inside ? middle : outside;
                const std::vector<uint8_t> pixel(picture.At(row, column), picture.At(row, column) + 3);
                const std::vector<uint8_t> expected = !middle && !outside ? std::vector<uint8_t>{255, 220, 60}
                                                      : red ? std::vector<uint8_t>{150, 76, 76} // 40 % of the way
                                                            : std::vector<uint8_t>{100, 100, 100};
                EXPECT_EQ(pixel, expected) << row << " " << column;
            }
    }
}
} // namespace
} // namespace corvane::host
