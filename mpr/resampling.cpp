#include "resampling.h"

#include "plane_rows.h"

#include <algorithm>

namespace corvane::mpr
{
namespace
{
constexpr int16_t kBackground = -1024;
}

void ResamplePlane(const core::VolumeView& volume, const core::VolumeGeometry& geometry, KsImageVAL& image,
                   const KernelTable& kernels)
{
    const size_t rows = image.param.rows, columns = image.param.columns;
    std::fill_n(image.values, rows * columns, kBackground);
    PlaneRows plane(geometry, image.param);
    RowToFill waiting[kRowsAtOnce];
    int count = 0;
    for (size_t row = 0; row < rows; ++row, plane.Advance())
    {
        if (const std::optional<PlaneRows::Span> span = plane.ValueSpan())
            waiting[count++] = {span->pixels, image.values + row * columns + size_t(span->firstColumn)};
        if (count == kRowsAtOnce || (count > 0 && row + 1 == rows))
        {
            kernels.resampleRows(volume, waiting, count);
            count = 0;
        }
    }
}
} // namespace corvane::mpr
