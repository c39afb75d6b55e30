#include "voxel_runs.h"

#include <cassert>

namespace corvane::capi
{
void VoxelRuns::Append(uint64_t first, uint64_t end)
{
    assert(first >= openEnd_);
    if (first >= end)
        return;
    voxelCount_ += end - first;
    if (first == openEnd_ && openFirst_ < openEnd_)
    {
        openEnd_ = end;
        return;
    }
    Finish();
    openFirst_ = first;
    openEnd_ = end;
}

void VoxelRuns::Finish()
{
    if (openFirst_ == openEnd_)
        return;
    Write(openFirst_ - written_);
    Write(openEnd_ - openFirst_);
    written_ = openFirst_ = openEnd_;
}

void VoxelRuns::Write(uint64_t number)
{
    for (; number > 127; number >>= 7)
        numbers_.push_back(uint8_t(128 | (number & 127)));
    numbers_.push_back(uint8_t(number));
}

uint64_t VoxelRuns::NumberAt(size_t& place) const
{
    uint64_t number = 0;
    for (int shift = 0;; shift += 7)
    {
        const uint8_t byte = numbers_[place++];
        number |= uint64_t(byte & 127) << shift;
        if (byte < 128)
            return number;
    }
}
} // namespace corvane::capi
