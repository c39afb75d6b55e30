#ifndef CORVANE_RENDER3D_KERNELS_SHADING_H
#define CORVANE_RENDER3D_KERNELS_SHADING_H

#include "core/simd/sampling.h"
#include "kernels.h"

namespace corvane::KERNEL_ISA
{
// Gradient between voxels: central differences at the eight neighbours, interpolated as values are. Twice its true
// length; only its direction is used. x, y, z as for
// SampleTrilinear, with one more voxel on every side.
inline VectorPack SampleGradient(const core::VolumeView& volume, FloatPack x, FloatPack y, FloatPack z)
{
    const IntPack i = ToInt(x), j = ToInt(y), k = ToInt(z);
    const FloatPack u = x - ToFloat(i), v = y - ToFloat(j), w = z - ToFloat(k);

    // The 32 voxels that the eight neighbours' differences read, as pairs of neighbours in x. In slices k and k + 1
    // rows j and j + 1 need four voxels each, from i - 1 on; the rows and slices beyond need the two in the middle.
    IntPack left[2][2], right[2][2], above[2], below[2], before[2], after[2];
    const int64_t nx = volume.nx;
    for (int lane = 0; lane < kLanes; ++lane)
    {
        const int64_t offset = int64_t(j[lane]) * nx + i[lane];
        const int16_t* const* slices = volume.slices + k[lane];
        for (int slice = 0; slice < 2; ++slice)
        {
            const int16_t* voxel = slices[slice] + offset;
            for (int row = 0; row < 2; ++row)
            {
                left[slice][row][lane] = LoadPair(voxel + row * nx - 1);
                right[slice][row][lane] = LoadPair(voxel + row * nx + 1);
            }
            above[slice][lane] = LoadPair(voxel - nx);
            below[slice][lane] = LoadPair(voxel + 2 * nx);
        }
        for (int row = 0; row < 2; ++row)
        {
            before[row][lane] = LoadPair(slices[-1] + offset + row * nx);
            after[row][lane] = LoadPair(slices[2] + offset + row * nx);
        }
    }

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

// The 96th power, by squaring.
inline FloatPack Power96(FloatPack a)
{
    const FloatPack a2 = a * a, a4 = a2 * a2, a8 = a4 * a4, a16 = a8 * a8, a32 = a16 * a16;
    return a32 * a32 * a32;
}
} // namespace corvane::KERNEL_ISA

#endif
