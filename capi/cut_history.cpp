#include "cut_history.h"

#include <utility>

namespace corvane::capi
{
namespace
{
size_t BytesOf(const VoxelRuns& step) { return sizeof(VoxelRuns) + step.Bytes(); }
} // namespace

void CutHistory::Reserve() { steps_.reserve(done_ + 1); }

void CutHistory::Record(VoxelRuns&& step) noexcept
{
    ForgetUndone();
    bytes_ += BytesOf(step);
    steps_.push_back(std::move(step)); // there is room
    ++done_;
    FitLimit();
}

void CutHistory::SetLimit(size_t bytes)
{
    limit_ = bytes;
    FitLimit();
}

void CutHistory::Clear()
{
    steps_ = {};
    done_ = 0;
    bytes_ = 0;
}

void CutHistory::Forget(size_t step) noexcept
{
    bytes_ -= BytesOf(steps_[step]);
    steps_.erase(steps_.begin() + std::ptrdiff_t(step));
    if (step < done_)
        --done_;
}

void CutHistory::ForgetUndone() noexcept
{
    while (steps_.size() > done_)
        Forget(steps_.size() - 1);
}

// A step that was undone can only be done again after those before it, so these go from the newest on.
void CutHistory::FitLimit() noexcept
{
    while (bytes_ > limit_)
        Forget(steps_.size() > done_ ? steps_.size() - 1 : 0);
}
} // namespace corvane::capi
