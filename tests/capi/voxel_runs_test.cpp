#include "capi/voxel_runs.h"
#include "tests/core/random.h"

#include <gtest/gtest.h>

namespace
{
using namespace corvane::capi;
using corvane::tests::Random;
using Range = std::pair<uint64_t, uint64_t>;

std::vector<Range> RangesOf(const VoxelRuns& runs)
{
    std::vector<Range> ranges;
    runs.ForEach([&](uint64_t first, uint64_t end) { ranges.push_back({first, end}); });
    return ranges;
}

VoxelRuns RunsOf(const std::vector<Range>& ranges)
{
    VoxelRuns runs;
    for (const auto& [first, end] : ranges)
        runs.Append(first, end);
    runs.Finish();
    return runs;
}

TEST(VoxelRuns, GiveBackWhatWasAppended)
{
    const uint64_t far = uint64_t(1) << 40;
    for (const std::vector<Range>& ranges : {std::vector<Range>{},
                                             {{0, 1}},
                                             {{5, 6}},
                                             {{0, 127}, {255, 400}},
                                             {{128, 16384}, {40000, 40001}},
                                             {{far, 2 * far}}})
        EXPECT_EQ(RangesOf(RunsOf(ranges)), ranges);
}

TEST(VoxelRuns, JoinRangesThatTouchAndLeaveOutEmptyOnes)
{
    const VoxelRuns runs = RunsOf({{0, 3}, {3, 7}, {8, 8}, {9, 10}, {10, 12}});
    EXPECT_EQ(RangesOf(runs), (std::vector<Range>{{0, 7}, {9, 12}}));
    EXPECT_EQ(runs.VoxelCount(), 10u);
    EXPECT_EQ(runs.Bytes(), 4u); // 0, 7, 2, 3
}

TEST(VoxelRuns, NeedAtMostOneBytePerVoxelAndOneMore)
{
    VoxelRuns everyOther;
    for (uint64_t voxel = 0; voxel < 1000; voxel += 2)
        everyOther.Append(voxel, voxel + 1);
    everyOther.Finish();
    EXPECT_LE(everyOther.Bytes(), 1001u);

    Random random(11);
    for (int turn = 0; turn < 50; ++turn)
    {
        std::vector<Range> ranges;
        uint64_t voxel = 0, selected = 0;
        for (int range = 0; range < 40; ++range)
        {
            const uint64_t first = voxel + uint64_t(random.Between(1, turn % 2 ? 3 : 30000));
            voxel = first + uint64_t(random.Between(1, turn % 3 ? 3 : 30000));
            ranges.push_back({first, voxel});
            selected += voxel - first;
        }
        const VoxelRuns runs = RunsOf(ranges);
        EXPECT_EQ(RangesOf(runs), ranges);
        EXPECT_EQ(runs.VoxelCount(), selected);
        EXPECT_LE(runs.Bytes(), voxel + 1);
    }
}
} // namespace
