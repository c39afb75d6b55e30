#include "cutting.h"

#include "core/fan_out.h"
#include "core/vec3.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

namespace corvane::engine3d
{
using namespace core;

namespace
{
constexpr uint8_t kCutAway = 64;
constexpr uint8_t kLabelBits = 63;
constexpr int32_t kRun = 256;                       // voxels whose pixels are found in one go
constexpr int64_t kWorthThreads = int64_t(1) << 18; // voxels

// Whether a voxel can be selected, by label byte. A label without an entry is not visible.
std::array<uint8_t, 256> Selectable(const VolumePalette& tables)
{
    std::array<uint8_t, 256> selectable = {};
    for (int byte = 0; byte < 256; ++byte)
    {
        const VolumePaletteEntry* const entry = tables.entries[byte & kLabelBits];
        selectable[size_t(byte)] = entry && entry->visible && !(byte & kCutAway);
    }
    return selectable;
}

// The numbers below which an index truncates to less than a count, which single precision may not hold itself. No
// number from -1 on does for a count of 0.
float LimitOf(uint32_t count)
{
    if (count == 0)
        return -1.0f;
    const float limit = float(count);
    return double(limit) < double(count) ? std::nextafter(limit, INFINITY) : limit;
}

// Voxels of one row of the volume, relative to the region's first pixel: alongRow holds what their index in the row
// adds, the other two are the same for the whole row. Sums run in the order of these fields.
struct VoxelRow
{
    const float *alongRowX, *alongRowY, *alongRowZ;
    Vec3f alongColumn, alongSlices;
};

class Projector
{
public:
    explicit Projector(const KsImageMark& region)
        : row_(ToFloat(VecOf(region.param.rowDirection))), column_(ToFloat(VecOf(region.param.columnDirection))),
          firstSpacing_(float(region.param.rowSpacing)), secondSpacing_(float(region.param.columnSpacing)),
          columns_(LimitOf(region.param.columns)), rows_(LimitOf(region.param.rows))
    {
    }

    // The pixels of voxels [first, first + count) of a row; column -1 outside the region. Truncation counts what lies
    // less than one pixel before the first as the first. A plain loop: compilers vectorise it.
    void Project(const VoxelRow& voxels, int32_t first, int32_t count, int32_t* columns, int32_t* rows) const
    {
        for (int32_t n = 0; n < count; ++n)
        {
            const float x = voxels.alongRowX[first + n] + voxels.alongColumn.x + voxels.alongSlices.x;
            const float y = voxels.alongRowY[first + n] + voxels.alongColumn.y + voxels.alongSlices.y;
            const float z = voxels.alongRowZ[first + n] + voxels.alongColumn.z + voxels.alongSlices.z;
            const float u = (x * row_.x + y * row_.y + z * row_.z) / firstSpacing_;
            const float v = (x * column_.x + y * column_.y + z * column_.z) / secondSpacing_;
            const bool inside = (u > -1.0f) & (u < columns_) & (v > -1.0f) & (v < rows_);
            columns[n] = int32_t(inside ? u : -1.0f);
            rows[n] = int32_t(inside ? v : 0.0f);
        }
    }

private:
    Vec3f row_, column_;
    float firstSpacing_, secondSpacing_;
    float columns_, rows_;
};
} // namespace

void SelectCovered(const KsVolumeData& volume, const KsVolumeMark& labels, const VolumePalette& tables,
                   const KsImageMark& region, uint8_t value, const KsVolumeMark& selection)
{
    const int32_t sizeX = volume.sizeX, sizeY = volume.sizeY;
    const Vec3f rowDirection = VecOf(volume.rowDirection), columnDirection = VecOf(volume.columnDirection);
    const Vec3f sliceDirection = VecOf(volume.sliceDirection);
    const Vec3f offset = VecOf(volume.origin) - ToFloat(VecOf(region.param.position));
    const std::array<uint8_t, 256> selectable = Selectable(tables);
    const Projector projector(region);

    // The column index goes with the spacing of y and the row index with that of x. Hosts count on it.
    std::vector<float> alongRow(3 * size_t(sizeX));
    float* const alongRowX = alongRow.data();
    float* const alongRowY = alongRowX + sizeX;
    float* const alongRowZ = alongRowY + sizeX;
    for (int32_t i = 0; i < sizeX; ++i)
    {
        const Vec3f place = offset + float(i) * volume.spacing[1] * rowDirection;
        alongRowX[i] = place.x;
        alongRowY[i] = place.y;
        alongRowZ[i] = place.z;
    }

    const auto selectRows = [&](int64_t firstRow, int64_t endRow) noexcept
    {
        int32_t columns[kRun], rows[kRun];
        for (int64_t row = firstRow; row < endRow; ++row)
        {
            const int64_t k = row / sizeY, j = row % sizeY;
            const VoxelRow voxels = {alongRowX, alongRowY, alongRowZ, float(j) * volume.spacing[0] * columnDirection,
                                     float(k) * volume.spacing[2] * sliceDirection};
            const uint8_t* const label = labels.slices[k] + j * sizeX;
            uint8_t* const selected = selection.slices[k] + j * sizeX;
            std::memset(selected, 0, size_t(sizeX));
            for (int32_t first = 0; first < sizeX; first += kRun)
            {
                const int32_t count = std::min(kRun, sizeX - first);
                projector.Project(voxels, first, count, columns, rows);
                for (int32_t n = 0; n < count; ++n)
                    if (columns[n] >= 0 && region.labels[int64_t(rows[n]) * region.param.columns + columns[n]] &&
                        selectable[label[first + n]])
                        selected[first + n] = value;
            }
        }
    };
    const int64_t rowCount = int64_t(volume.sizeZ) * sizeY;
    if (rowCount * sizeX < kWorthThreads)
        selectRows(0, rowCount);
    else
        FanOut(rowCount, selectRows);
}

void CutSelected(const KsVolumeMark& selection, const KsVolumeMark& labels)
{
    const size_t sliceSize = size_t(labels.sizeX) * labels.sizeY;
    for (uint32_t k = 0; k < labels.sizeZ; ++k)
        if (selection.slices[k] && labels.slices[k])
            for (size_t n = 0; n < sliceSize; ++n)
                if (selection.slices[k][n])
                    labels.slices[k][n] |= kCutAway;
}

bool SameSizes(const KsVolumeMark& a, const KsVolumeMark& b)
{
    return a.sizeX == b.sizeX && a.sizeY == b.sizeY && a.sizeZ == b.sizeZ;
}

bool FitsVolume(const KsVolumeMark& mark, const KsVolumeData& volume)
{
    return mark.slices && mark.sizeX == uint32_t(volume.sizeX) && mark.sizeY == uint32_t(volume.sizeY) &&
           mark.sizeZ == uint32_t(volume.sizeZ) &&
           std::all_of(mark.slices, mark.slices + mark.sizeZ, [](const uint8_t* slice) { return slice; });
}
} // namespace corvane::engine3d
