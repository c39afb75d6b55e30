#include "hidden_labels.h"

#include <algorithm>

#include "label_byte.h"

namespace corvane::host
{
namespace
{
// Widens the marked voxels of one line by `margin` in both directions.
//   stride  from one voxel of the line to the next
void WidenLine(std::vector<uint8_t>& marks, size_t start, size_t stride, int length, int margin)
{
    std::vector<uint8_t> line(static_cast<size_t>(length));
    for (int n = 0; n < length; ++n)
        line[size_t(n)] = marks[start + size_t(n) * stride];
    for (int n = 0; n < length; ++n)
        if (line[size_t(n)])
            for (int near = std::max(0, n - margin); near <= std::min(length - 1, n + margin); ++near)
                marks[start + size_t(near) * stride] = 1;
}

// One axis after the other makes a box of each mark.
void Widen(std::vector<uint8_t>& marks, const Grid& grid, int margin)
{
    const size_t row = size_t(grid.sizeX), slice = grid.VoxelsPerSlice();
    for (size_t start = 0; start < marks.size(); start += row)
        WidenLine(marks, start, 1, grid.sizeX, margin);
    for (size_t start = 0; start < marks.size(); start += slice)
        for (size_t i = 0; i < row; ++i)
            WidenLine(marks, start + i, row, grid.sizeY, margin);
    for (size_t start = 0; start < slice; ++start)
        WidenLine(marks, start, slice, grid.sizeZ, margin);
}
} // namespace

void HideLabels(Volume& volume, const std::set<int>& labels, int margin)
{
    if (labels.empty() || volume.labels.empty())
        return;
    std::vector<uint8_t> marks(volume.labels.size());
    std::transform(volume.labels.begin(), volume.labels.end(), marks.begin(),
                   [&](uint8_t label) { return uint8_t(labels.count(label)); });
    if (margin > 0)
        Widen(marks, volume.grid, margin);
    for (size_t voxel = 0; voxel < marks.size(); ++voxel)
        if (marks[voxel])
            volume.labels[voxel] |= kCutBit;
}
} // namespace corvane::host
