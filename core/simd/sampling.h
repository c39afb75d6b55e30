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

// Stored value between voxels, trilinear along z, then x, then y. x, y, z in voxel-index space with all eight
// neighbours inside the volume, whose slices hold fewer than 2^31 voxels (not tested here).
inline FloatPack SampleTrilinear(const core::VolumeView& volume, FloatPack x, FloatPack y, FloatPack z)
{
    const IntPack i = ToInt(x), j = ToInt(y), k = ToInt(z);
    const FloatPack u = x - ToFloat(i), v = y - ToFloat(j), w = z - ToFloat(k);
    const IntPack offset = j * volume.nx + i;
    // One lane at a time because each lane has its own slice pointers; hardware gathers measured no faster.
    IntPack near0, near1, far0, far1; // pairs of neighbours in x: rows j and j + 1 of slices k and k + 1
    for (int lane = 0; lane < kLanes; ++lane)
    {
        const int16_t* nearRow = volume.slices[k[lane]] + offset[lane];
        const int16_t* farRow = volume.slices[k[lane] + 1] + offset[lane];
        near0[lane] = LoadPair(nearRow);
        near1[lane] = LoadPair(nearRow + volume.nx);
        far0[lane] = LoadPair(farRow);
        far1[lane] = LoadPair(farRow + volume.nx);
    }
    const FloatPack row0 =
        Lerp(Lerp(FirstOfPair(near0), FirstOfPair(far0), w), Lerp(SecondOfPair(near0), SecondOfPair(far0), w), u);
    const FloatPack row1 =
        Lerp(Lerp(FirstOfPair(near1), FirstOfPair(far1), w), Lerp(SecondOfPair(near1), SecondOfPair(far1), w), u);
    return Lerp(row0, row1, v);
}
} // namespace corvane::KERNEL_ISA

#endif
