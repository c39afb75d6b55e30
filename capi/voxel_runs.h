#ifndef CORVANE_CAPI_VOXEL_RUNS_H
#define CORVANE_CAPI_VOXEL_RUNS_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvane::capi
{
// A set of voxels, numbered x fastest, then y, then z, as runs: how many are left out, how many are in it, and so on. A
// number takes 7 bits of each of its bytes, low bits first. It is at least 1 (but for the first), and so takes at most
// as many bytes as it counts voxels: the whole is never longer than one byte per voxel and one more.
class VoxelRuns
{
public:
    // Adds voxels [first, end) behind all others; an empty range adds nothing. Throws what the allocator throws.
    void Append(uint64_t first, uint64_t end);

    // Ends the building: the last run is written down and spare memory given back.
    void Finish();

    uint64_t VoxelCount() const { return voxelCount_; }
    size_t Bytes() const { return numbers_.size(); }

    // Calls visit(first, end) for each run of a finished set, in order.
    template <class Visit>
    void ForEach(const Visit& visit) const
    {
        uint64_t voxel = 0;
        for (size_t place = 0; place < numbers_.size();)
        {
            const uint64_t first = voxel + NumberAt(place);
            voxel = first + NumberAt(place);
            visit(first, voxel);
        }
    }

private:
    void Write(uint64_t number);
    uint64_t NumberAt(size_t& place) const; // moves on to the next one

    std::vector<uint8_t> numbers_;
    uint64_t written_ = 0;                 // the end of the last run that was written down
    uint64_t openFirst_ = 0, openEnd_ = 0; // the run that may still grow; empty at first
    uint64_t voxelCount_ = 0;
};
} // namespace corvane::capi

#endif
