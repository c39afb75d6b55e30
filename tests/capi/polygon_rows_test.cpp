#include "capi/polygon_rows.h"

#include <gtest/gtest.h>

namespace
{
using namespace corvane::capi;

// Voxels of 1 mm under pixels of 1 mm: voxel (i, j, k) lies under pixel (column i, row j).
constexpr KsVolumeData kVolume = {nullptr, 10, 8, 3, {1, 1, 1}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
constexpr PnImageParam kPlane = {8, 10, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, -1}};

using Ranges = std::vector<std::pair<int, int>>;

Ranges RangesOf(PolygonRows& rows, int j, int k)
{
    Ranges ranges;
    for (const VoxelRange& range : rows.InsideOf(j, k))
        ranges.push_back({range.first, range.end});
    return ranges;
}

TEST(PolygonRows, CutARowOfVoxelsWhereItCrossesTheOutline)
{
    const double square[] = {1.5, 1.5, 6.5, 1.5, 6.5, 4.5, 1.5, 4.5};
    PolygonRows rows(kVolume, kPlane, square, 4);
    EXPECT_EQ(RangesOf(rows, 1, 0), Ranges());
    EXPECT_EQ(RangesOf(rows, 2, 0), (Ranges{{2, 7}}));
    EXPECT_EQ(RangesOf(rows, 4, 2), (Ranges{{2, 7}}));
    EXPECT_EQ(RangesOf(rows, 5, 2), Ranges());
}

TEST(PolygonRows, LeaveOutWhatCrossingOutlinesEncloseTwice)
{
    const double star[] = {-1, 2.5, 11, 2.5, 11, 4.5, 4.5, 4.5, 4.5, 1.5, 6.5, 1.5, 6.5, 5.5, -1, 5.5};
    PolygonRows rows(kVolume, kPlane, star, 8);
    EXPECT_EQ(RangesOf(rows, 2, 0), (Ranges{{5, 7}}));          // the tongue above
    EXPECT_EQ(RangesOf(rows, 3, 0), (Ranges{{0, 5}, {7, 10}})); // under the tongue the band is enclosed twice
    EXPECT_EQ(RangesOf(rows, 5, 0), (Ranges{{0, 7}}));
}

TEST(PolygonRows, CountACornerOnARowOfVoxelsOnce)
{
    const double diamond[] = {4.5, 2, 7.5, 4, 4.5, 6, 1.5, 4};
    PolygonRows rows(kVolume, kPlane, diamond, 4);
    EXPECT_EQ(RangesOf(rows, 3, 0), (Ranges{{3, 6}})); // from 3 on, but before 6: on the outline one end counts
    EXPECT_EQ(RangesOf(rows, 4, 0), (Ranges{{2, 8}})); // through two corners: 1.5 to 7.5
    for (const int j : {1, 7})
        EXPECT_EQ(RangesOf(rows, j, 0), Ranges());
}

TEST(PolygonRows, TakeOrLeaveARowThatIsSeenEndOn)
{
    const PnImageParam fromTheSide = {3, 8, 1, 1, {0, 1, 0}, {0, 0, 1}, {-5, 0, 0}};
    const double square[] = {1.5, 0.5, 5.5, 0.5, 5.5, 1.5, 1.5, 1.5};
    PolygonRows rows(kVolume, fromTheSide, square, 4);
    EXPECT_EQ(RangesOf(rows, 2, 1), (Ranges{{0, 10}}));
    EXPECT_EQ(RangesOf(rows, 5, 1), (Ranges{{0, 10}}));
    EXPECT_EQ(RangesOf(rows, 6, 1), Ranges());
    EXPECT_EQ(RangesOf(rows, 2, 0), Ranges());
    EXPECT_EQ(RangesOf(rows, 2, 2), Ranges());
}
} // namespace
