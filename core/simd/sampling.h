#ifndef CORVANE_CORE_SIMD_SAMPLING_H
#define CORVANE_CORE_SIMD_SAMPLING_H

#include "core/views.h"
#include "pack.h"

namespace corvane::KERNEL_ISA
{
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the lower half of a pair is the first voxel");

// Two neighbours in x as one 32-bit number.
inline int32_t LoadPair(const int16_t* voxel)
{
    int32_t pair;
    memcpy(&pair, voxel, sizeof pair);
    return pair;
}

inline FloatPack FirstOfPair(IntPack pairs) { return ToFloat((pairs << 16) >> 16); }
inline FloatPack SecondOfPair(IntPack pairs) { return ToFloat(pairs >> 16); }

// The eight voxels around places, as pairs of neighbours in x: rows j and j + 1 of slices k and k + 1.
struct CellVoxels
{
    IntPack near0, near1, far0, far1;
};

// i, j, k with all eight voxels inside the volume, whose slices hold fewer than 2^31 voxels (not tested here).
inline CellVoxels LoadCell(const core::VolumeView& volume, IntPack i, IntPack j, IntPack k)
{
    const IntPack offset = j * volume.nx + i;
    CellVoxels cell;
    // One lane at a time because each lane has its own slice pointers; hardware gathers measured no faster.
    for (int lane = 0; lane < kLanes; ++lane)
    {
        const int16_t* nearRow = volume.slices[k[lane]] + offset[lane];
        const int16_t* farRow = volume.slices[k[lane] + 1] + offset[lane];
        cell.near0[lane] = LoadPair(nearRow);
        cell.near1[lane] = LoadPair(nearRow + volume.nx);
        cell.far0[lane] = LoadPair(farRow);
        cell.far1[lane] = LoadPair(farRow + volume.nx);
    }
    return cell;
}

// Stored value inside a cell, at fractions u, v, w along x, y, z: interpolated along z, then x, then y.
inline FloatPack Interpolate(const CellVoxels& cell, FloatPack u, FloatPack v, FloatPack w)
{
    const FloatPack row0 = Lerp(Lerp(FirstOfPair(cell.near0), FirstOfPair(cell.far0), w),
                                Lerp(SecondOfPair(cell.near0), SecondOfPair(cell.far0), w), u);
    const FloatPack row1 = Lerp(Lerp(FirstOfPair(cell.near1), FirstOfPair(cell.far1), w),
                                Lerp(SecondOfPair(cell.near1), SecondOfPair(cell.far1), w), u);
    return Lerp(row0, row1, v);
}

// Stored value between voxels, trilinear. x, y, z in voxel-index space, as for LoadCell.
inline FloatPack SampleTrilinear(const core::VolumeView& volume, FloatPack x, FloatPack y, FloatPack z)
{
    const IntPack i = ToInt(x), j = ToInt(y), k = ToInt(z);
    return Interpolate(LoadCell(volume, i, j, k), x - ToFloat(i), y - ToFloat(j), z - ToFloat(k));
}
} // namespace corvane::KERNEL_ISA

#endif
