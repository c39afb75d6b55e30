#include "view_planes.h"

#include <algorithm>
#include <cmath>

#include "plane.h"

namespace corvane::host
{
namespace
{
constexpr double kEdgeOn = 0.01;    // the sine of the angle below which a plane is seen from its edge
constexpr double kFrameWidth = 1.5; // pixels

// A point that moves evenly with the pixel: where the pixel's ray meets the plane.
struct Course
{
    Vec3 first, alongColumns, alongRows;

    Vec3 At(int row, int column) const { return first + double(column) * alongColumns + double(row) * alongRows; }
};

template <class ToPoint>
Course CourseOf(ToPoint pointOfPixel)
{
    const Vec3 first = pointOfPixel(0, 0);
    return {first, pointOfPixel(0, 1) - first, pointOfPixel(1, 0) - first};
}

struct Sampler
{
    const KsVolumeData& data;

    // The stored value between voxels; nothing outside the outermost voxels' centres.
    std::optional<double> At(Vec3 index) const
    {
        constexpr double kSlack = 1e-4; // rounding on a plane that is the volume's face
        const int sizes[3] = {data.sizeX, data.sizeY, data.sizeZ};
        const double place[3] = {index.x, index.y, index.z};
        int low[3], high[3];
        double share[3];
        for (int axis = 0; axis < 3; ++axis)
        {
            if (!(place[axis] >= -kSlack && place[axis] <= sizes[axis] - 1 + kSlack))
                return std::nullopt;
            low[axis] = std::clamp(int(place[axis]), 0, std::max(0, sizes[axis] - 2));
            high[axis] = std::min(low[axis] + 1, sizes[axis] - 1);
            share[axis] = place[axis] - low[axis];
        }
        double value = 0;
        for (int corner = 0; corner < 8; ++corner)
        {
            const int i = corner & 1 ? high[0] : low[0], j = corner & 2 ? high[1] : low[1];
            const int k = corner & 4 ? high[2] : low[2];
            const double weight = (corner & 1 ? share[0] : 1 - share[0]) * (corner & 2 ? share[1] : 1 - share[1]) *
                                  (corner & 4 ? share[2] : 1 - share[2]);
            value += weight * data.slices[k][size_t(j) * size_t(data.sizeX) + size_t(i)];
        }
        return value;
    }
};

uint32_t PixelOf(Rgb colour)
{
    return 255u | uint32_t(colour.red) << 8 | uint32_t(colour.green) << 16 | uint32_t(colour.blue) << 24;
}

void Store(Vec3 vector, double (&numbers)[3])
{
    numbers[0] = vector.x;
    numbers[1] = vector.y;
    numbers[2] = vector.z;
}

// Where a patient point appears in the picture: x to the right, y downwards, in pixels.
void StorePixel(const PnImageParam& picture, Vec3 patient, int32_t (&pixel)[2])
{
    const Vec3 offset = patient - FirstPixel(picture);
    pixel[0] = int32_t(std::lround(Dot(offset, RowDirection(picture)) / picture.columnSpacing));
    pixel[1] = int32_t(std::lround(Dot(offset, ColumnDirection(picture)) / picture.rowSpacing));
}
} // namespace

std::optional<SeenPlane> SeenPlaneOf(const PnImageParam& section, const PnImageParam& picture, const VolumeView& view,
                                     const Volume& volume, const Window& window, Rgb frame)
{
    const Vec3 row = RowDirection(section), column = ColumnDirection(section), normal = Cross(row, column);
    const Vec3 sight = Cross(RowDirection(picture), ColumnDirection(picture));
    const double along = Dot(normal, sight);
    if (std::fabs(along) < kEdgeOn)
        return std::nullopt;

    SeenPlane seen;
    seen.pixels.resize(size_t(picture.rows) * picture.columns);
    const double lastRow = section.rows - 1.0, lastColumn = section.columns - 1.0;
    const double places[4][2] = {{0, 0}, {0, lastColumn}, {lastRow, lastColumn}, {lastRow, 0}};
    for (int corner = 0; corner < 4; ++corner)
        StorePixel(picture, PixelToPatient(section, places[corner][0], places[corner][1]), seen.record.corners[corner]);
    Store(row, seen.record.rowDirection);
    Store(column, seen.record.columnDirection);
    Store(FirstPixel(section), seen.record.position);

    const auto onPlane = [&](int r, int c)
    {
        const Vec3 start = PixelToPatient(picture, r, c);
        return start + (Dot(normal, FirstPixel(section) - start) / along) * sight;
    };
    const Course patient = CourseOf(onPlane);
    const Course index = CourseOf([&](int r, int c) { return PatientToIndex(view.PaddedGrid(), onPlane(r, c)); });
    const Sampler sampler = {view.Data()};
    const double width = lastColumn * section.columnSpacing, height = lastRow * section.rowSpacing;
    // mm on the plane that make the frame equally wide in the picture, however the plane is foreshortened.
    const auto seenLength = [&](Vec3 direction) { return Length(direction - Dot(direction, sight) * sight); };
    const double frameMm = kFrameWidth * picture.columnSpacing / std::fabs(along);
    const double borderX = frameMm * seenLength(column), borderY = frameMm * seenLength(row);
    for (int r = 0; r < int(picture.rows); ++r)
        for (int c = 0; c < int(picture.columns); ++c)
        {
            const Vec3 offset = patient.At(r, c) - FirstPixel(section);
            const double x = Dot(offset, row), y = Dot(offset, column);
            // The outline's corners are whole pixels: it may reach half a pixel beyond the rectangle.
            if (x < -borderX || y < -borderY || x > width + borderX || y > height + borderY)
                continue;
            uint32_t& pixel = seen.pixels[size_t(r) * picture.columns + size_t(c)];
            if (x < borderX || y < borderY || x > width - borderX || y > height - borderY)
            {
                pixel = PixelOf(frame);
                continue;
            }
            const std::optional<double> value = sampler.At(index.At(r, c));
            const uint8_t grey =
                value ? GreyOf(window, volume.valueSlope * *value + volume.valueIntercept) : uint8_t(0);
            pixel = PixelOf({grey, grey, grey});
        }
    seen.record.pixels = seen.pixels.data();
    return seen;
}
} // namespace corvane::host
