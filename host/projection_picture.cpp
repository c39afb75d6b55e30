#include "projection_picture.h"

#include <algorithm>
#include <cmath>

#include "plane.h"
#include "read_text.h"

namespace corvane::host
{
namespace
{
constexpr int16_t kEmpty = -1024;         // what the library writes where a ray finds nothing
constexpr int16_t kLeastAveraged = -1248; // the library's averages leave out what is below
constexpr double kEdge = 1.2;             // voxels; samples reach to 1.1 voxels within the outermost ones

// A part of a ray, mm from the image plane along the normal.
struct Span
{
    double from, to;

    // Keeps what lies between two ends along one axis.
    void Clip(double start, double change, double low, double high)
    {
        if (change == 0)
        {
            if (!(start >= low && start <= high))
                to = -INFINITY;
            return;
        }
        const double a = (low - start) / change, b = (high - start) / change;
        from = std::max(from, std::min(a, b));
        to = std::min(to, std::max(a, b));
    }
};

bool MeetsNothing(const ProjectedSpace& space, Vec3 point, Vec3 normal)
{
    const double reach = space.thickness ? 0.5 * *space.thickness : INFINITY;
    const Grid& grid = space.grid;
    const Vec3 index = PatientToIndex(grid, point), change = PatientToIndex(grid, point + normal) - index;
    Span span = {-reach, reach};
    span.Clip(index.x, change.x, kEdge, grid.sizeX - 1 - kEdge);
    span.Clip(index.y, change.y, kEdge, grid.sizeY - 1 - kEdge);
    span.Clip(index.z, change.z, kEdge, grid.sizeZ - 1 - kEdge);
    if (space.box)
    {
        const Vec3 &low = space.box->from, &high = space.box->to;
        span.Clip(point.x, normal.x, low.x, high.x);
        span.Clip(point.y, normal.y, low.y, high.y);
        span.Clip(point.z, normal.z, low.z, high.z);
    }
    return !(span.from < span.to);
}

std::string PercentBelow(const Volume& volume, int16_t value)
{
    const auto below = std::count_if(volume.voxels.begin(), volume.voxels.end(), [&](int16_t v) { return v < value; });
    const double percent = 100.0 * double(below) / double(volume.voxels.size());
    return percent < 0.1 ? "less than 0.1 %" : Number(std::round(percent * 10) / 10) + " %";
}
} // namespace

std::vector<bool> EmptyPixels(const ProjectedImage& image, const ProjectedSpace& space)
{
    const PnImageParam& plane = image.plane;
    const Vec3 normal = Unit(Cross(RowDirection(plane), ColumnDirection(plane)));
    std::vector<bool> empty(image.values.size());
    size_t pixel = 0;
    for (uint32_t row = 0; row < plane.rows; ++row)
        for (uint32_t column = 0; column < plane.columns; ++column, ++pixel)
            empty[pixel] = image.values[pixel] == kEmpty &&
                           (space.someHidden || MeetsNothing(space, PixelToPatient(plane, row, column), normal));
    return empty;
}

Window WindowOfProjection(const ProjectedImage& image, const std::vector<bool>& empty, const Volume& volume)
{
    Volume projected;
    projected.valueSlope = volume.valueSlope;
    projected.valueIntercept = volume.valueIntercept;
    for (size_t pixel = 0; pixel < empty.size(); ++pixel)
        if (!empty[pixel])
            projected.voxels.push_back(image.values[pixel]);
    return PercentileWindow(projected, 1, 99);
}

Picture GreyProjection(const ProjectedImage& image, const std::vector<bool>& empty, const Volume& volume,
                       const Window& window)
{
    const PnImageParam& plane = image.plane;
    Picture picture = {int(plane.rows), int(plane.columns), plane.rowSpacing, plane.columnSpacing, {}};
    picture.rgb.reserve(image.values.size() * 3);
    for (size_t pixel = 0; pixel < image.values.size(); ++pixel)
    {
        const double real = volume.valueSlope * image.values[pixel] + volume.valueIntercept;
        picture.rgb.insert(picture.rgb.end(), 3, empty[pixel] ? uint8_t(0) : GreyOf(window, real));
    }
    return picture;
}

std::vector<std::string> ProjectionWarnings(Projection projection, const Volume& volume, bool storedValues)
{
    const int16_t least = *std::min_element(volume.voxels.begin(), volume.voxels.end());
    if (least >= kEmpty || HoldsHounsfieldUnits(volume))
        return {};
    const std::string below = PercentBelow(volume, kEmpty) + " of the stored values are below -1024";
    if (projection == Projection::Maximum)
        return {below + " and show as -1024 where nothing higher lies on the ray"};
    if (projection == Projection::Average)
        return {below + "; averages leave out those below " + std::to_string(kLeastAveraged) +
                " and do not fall below -1024"};
    if (storedValues)
        return {below + "; pixels outside the volume hold -1024 and look like values"};
    return {};
}
} // namespace corvane::host
