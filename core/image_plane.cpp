#include "image_plane.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

namespace corvane::core
{
namespace
{
constexpr uint32_t kMostPixels = std::numeric_limits<uint32_t>::max();

// The fields of either image record that a resize touches.
template <class Sample>
struct Buffer
{
    uint32_t& count;
    Sample*& samples;
    uint8_t& owns;
    uint32_t& rows;
    uint32_t& columns;
};

template <class Sample>
bool Resize(Buffer<Sample> buffer, uint32_t rows, uint32_t columns)
{
    const uint64_t count = uint64_t(rows) * columns;
    if (count > kMostPixels)
        return false;
    std::unique_ptr<Sample[]> samples = count > 0 ? std::make_unique<Sample[]>(count) : nullptr;

    buffer.rows = rows;
    buffer.columns = columns;
    if (buffer.samples && buffer.owns)
    {
        delete[] buffer.samples;
        buffer.samples = nullptr;
        buffer.count = 0;
    }
    if (samples)
    {
        buffer.samples = samples.release();
        buffer.count = uint32_t(count);
        buffer.owns = 1;
    }
    return true;
}
} // namespace

std::optional<uint32_t> PixelCount(double length, double spacing)
{
    const double count = std::ceil(length / spacing);
    if (!(count >= 0.0 && count <= double(kMostPixels)))
        return std::nullopt;
    return uint32_t(count);
}

bool ResizeImageData(KsImageData& image, uint32_t rows, uint32_t columns)
{
    return Resize<int16_t>({image.valueCount, image.values, image.ownsValues, image.rows, image.columns}, rows,
                           columns);
}

bool ResizeImageData(KsMarkData& image, uint32_t rows, uint32_t columns)
{
    return Resize<uint8_t>({image.labelCount, image.labels, image.ownsLabels, image.rows, image.columns}, rows,
                           columns);
}

double PixelSpacing(const KsVolumeData& volume)
{
    return double(std::min(std::min(volume.spacing[0], volume.spacing[1]), volume.spacing[2]));
}

std::optional<PnImageParam> ImageOfSlice(const KsSliceParam& slice, const KsVolumeData& volume)
{
    const double spacing = PixelSpacing(volume);
    const std::optional<uint32_t> side = PixelCount(slice.sideLength, spacing);
    if (!side)
        return std::nullopt;
    PnImageParam param = {};
    param.rows = param.columns = *side;
    param.rowSpacing = param.columnSpacing = spacing;
    CopyDoubles(slice.rowDirection, param.rowDirection, 3);
    CopyDoubles(slice.columnDirection, param.columnDirection, 3);
    CopyDoubles(slice.position, param.position, 3);
    return param;
}

void CopyDoubles(const double* source, double* target, int count)
{
    if (count > 0)
        std::copy(source, source + count, target);
}
} // namespace corvane::core
