#ifndef CORVANE_CAPI_CUT_HISTORY_H
#define CORVANE_CAPI_CUT_HISTORY_H

#include "voxel_runs.h"

#include <vector>

namespace corvane::capi
{
// Steps that can be taken back and taken again. A step is the set of voxels whose cut bit it turned over, so that doing
// it, undoing it and doing it again are the same operation. Runs stay in memory as long as they fit the limit.
class CutHistory
{
public:
    // Makes room for a step that is about to be done, so that nothing fails between doing and recording it. Throws what
    // the allocator throws, with nothing changed.
    void Reserve();

    // Records a step that was done; what was undone before it is forgotten, and of what does not fit the oldest steps.
    void Record(VoxelRuns&& step) noexcept;

    // The step to undo or to redo next, or null. `Undone` and `Redone` say that it was turned over.
    const VoxelRuns* ToUndo() const { return done_ > 0 ? &steps_[done_ - 1] : nullptr; }
    const VoxelRuns* ToRedo() const { return done_ < steps_.size() ? &steps_[done_] : nullptr; }
    void Undone() { --done_; }
    void Redone() { ++done_; }

    // Of what does not fit, steps that were undone are forgotten first, newest first, then the oldest.
    void SetLimit(size_t bytes);
    void Clear();

    size_t UndoableCount() const { return done_; }
    size_t RedoableCount() const { return steps_.size() - done_; }
    size_t Bytes() const { return bytes_; }

private:
    void Forget(size_t step) noexcept;
    void ForgetUndone() noexcept;
    void FitLimit() noexcept;

    std::vector<VoxelRuns> steps_; // oldest first; the first done_ are done, the others undone
    size_t done_ = 0;
    size_t bytes_ = 0;
    size_t limit_ = size_t(1) << 28;
};
} // namespace corvane::capi

#endif
