#include "cut_counts.h"

#include <cmath>
#include <numeric>

#include "label_byte.h"

namespace corvane::host
{
size_t CutCounts::TotalCut() const { return std::accumulate(cut.begin(), cut.end(), size_t(0)); }

CutCounts CountCuts(const std::vector<uint8_t>& before, const std::vector<uint8_t>& after)
{
    CutCounts counts;
    for (size_t voxel = 0; voxel < after.size(); ++voxel)
    {
        const size_t label = after[voxel] & kLabelBits;
        if (before[voxel] & kCutBit)
            ++counts.cutBefore;
        else if (after[voxel] & kCutBit)
            ++counts.cut[label];
        else
            ++counts.left[label];
    }
    return counts;
}

double VoxelVolume(const Grid& grid)
{
    const Vec3 normal = Cross(grid.rowDirection, grid.columnDirection);
    return grid.spacing.x * grid.spacing.y * grid.spacing.z * std::fabs(Dot(normal, grid.sliceDirection));
}
} // namespace corvane::host
