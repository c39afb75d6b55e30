#include "polygon_rows.h"

#include <algorithm>
#include <cmath>

namespace corvane::capi
{
namespace
{
// Steps shorter than this, squared pixels per voxel, move the longest row of voxels by less than a millionth of a
// pixel.
constexpr double kNoStep = 1e-27;

// The first voxel that does not lie before a crossing.
int32_t FirstFrom(double crossing, int32_t sizeX)
{
    return int32_t(std::clamp(std::ceil(crossing), 0.0, double(sizeX)));
}
} // namespace

PolygonRows::PolygonRows(const KsVolumeData& volume, const PnImageParam& plane, const double* points, size_t pointCount)
    : plane_(plane), sizeX_(volume.sizeX)
{
    double origin[3], alongX[3], alongY[3], alongZ[3];
    for (int axis = 0; axis < 3; ++axis)
    {
        origin[axis] = double(volume.origin[axis]) - plane.position[axis];
        alongX[axis] = double(volume.spacing[0]) * double(volume.rowDirection[axis]);
        alongY[axis] = double(volume.spacing[1]) * double(volume.columnDirection[axis]);
        alongZ[axis] = double(volume.spacing[2]) * double(volume.sliceDirection[axis]);
    }
    origin_ = PlaceOf(origin);
    alongX_ = PlaceOf(alongX);
    alongY_ = PlaceOf(alongY);
    alongZ_ = PlaceOf(alongZ);

    const double squared = alongX_.column * alongX_.column + alongX_.row * alongX_.row;
    const bool hasStep = squared >= kNoStep;
    direction_ = hasStep ? alongX_ : Place{1.0, 0.0};
    voxelsPerLength_ = hasStep ? 1.0 / squared : 0.0;
    corners_.reserve(pointCount);
    for (size_t n = 0; n < pointCount; ++n)
        corners_.push_back(CornerOf({points[2 * n], points[2 * n + 1]}));
    crossings_.reserve(pointCount);
    inside_.reserve(pointCount / 2 + 1);
}

const std::vector<VoxelRange>& PolygonRows::InsideOf(int32_t j, int32_t k)
{
    FindCrossings(CornerOf(
        {origin_.column + j * alongY_.column + k * alongZ_.column, origin_.row + j * alongY_.row + k * alongZ_.row}));
    inside_.clear();
    if (voxelsPerLength_ == 0.0)
    {
        // All at one place: inside when the outline is crossed an odd number of times on one side of it.
        const auto before = std::count_if(crossings_.begin(), crossings_.end(), [](double at) { return at <= 0.0; });
        if (before % 2)
            inside_.push_back({0, sizeX_});
        return inside_;
    }
    std::sort(crossings_.begin(), crossings_.end());
    for (size_t n = 0; n + 1 < crossings_.size(); n += 2)
    {
        const VoxelRange range = {FirstFrom(crossings_[n], sizeX_), FirstFrom(crossings_[n + 1], sizeX_)};
        if (range.first < range.end)
            inside_.push_back(range);
    }
    return inside_;
}

PolygonRows::Place PolygonRows::PlaceOf(const double* offset) const
{
    const double* const row = plane_.rowDirection;
    const double* const column = plane_.columnDirection;
    return {(offset[0] * row[0] + offset[1] * row[1] + offset[2] * row[2]) / plane_.columnSpacing,
            (offset[0] * column[0] + offset[1] * column[1] + offset[2] * column[2]) / plane_.rowSpacing};
}

PolygonRows::Corner PolygonRows::CornerOf(Place place) const
{
    const double along = place.column * direction_.column + place.row * direction_.row;
    return {direction_.column * place.row - direction_.row * place.column,
            voxelsPerLength_ == 0.0 ? along : along * voxelsPerLength_};
}

// Where the line through a place, in the direction of voxel rows, crosses the outline. A corner on the line counts as
// lying on one side of it, so that there is always an even number of crossings.
void PolygonRows::FindCrossings(const Corner& start)
{
    crossings_.clear();
    const Corner* a = &corners_.back();
    for (const Corner& b : corners_)
    {
        const double sideOfA = a->beside - start.beside, sideOfB = b.beside - start.beside;
        if ((sideOfA <= 0.0) != (sideOfB <= 0.0))
            crossings_.push_back(a->along + (b.along - a->along) * (sideOfA / (sideOfA - sideOfB)) - start.along);
        a = &b;
    }
}
} // namespace corvane::capi
