#include "arguments.h"

#include <algorithm>
#include <cmath>

namespace corvane::capi
{
namespace
{
constexpr int32_t kLargestSize = int32_t(1) << 24;      // voxels along an axis that the renderer takes
constexpr int64_t kLargestSlice = int64_t(INT32_MAX);   // voxels of a slice that it takes
constexpr uint32_t kLargestImage = uint32_t(INT32_MAX); // rows or columns that it takes

double Dot(const double* a, const double* b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

CorvaneStatus IsPixelSize(double spacing) { return Require(spacing >= 1e-6 && spacing <= 1e6); }

CorvaneStatus IsNear(const double* point)
{
    return Require(std::abs(point[0]) <= 1e9 && std::abs(point[1]) <= 1e9 && std::abs(point[2]) <= 1e9);
}

template <class Image>
CorvaneStatus IsImageOf(const Image* image, const void* buffer, size_t capacity)
{
    return First(NotNull(image, buffer), image ? Holds(capacity, image->param.rows, image->param.columns) : CORVANE_OK);
}
} // namespace

CorvaneStatus Finite3(const double* numbers)
{
    return numbers ? Finite(numbers[0], numbers[1], numbers[2]) : CORVANE_ERROR_ARGUMENT;
}

CorvaneStatus Finite3(const float* numbers)
{
    return numbers ? Finite(numbers[0], numbers[1], numbers[2]) : CORVANE_ERROR_ARGUMENT;
}

CorvaneStatus IsVolume(const KsVolumeData* volume)
{
    return Require(
        volume && volume->slices && volume->sizeX >= 1 && volume->sizeY >= 1 && volume->sizeZ >= 1 &&
        std::all_of(volume->slices, volume->slices + volume->sizeZ, [](const int16_t* slice) { return slice; }));
}

CorvaneStatus HasRenderableSizes(const KsVolumeData& volume)
{
    const auto isSize = [](int32_t size) { return size >= 1 && size <= kLargestSize; };
    return Require(isSize(volume.sizeX) && isSize(volume.sizeY) && isSize(volume.sizeZ) &&
                   int64_t(volume.sizeX) * volume.sizeY <= kLargestSlice);
}

CorvaneStatus IsRenderableVolume(const KsVolumeData* volume)
{
    // The size along z comes first: it says how long the slice table is.
    return volume && HasRenderableSizes(*volume) == CORVANE_OK ? IsVolume(volume) : CORVANE_ERROR_ARGUMENT;
}

CorvaneStatus IsMark(const KsVolumeMark* mark)
{
    return Require(mark && mark->slices && mark->sizeX >= 1 && mark->sizeY >= 1 && mark->sizeZ >= 1);
}

CorvaneStatus IsPalette(const KsPalette* palette)
{
    return Require(palette && (palette->points || palette->pointCount < 1));
}

CorvaneStatus IsPlaneType(KsMPRType type)
{
    return Require(type == KsMPRTransverse || type == KsMPRSagittal || type == KsMPRCoronal);
}

CorvaneStatus AreAxes(const double* row, const double* column)
{
    constexpr double kTolerance = 0.001;
    return Require(std::abs(Dot(row, row) - 1.0) <= kTolerance && std::abs(Dot(column, column) - 1.0) <= kTolerance &&
                   std::abs(Dot(row, column)) <= kTolerance);
}

CorvaneStatus AreFrames(const KsMPRParam* planes)
{
    const auto isFrame = [](const KsPlaneFrame& frame)
    {
        return First(AreAxes(frame.rowDirection, frame.columnDirection), AreAxes(frame.rowDirection, frame.normal),
                     AreAxes(frame.columnDirection, frame.normal));
    };
    return planes ? First(IsNear(planes->origin), isFrame(planes->transverse), isFrame(planes->coronal),
                          isFrame(planes->sagittal))
                  : CORVANE_ERROR_ARGUMENT;
}

CorvaneStatus IsPlane(const PnImageParam* plane)
{
    return plane ? First(Require(plane->rows >= 1 && plane->rows <= kLargestImage && plane->columns >= 1 &&
                                 plane->columns <= kLargestImage),
                         IsPixelSize(plane->rowSpacing), IsPixelSize(plane->columnSpacing),
                         AreAxes(plane->rowDirection, plane->columnDirection), IsNear(plane->position))
                 : CORVANE_ERROR_ARGUMENT;
}

CorvaneStatus Holds(size_t capacity, uint32_t rows, uint32_t columns)
{
    return uint64_t(rows) * columns <= capacity ? CORVANE_OK : CORVANE_ERROR_BUFFER;
}

CorvaneStatus Holds(size_t capacity, int32_t width, int32_t height)
{
    if (width < 0 || height < 0)
        return CORVANE_ERROR_ARGUMENT;
    return Holds(capacity, uint32_t(width), uint32_t(height));
}

CorvaneStatus IsImage(const PnImageRGB* image, size_t capacity)
{
    return IsImageOf(image, image ? image->pixels : nullptr, capacity);
}

CorvaneStatus IsImage(const KsImageVAL* image, size_t capacity)
{
    return IsImageOf(image, image ? image->values : nullptr, capacity);
}

CorvaneStatus IsImage(const KsImageMark* image, size_t capacity)
{
    return IsImageOf(image, image ? image->labels : nullptr, capacity);
}
} // namespace corvane::capi
