#include "labelling.h"

#include "plane_rows.h"

#include <algorithm>

using namespace corvane::core;

namespace corvane::mpr
{
namespace
{
// The nearest voxel's number along one axis, or -1 outside. A NaN compares false, too.
int32_t NearestVoxel(float place, int32_t size)
{
    const float shifted = place + 0.5f;
    if (!(shifted > -1.0f && shifted < float(size)))
        return -1;
    const int64_t voxel = int64_t(shifted);
    return voxel < size ? int32_t(voxel) : -1;
}

void LabelRow(const LabelView& labels, const PixelRow& row, uint8_t* pixels)
{
    Vec3f place = row.first;
    for (int32_t pixel = 0; pixel < row.count; ++pixel, place = place + row.step)
    {
        const int32_t i = NearestVoxel(place.x, labels.nx);
        const int32_t j = NearestVoxel(place.y, labels.ny);
        const int32_t k = NearestVoxel(place.z, labels.nz);
        if (i >= 0 && j >= 0 && k >= 0 && labels.slices[k])
            pixels[pixel] = labels.slices[k][size_t(j) * size_t(labels.nx) + size_t(i)];
    }
}
} // namespace

void LabelPlane(const LabelView& labels, const VolumeGeometry& geometry, KsImageMark& image)
{
    const size_t rows = image.param.rows, columns = image.param.columns;
    std::fill_n(image.labels, rows * columns, uint8_t(0));
    PlaneRows plane(geometry, image.param);
    for (size_t row = 0; row < rows; ++row, plane.Advance())
        if (const std::optional<PlaneRows::Span> span = plane.LabelSpan())
            LabelRow(labels, span->pixels, image.labels + row * columns + size_t(span->firstColumn));
}
} // namespace corvane::mpr
