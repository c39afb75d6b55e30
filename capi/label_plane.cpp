#include "label_plane.h"

#include <cmath>

namespace corvane::capi
{
namespace
{
struct Vector
{
    double x, y, z;
};

Vector Of(const double* numbers) { return {numbers[0], numbers[1], numbers[2]}; }

Vector Scaled(const float* direction, float length)
{
    return {double(direction[0]) * double(length), double(direction[1]) * double(length),
            double(direction[2]) * double(length)};
}

double Dot(Vector a, Vector b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

Vector Cross(Vector a, Vector b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }

// A nearest voxel along one axis, or -1 outside the volume.
int32_t Nearest(double index, int32_t size)
{
    const double nearest = std::floor(index + 0.5);
    return nearest >= 0.0 && nearest < double(size) ? int32_t(nearest) : -1;
}
} // namespace

bool SampleLabels(const uint8_t* labels, const KsVolumeData& volume, const PnImageParam& plane, uint8_t* image)
{
    const Vector x = Scaled(volume.rowDirection, volume.spacing[0]);
    const Vector y = Scaled(volume.columnDirection, volume.spacing[1]);
    const Vector z = Scaled(volume.sliceDirection, volume.spacing[2]);
    const double cell = Dot(x, Cross(y, z)); // mm^3, signed
    if (cell == 0.0)
        return false;
    const Vector toX = Cross(y, z), toY = Cross(z, x), toZ = Cross(x, y);
    const auto indexOf = [&](Vector offset) -> Vector {
        return {Dot(offset, toX) / cell, Dot(offset, toY) / cell, Dot(offset, toZ) / cell};
    };

    const Vector position = Of(plane.position);
    const Vector first =
        indexOf({position.x - volume.origin[0], position.y - volume.origin[1], position.z - volume.origin[2]});
    const Vector row = Of(plane.rowDirection), column = Of(plane.columnDirection);
    const Vector across =
        indexOf({row.x * plane.columnSpacing, row.y * plane.columnSpacing, row.z * plane.columnSpacing});
    const Vector down =
        indexOf({column.x * plane.rowSpacing, column.y * plane.rowSpacing, column.z * plane.rowSpacing});
    for (uint32_t r = 0; r < plane.rows; ++r)
        for (uint32_t c = 0; c < plane.columns; ++c)
        {
            const int32_t i = Nearest(first.x + c * across.x + r * down.x, volume.sizeX);
            const int32_t j = Nearest(first.y + c * across.y + r * down.y, volume.sizeY);
            const int32_t k = Nearest(first.z + c * across.z + r * down.z, volume.sizeZ);
            const bool isInside = i >= 0 && j >= 0 && k >= 0;
            *image++ = isInside ? labels[(int64_t(k) * volume.sizeY + j) * volume.sizeX + i] : uint8_t(0);
        }
    return true;
}
} // namespace corvane::capi
