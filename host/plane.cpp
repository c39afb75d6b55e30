#include "plane.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "error.h"
#include "read_text.h"

namespace corvane::host
{
namespace
{
constexpr uint32_t kLongestSide = 32768; // pixels
constexpr double kUnsampled = 1.1;       // voxels at either end of a grid
constexpr double kSlack = 1e-3;          // of a pixel: spacings carry rounding from single precision

Vec3 VectorOf(const double (&numbers)[3]) { return {numbers[0], numbers[1], numbers[2]}; }

void Store(Vec3 vector, double (&numbers)[3])
{
    numbers[0] = vector.x;
    numbers[1] = vector.y;
    numbers[2] = vector.z;
}
} // namespace

Vec3 RowDirection(const PnImageParam& plane) { return VectorOf(plane.rowDirection); }
Vec3 ColumnDirection(const PnImageParam& plane) { return VectorOf(plane.columnDirection); }
Vec3 FirstPixel(const PnImageParam& plane) { return VectorOf(plane.position); }

Vec3 PixelToPatient(const PnImageParam& plane, double row, double column)
{
    return FirstPixel(plane) + (column * plane.columnSpacing) * RowDirection(plane) +
           (row * plane.rowSpacing) * ColumnDirection(plane);
}

PnImageParam Shifted(const PnImageParam& plane, Vec3 normal, double distance)
{
    PnImageParam shifted = plane;
    Store(FirstPixel(plane) + distance * normal, shifted.position);
    return shifted;
}

PnImageParam WithPixelSize(const PnImageParam& plane, double pixelSize)
{
    if (!(pixelSize > 0))
        throw Error(ErrorKind::Usage, "the pixel size must be above 0 mm");
    const double rows = std::ceil(plane.rows * plane.rowSpacing / pixelSize - kSlack);
    const double columns = std::ceil(plane.columns * plane.columnSpacing / pixelSize - kSlack);
    if (rows > kLongestSide || columns > kLongestSide)
        throw Error(ErrorKind::Usage, "pixels of " + Number(pixelSize) + " mm would make a picture of " +
                                          Number(columns) + " x " + Number(rows) +
                                          " pixels; 32768 is the limit, choose larger pixels");
    PnImageParam resized = plane;
    resized.rows = std::max(1u, uint32_t(rows));
    resized.columns = std::max(1u, uint32_t(columns));
    resized.rowSpacing = pixelSize;
    resized.columnSpacing = pixelSize;
    return resized;
}

void CheckPlane(PnImageParam& plane)
{
    const Vec3 row = RowDirection(plane), column = ColumnDirection(plane);
    if (!(Length(row) > 1e-9) || !(Length(column) > 1e-9))
        throw Error(ErrorKind::Usage, "row and column directions must not be zero");
    const Vec3 unitRow = Unit(row), unitColumn = Unit(column);
    const double product = Dot(unitRow, unitColumn);
    if (!(std::fabs(product) < 1e-3))
        throw Error(ErrorKind::Usage, "row and column directions must be at right angles; these differ from that by " +
                                          Number(std::asin(product) * 180 / std::numbers::pi) + " degrees");
    if (!(plane.rowSpacing > 0) || !(plane.columnSpacing > 0))
        throw Error(ErrorKind::Usage, "the pixel size must be above 0 mm");
    if (plane.rows < 1 || plane.columns < 1 || plane.rows > kLongestSide || plane.columns > kLongestSide)
        throw Error(ErrorKind::Usage, "a picture has from 1 to 32768 pixels along either side");
    Store(unitRow, plane.rowDirection);
    Store(Unit(unitColumn - product * unitRow), plane.columnDirection);
}

Extent SampledExtent(const Grid& grid, Vec3 point, Vec3 direction)
{
    Extent extent = {INFINITY, -INFINITY};
    if (std::min({grid.sizeX, grid.sizeY, grid.sizeZ}) < 4)
        return extent;
    for (int corner = 0; corner < 8; ++corner)
    {
        const auto end = [&](int side, int size) { return corner & side ? size - 1 - kUnsampled : kUnsampled; };
        const Vec3 index = {end(1, grid.sizeX), end(2, grid.sizeY), end(4, grid.sizeZ)};
        const double distance = Dot(IndexToPatient(grid, index) - point, direction);
        extent.low = std::min(extent.low, distance);
        extent.high = std::max(extent.high, distance);
    }
    return extent;
}

std::vector<uint8_t> SampleLabels(const std::vector<uint8_t>& labels, const Grid& grid, const PnImageParam& plane)
{
    std::vector<uint8_t> sampled(size_t(plane.rows) * plane.columns);
    size_t pixel = 0;
    for (uint32_t row = 0; row < plane.rows; ++row)
        for (uint32_t column = 0; column < plane.columns; ++column, ++pixel)
        {
            const Vec3 index = PatientToIndex(grid, PixelToPatient(plane, row, column));
            const double i = std::floor(index.x + 0.5), j = std::floor(index.y + 0.5), k = std::floor(index.z + 0.5);
            if (i >= 0 && j >= 0 && k >= 0 && i < grid.sizeX && j < grid.sizeY && k < grid.sizeZ)
                sampled[pixel] = labels[(size_t(k) * size_t(grid.sizeY) + size_t(j)) * size_t(grid.sizeX) + size_t(i)];
        }
    return sampled;
}
} // namespace corvane::host
