#ifndef CORVANE_HOST_CUT_COUNTS_H
#define CORVANE_HOST_CUT_COUNTS_H

#include "volume.h"

#include <array>

namespace corvane::host
{
// What a cut took away.
struct CutCounts
{
    std::array<size_t, 64> cut = {};  // voxels of each label that were cut away this time
    std::array<size_t, 64> left = {}; // and that are still there
    size_t cutBefore = 0;             // voxels of any label that were cut away earlier

    size_t TotalCut() const;
};

// Compares a volume's label bytes from before a cut with those from after it.
CutCounts CountCuts(const std::vector<uint8_t>& before, const std::vector<uint8_t>& after);

// Of one voxel, mm3; less than the product of the spacings where the slices lean.
double VoxelVolume(const Grid& grid);
} // namespace corvane::host

#endif
