#ifndef CORVANE_RENDER3D_KERNELS_SHADING_H
#define CORVANE_RENDER3D_KERNELS_SHADING_H

#include "core/simd/sampling.h"
#include "kernels.h"

namespace corvane::KERNEL_ISA
{
// The 32 voxels that the differences at the eight voxels around places read, as pairs of neighbours in x. In slices k
// and k + 1 rows j and j + 1 need four voxels each, from i - 1 on; the rows and slices beyond need the two in the
// middle.
struct NeighbourVoxels
{
    IntPack left[2][2], right[2][2]; // [slice][row]
    IntPack above[2], below[2];      // [slice]
    IntPack before[2], after[2];     // [row]
};

// Where the voxels of four slices lie.
struct FourSlices
{
    const VoxelPointers &before, &near, &far, &after;
    int64_t stride; // added once per slice
};

inline NeighbourVoxels LoadFrom(const FourSlices& slices, int64_t nx)
{
    NeighbourVoxels voxels;
    for (int slice = 0; slice < 2; ++slice)
    {
        const VoxelPointers& pointers = slice == 0 ? slices.near : slices.far;
        const int64_t start = slice * slices.stride;
        for (int row = 0; row < 2; ++row)
            pointers.TwoPairsAt(start + row * nx - 1, voxels.left[slice][row], voxels.right[slice][row]);
        voxels.above[slice] = pointers.PairsAt(start - nx);
        voxels.below[slice] = pointers.PairsAt(start + 2 * nx);
    }
    for (int row = 0; row < 2; ++row)
    {
        voxels.before[row] = slices.before.PairsAt(row * nx - slices.stride);
        voxels.after[row] = slices.after.PairsAt(row * nx + 2 * slices.stride);
    }
    return voxels;
}

// i, j, k as for LoadCell, with one more voxel on every side.
inline NeighbourVoxels LoadNeighbours(const core::VolumeView& volume, IntPack i, IntPack j, IntPack k)
{
    const VoxelPointers near(volume, i, j, k, 0);
    if (volume.sliceStride != 0)
        return LoadFrom({near, near, near, near, volume.sliceStride}, volume.nx);
    const VoxelPointers before(volume, i, j, k, -1), far(volume, i, j, k, 1), after(volume, i, j, k, 2);
    return LoadFrom({before, near, far, after, 0}, volume.nx);
}

// Gradient between voxels: central differences at the eight neighbours, interpolated as values are. Twice its true
// length; only its direction is used. x, y, z as for SampleTrilinear, with one more voxel on every side.
inline VectorPack SampleGradient(const core::VolumeView& volume, FloatPack x, FloatPack y, FloatPack z)
{
    const IntPack i = ToInt(x), j = ToInt(y), k = ToInt(z);
    const FloatPack u = x - ToFloat(i), v = y - ToFloat(j), w = z - ToFloat(k);
    const NeighbourVoxels voxels = LoadNeighbours(volume, i, j, k);
    const auto& [left, right, above, below, before, after] = voxels;

    // Values at the neighbours themselves, [slice][row] and first or second in x.
    FloatPack first[2][2], second[2][2];
    for (int slice = 0; slice < 2; ++slice)
    {
        for (int row = 0; row < 2; ++row)
        {
            first[slice][row] = SecondOfPair(left[slice][row]);
            second[slice][row] = FirstOfPair(right[slice][row]);
        }
    }

    // Differences are interpolated along z, then x, then y.
    const auto alongZ = [&](FloatPack near, FloatPack far) { return Lerp(near, far, w); };
    FloatPack rowsX[2], rowsY[2], rowsZ[2];
    for (int row = 0; row < 2; ++row)
    {
        rowsX[row] =
            Lerp(alongZ(second[0][row] - FirstOfPair(left[0][row]), second[1][row] - FirstOfPair(left[1][row])),
                 alongZ(SecondOfPair(right[0][row]) - first[0][row], SecondOfPair(right[1][row]) - first[1][row]), u);
        rowsZ[row] =
            Lerp(alongZ(first[1][row] - FirstOfPair(before[row]), FirstOfPair(after[row]) - first[0][row]),
                 alongZ(second[1][row] - SecondOfPair(before[row]), SecondOfPair(after[row]) - second[0][row]), u);
    }
    rowsY[0] = Lerp(alongZ(first[0][1] - FirstOfPair(above[0]), first[1][1] - FirstOfPair(above[1])),
                    alongZ(second[0][1] - SecondOfPair(above[0]), second[1][1] - SecondOfPair(above[1])), u);
    rowsY[1] = Lerp(alongZ(FirstOfPair(below[0]) - first[0][0], FirstOfPair(below[1]) - first[1][0]),
                    alongZ(SecondOfPair(below[0]) - second[0][0], SecondOfPair(below[1]) - second[1][0]), u);
    return {Lerp(rowsX[0], rowsX[1], v), Lerp(rowsY[0], rowsY[1], v), Lerp(rowsZ[0], rowsZ[1], v)};
}

// How far a surface faces the light, 0 to 1, whichever side it shows. The gradient is in voxels, the light in patient
// space; a gradient of no length faces nowhere.
inline FloatPack Facing(const render3d::Scene& scene, VectorPack gradient, VectorPack light)
{
    const core::Directions& axes = scene.directions;
    const FloatPack gx = gradient.x * scene.inverseRelativeSpacing.x;
    const FloatPack gy = gradient.y * scene.inverseRelativeSpacing.y;
    const FloatPack gz = gradient.z * scene.inverseRelativeSpacing.z;
    const FloatPack nx = gx * axes.row.x + gy * axes.column.x + gz * axes.slice.x;
    const FloatPack ny = gx * axes.row.y + gy * axes.column.y + gz * axes.slice.y;
    const FloatPack nz = gx * axes.row.z + gy * axes.column.z + gz * axes.slice.z;
    const FloatPack length = Sqrt(nx * nx + ny * ny + nz * nz) + 0.000001f;
    return Abs(nx / length * light.x + ny / length * light.y + nz / length * light.z);
}

// The 96th power of numbers from 0 to 1, by squaring. What would be too small for a normal number is 0: processors are
// slow at such numbers, and no pixel shows them.
inline FloatPack Power96(FloatPack a)
{
    a = a < 0.4f ? FloatPack{} : a;
    const FloatPack a2 = a * a, a4 = a2 * a2, a8 = a4 * a4, a16 = a8 * a8, a32 = a16 * a16;
    return a32 * a32 * a32;
}
} // namespace corvane::KERNEL_ISA

#endif
