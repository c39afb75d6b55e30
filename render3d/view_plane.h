#ifndef CORVANE_RENDER3D_VIEW_PLANE_H
#define CORVANE_RENDER3D_VIEW_PLANE_H

#include "core/geometry.h"

#include <cstdint>

namespace corvane::render3d
{
// An image plane in single precision.
struct ViewPlane
{
    explicit ViewPlane(const PnImageParam& param);

    // Patient position of a pixel.
    core::Vec3f PixelAt(int64_t column, int64_t row) const
    {
        return position + float(column) * columnStep + float(row) * rowStep;
    }

    // Into the volume, perpendicular to the plane.
    core::Vec3f ViewDirection() const { return core::UnitOrZero(core::Cross(rowDirection, columnDirection)); }

    int64_t rows, columns;
    float rowSpacing, columnSpacing;
    core::Vec3f rowDirection, columnDirection, position;
    core::Vec3f columnStep, rowStep; // from a pixel to the next column and to the next row
};

// Pixels of an image, both ends included; empty when an end lies before its start.
struct PixelRectangle
{
    int64_t x0, y0, x1, y1;

    bool IsEmpty() const { return x1 < x0 || y1 < y0; }
    int64_t Width() const { return x1 - x0 + 1; }
    int64_t PixelCount() const { return IsEmpty() ? 0 : Width() * (y1 - y0 + 1); }
};

// The pixels that the projection of eight patient points can cover; may lie outside the image when the points do.
PixelRectangle CoveredRectangle(const ViewPlane& plane, const core::Vec3f (&corners)[8]);

// The part of a rectangle that lies in the image.
PixelRectangle LimitToImage(const PixelRectangle& rectangle, const ViewPlane& plane);

// Unit vectors in which the columns and the rows of a view's image grow; a direction along `up` has none and gets
// zeros.
struct ImageAxes
{
    core::Vec3f row, column;
};

ImageAxes AxesOf(core::Vec3f direction, core::Vec3f up);

// The geometry of the image of a camera whose field spans the shorter side, centred on the camera's centre.
// Rows and columns are those of `param`, the rest is written.
void PlaceImage(const KsCamera& camera, float fieldSize, PnImageParam& param);
} // namespace corvane::render3d

#endif
