#include "view.h"

#include <algorithm>
#include <numbers>

#include "error.h"

namespace corvane::host
{
namespace
{
constexpr double kMargin = 1.04;  // the picture is that much larger than what is seen
constexpr double kDistance = 1.2; // of the image plane from the middle, in diagonals of what is seen

struct Box
{
    Vec3 low, high;

    Vec3 Middle() const { return 0.5 * (low + high); }
    double Diagonal() const { return Length(high - low); }
};

Box BoxAround(const Corners& corners)
{
    Box box = {corners.front(), corners.front()};
    for (const Vec3& corner : corners)
    {
        box.low = {std::min(box.low.x, corner.x), std::min(box.low.y, corner.y), std::min(box.low.z, corner.z)};
        box.high = {std::max(box.high.x, corner.x), std::max(box.high.y, corner.y), std::max(box.high.z, corner.z)};
    }
    return box;
}

// Turns a vector about a unit axis, counter-clockwise when the axis points at the viewer (Rodrigues).
Vec3 Rotated(Vec3 vector, Vec3 axis, double degrees)
{
    const double angle = degrees * std::numbers::pi / 180;
    return std::cos(angle) * vector + std::sin(angle) * Cross(axis, vector) +
           ((1 - std::cos(angle)) * Dot(axis, vector)) * axis;
}

void Store(Vec3 vector, double (&numbers)[3])
{
    numbers[0] = vector.x;
    numbers[1] = vector.y;
    numbers[2] = vector.z;
}
} // namespace

Vec3 RightOf(const View& view) { return Unit(Cross(view.direction, view.up)); }

Vec3 DownOf(const View& view) { return Unit(Cross(view.direction, RightOf(view))); }

View NamedView(const std::string& name)
{
    if (name == "anterior" || name == "coronal")
        return {{0, 1, 0}, {0, 0, 1}};
    if (name == "posterior")
        return {{0, -1, 0}, {0, 0, 1}};
    if (name == "left" || name == "sagittal")
        return {{-1, 0, 0}, {0, 0, 1}};
    if (name == "right")
        return {{1, 0, 0}, {0, 0, 1}};
    if (name == "superior")
        return {{0, 0, -1}, {0, -1, 0}};
    if (name == "inferior" || name == "axial")
        return {{0, 0, 1}, {0, -1, 0}};
    throw Error(ErrorKind::Usage, "--view is anterior (coronal), posterior, left (sagittal), right, superior or "
                                  "inferior (axial), not '" +
                                      name + "'");
}

View Turned(const View& view, double azimuth, double elevation, double roll)
{
    // The eye goes to the right where the line of sight turns with it about the upward axis.
    View turned = {Rotated(view.direction, view.up, azimuth), view.up};
    const Vec3 right = RightOf(turned);
    turned = {Rotated(turned.direction, right, -elevation), Rotated(turned.up, right, -elevation)};
    // What is seen turns clockwise when the eye's upward axis turns the other way.
    turned.up = Rotated(turned.up, turned.direction, -roll);
    return turned;
}

Corners CornersOf(const Grid& grid, Vec3 low, Vec3 high)
{
    Corners corners;
    for (int corner = 0; corner < 8; ++corner)
        corners.push_back(
            IndexToPatient(grid, {corner & 1 ? high.x + 0.5 : low.x - 0.5, corner & 2 ? high.y + 0.5 : low.y - 0.5,
                                  corner & 4 ? high.z + 0.5 : low.z - 0.5}));
    return corners;
}

Corners CornersOf(const Grid& grid)
{
    return CornersOf(grid, {0, 0, 0}, {grid.sizeX - 1.0, grid.sizeY - 1.0, grid.sizeZ - 1.0});
}

Vec3 MiddleOf(const Corners& corners) { return BoxAround(corners).Middle(); }

double FittingPixelSize(const std::vector<View>& views, const Corners& corners, uint32_t rows, uint32_t columns)
{
    const Vec3 middle = MiddleOf(corners);
    double size = 0;
    for (const View& view : views)
        for (const Vec3& corner : corners)
            size = std::max({size, 2 * std::fabs(Dot(corner - middle, RightOf(view))) / columns,
                             2 * std::fabs(Dot(corner - middle, DownOf(view))) / rows});
    return size * kMargin;
}

PnImageParam ViewPlaneOf(const View& view, const Corners& corners, uint32_t rows, uint32_t columns, double pixelSize)
{
    const Box box = BoxAround(corners);
    const Vec3 right = RightOf(view), down = DownOf(view);
    PnImageParam plane = {};
    plane.rows = rows;
    plane.columns = columns;
    plane.rowSpacing = plane.columnSpacing = pixelSize;
    Store(right, plane.rowDirection);
    Store(down, plane.columnDirection);
    Store(box.Middle() - kDistance * box.Diagonal() * view.direction - (0.5 * (columns - 1.0) * pixelSize) * right -
              (0.5 * (rows - 1.0) * pixelSize) * down,
          plane.position);
    return plane;
}
} // namespace corvane::host
