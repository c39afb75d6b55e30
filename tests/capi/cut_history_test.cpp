#include "capi/cut_history.h"

#include <gtest/gtest.h>

namespace
{
using namespace corvane::capi;

VoxelRuns StepOf(uint64_t voxel)
{
    VoxelRuns step;
    step.Append(voxel, voxel + 1);
    step.Finish();
    return step;
}

void Do(CutHistory& history, uint64_t voxel)
{
    history.Reserve();
    history.Record(StepOf(voxel));
}

uint64_t VoxelOf(const VoxelRuns* step)
{
    uint64_t voxel = UINT64_MAX;
    if (step)
        step->ForEach([&](uint64_t first, uint64_t) { voxel = first; });
    return voxel;
}

TEST(CutHistory, StepsBackAndForth)
{
    CutHistory history;
    EXPECT_EQ(history.ToUndo(), nullptr);
    EXPECT_EQ(history.ToRedo(), nullptr);
    for (uint64_t voxel = 1; voxel <= 3; ++voxel)
        Do(history, voxel);
    EXPECT_EQ(VoxelOf(history.ToUndo()), 3u);
    history.Undone();
    history.Undone();
    EXPECT_EQ(VoxelOf(history.ToUndo()), 1u);
    EXPECT_EQ(VoxelOf(history.ToRedo()), 2u);
    history.Redone();
    EXPECT_EQ(VoxelOf(history.ToRedo()), 3u);
    Do(history, 9); // forgets what was undone
    EXPECT_EQ(history.ToRedo(), nullptr);
    EXPECT_EQ(history.UndoableCount(), 3u);
}

TEST(CutHistory, ForgetsUndoneStepsFromTheNewestOnAndThenTheOldest)
{
    CutHistory history;
    for (uint64_t voxel = 1; voxel <= 4; ++voxel)
        Do(history, voxel);
    const size_t bytesOfOne = history.Bytes() / 4;
    history.Undone();
    history.Undone();
    history.SetLimit(3 * bytesOfOne); // step 4 goes
    EXPECT_EQ(VoxelOf(history.ToRedo()), 3u);
    EXPECT_EQ(history.RedoableCount(), 1u);
    history.SetLimit(bytesOfOne); // steps 3 and 1 go
    EXPECT_EQ(history.RedoableCount(), 0u);
    EXPECT_EQ(VoxelOf(history.ToUndo()), 2u);
    EXPECT_EQ(history.Bytes(), bytesOfOne);
    history.SetLimit(bytesOfOne - 1);
    EXPECT_EQ(history.ToUndo(), nullptr);
    EXPECT_EQ(history.Bytes(), 0u);
    Do(history, 5); // does not fit
    EXPECT_EQ(history.ToUndo(), nullptr);
}
} // namespace
