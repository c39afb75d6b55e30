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

// Where voxels of the slices k + distance lie, a pointer for each lane. Loads are one lane at a time: hardware gathers
// measured slower.
struct VoxelPointers
{
    const int16_t* voxels[kLanes];

    VoxelPointers(const core::VolumeView& volume, IntPack i, IntPack j, IntPack k, int distance)
    {
        const IntPack inSlice = j * volume.nx + i;
        if (volume.sliceStride != 0)
        {
            const IntPack offset = k * volume.sliceStride + inSlice;
            const int16_t* base = volume.slices[0] + int64_t(distance) * volume.sliceStride;
            for (int lane = 0; lane < kLanes; ++lane)
                voxels[lane] = base + offset[lane];
            return;
        }
        for (int lane = 0; lane < kLanes; ++lane)
            voxels[lane] = volume.slices[k[lane] + distance] + inSlice[lane];
    }

    // The pairs that lie so many voxels further on.
    IntPack PairsAt(int64_t offset) const
    {
        IntPack pairs;
        for (int lane = 0; lane < kLanes; ++lane)
            pairs[lane] = LoadPair(voxels[lane] + offset);
        return pairs;
    }

    // The four neighbours in x from so many voxels further on, as two pairs.
    void TwoPairsAt(int64_t offset, IntPack& first, IntPack& second) const
    {
        const auto load = [&](int lane)
        {
            int64_t four;
            memcpy(&four, voxels[lane] + offset, sizeof four);
            return four;
        };
#if KERNEL_LANES == 8
        const IntPack a = IntPack(LongPack{load(0), load(1), load(4), load(5)});
        const IntPack b = IntPack(LongPack{load(2), load(3), load(6), load(7)});
        first = __builtin_shufflevector(a, b, 0, 2, 8, 10, 4, 6, 12, 14);
        second = __builtin_shufflevector(a, b, 1, 3, 9, 11, 5, 7, 13, 15);
#else
        const IntPack a = IntPack(LongPack{load(0), load(1)}), b = IntPack(LongPack{load(2), load(3)});
        first = __builtin_shufflevector(a, b, 0, 2, 4, 6);
        second = __builtin_shufflevector(a, b, 1, 3, 5, 7);
#endif
    }
};

// The eight voxels around places, as pairs of neighbours in x: rows j and j + 1 of slices k and k + 1.
struct CellVoxels
{
    IntPack near0, near1, far0, far1;
};

// i, j, k with all eight voxels inside the volume, whose slices hold fewer than 2^31 voxels (not tested here).
inline CellVoxels LoadCell(const core::VolumeView& volume, IntPack i, IntPack j, IntPack k)
{
    const VoxelPointers near(volume, i, j, k, 0);
    const int64_t nx = volume.nx, stride = volume.sliceStride;
    if (stride != 0)
        return {near.PairsAt(0), near.PairsAt(nx), near.PairsAt(stride), near.PairsAt(stride + nx)};
    const VoxelPointers far(volume, i, j, k, 1);
    return {near.PairsAt(0), near.PairsAt(nx), far.PairsAt(0), far.PairsAt(nx)};
}

// Tells the caches that the cell around a voxel of the volume will be loaded soon. Inlined early, because GCC takes a
// call of a function that only prefetches for one without effect and drops it.
__attribute__((always_inline)) inline void PrefetchCell(const core::VolumeView& volume, int i, int j, int k)
{
    if (j + 1 >= volume.ny || k + 1 >= volume.nz)
        return;
    const int64_t offset = int64_t(j) * volume.nx + i;
    const int16_t *near = volume.slices[k] + offset, *far = volume.slices[k + 1] + offset;
    __builtin_prefetch(near);
    __builtin_prefetch(near + volume.nx);
    __builtin_prefetch(far);
    __builtin_prefetch(far + volume.nx);
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
