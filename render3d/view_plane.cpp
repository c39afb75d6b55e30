#include "view_plane.h"

#include <algorithm>
#include <cmath>

using namespace corvane::core;

namespace corvane::render3d
{
namespace
{
// A pixel number from a coordinate; what is no number, or too large for one, becomes the nearest that is.
int64_t PixelNumber(float coordinate)
{
    constexpr float kMost = 4.0e9f;
    const float whole = std::floor(coordinate);
    if (!(whole > -kMost))
        return -int64_t(kMost);
    return whole < kMost ? int64_t(whole) : int64_t(kMost);
}
} // namespace

ViewPlane::ViewPlane(const PnImageParam& param)
    : rows(param.rows), columns(param.columns), rowSpacing(float(param.rowSpacing)),
      columnSpacing(float(param.columnSpacing)), rowDirection(ToFloat(VecOf(param.rowDirection))),
      columnDirection(ToFloat(VecOf(param.columnDirection))), position(ToFloat(VecOf(param.position))),
      columnStep(columnSpacing * rowDirection), rowStep(rowSpacing * columnDirection)
{
}

PixelRectangle CoveredRectangle(const ViewPlane& plane, const Vec3f (&corners)[8])
{
    float columns[8], rows[8];
    for (int corner = 0; corner < 8; ++corner)
    {
        const Vec3f offset = corners[corner] - plane.position;
        columns[corner] = Dot(offset, plane.rowDirection) / plane.columnSpacing;
        rows[corner] = Dot(offset, plane.columnDirection) / plane.rowSpacing;
    }
    const auto [left, right] = std::minmax_element(columns, columns + 8);
    const auto [top, bottom] = std::minmax_element(rows, rows + 8);
    // Half a spacing in millimetres is added to a number of pixels: it decides which border pixels are cast, and hosts
    // compare pictures.
    const float halfColumn = 0.5f * plane.columnSpacing, halfRow = 0.5f * plane.rowSpacing;
    PixelRectangle covered = {PixelNumber(*left + halfColumn), PixelNumber(*top + halfRow),
                              PixelNumber(*right + halfColumn), PixelNumber(*bottom + halfRow)};
    covered.x0 = std::max<int64_t>(covered.x0, 0);
    covered.y0 = std::max<int64_t>(covered.y0, 0);
    covered.x1 = std::max(std::min(covered.x1, plane.columns - 1), covered.x0);
    covered.y1 = std::max(std::min(covered.y1, plane.rows - 1), covered.y0);
    return covered;
}

PixelRectangle LimitToImage(const PixelRectangle& rectangle, const ViewPlane& plane)
{
    return {std::max<int64_t>(rectangle.x0, 0), std::max<int64_t>(rectangle.y0, 0),
            std::min(rectangle.x1, plane.columns - 1), std::min(rectangle.y1, plane.rows - 1)};
}

ImageAxes AxesOf(Vec3f direction, Vec3f up)
{
    const Vec3f row = UnitOrZero(Cross(direction, up));
    return {row, UnitOrZero(Cross(direction, row))};
}

void PlaceImage(const KsCamera& camera, float fieldSize, PnImageParam& param)
{
    const auto [row, column] = AxesOf(VecOf(camera.direction), VecOf(camera.up));
    const float spacing = fieldSize / float(std::min(param.rows, param.columns));
    const double alongRow = (double(param.columns) - 1.0) * double(spacing) * 0.5;
    const double alongColumn = (double(param.rows) - 1.0) * double(spacing) * 0.5;
    param.rowSpacing = param.columnSpacing = double(spacing);
    Store(ToDouble(row), param.rowDirection);
    Store(ToDouble(column), param.columnDirection);
    Store(ToDouble(VecOf(camera.center)) - alongRow * ToDouble(row) - alongColumn * ToDouble(column), param.position);
}
} // namespace corvane::render3d
