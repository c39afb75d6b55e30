#include "polygon.h"

#include <algorithm>

#include "corvane/VolumeUtil.h"
#include "error.h"
#include "numbers.h"
#include "read_text.h"

namespace corvane::host
{
namespace
{
constexpr double kFarthest = 1e6; // pixels or mm

// Where an edge crosses the centres of a row of pixels.
struct Crossing
{
    double column;
    int turn; // +1 where the line goes down, -1 where it goes up
};

std::vector<Crossing> CrossingsOf(const Polygon& polygon, double row)
{
    std::vector<Crossing> crossings;
    for (size_t n = 0; n < polygon.size(); ++n)
    {
        const PixelPoint& from = polygon[n];
        const PixelPoint& to = polygon[(n + 1) % polygon.size()];
        if ((from.row <= row) == (to.row <= row))
            continue;
        // From the upper end, whichever way the line runs: neighbours that share an edge must agree on every pixel.
        const bool down = from.row <= row;
        const PixelPoint &upper = down ? from : to, &lower = down ? to : from;
        const double share = (row - upper.row) / (lower.row - upper.row);
        crossings.push_back({upper.column + share * (lower.column - upper.column), down ? 1 : -1});
    }
    std::sort(crossings.begin(), crossings.end(),
              [](const Crossing& a, const Crossing& b) { return a.column < b.column; });
    return crossings;
}

// The first pixel whose centre is not left of a place, limited to the row.
uint32_t FirstFrom(double column, uint32_t columns)
{
    return uint32_t(std::clamp(std::ceil(column), 0.0, double(columns)));
}
} // namespace

void CheckPolygon(const GivenPolygon& polygon)
{
    const size_t count = polygon.corners.empty() ? 0 : polygon.corners.front().size();
    for (const std::vector<double>& corner : polygon.corners)
    {
        if (corner.size() != count || (count != 2 && count != 3))
            throw Error(ErrorKind::Usage, "every corner of a polygon has two numbers (column and row in the picture), "
                                          "or every one three (a point of the patient in mm)");
        for (const double number : corner)
            if (!(std::fabs(number) <= kFarthest))
                throw Error(ErrorKind::Usage, "the corner at " + Number(number) +
                                                  " lies too far away; corners lie within a million pixels or mm");
    }
    if (polygon.corners.size() < 3)
        throw Error(ErrorKind::Usage,
                    "a polygon has three corners at least, not " + std::to_string(polygon.corners.size()));
}

GivenPolygon ParsePolygon(const std::string& text)
{
    GivenPolygon polygon;
    for (const std::string& corner : Split(text, ':'))
    {
        const auto numbers = ParseNumbers(corner, ',');
        if (!numbers)
            throw Error(ErrorKind::Usage, "a polygon is COLUMN,ROW:COLUMN,ROW:COLUMN,ROW or X,Y,Z:X,Y,Z:X,Y,Z with "
                                          "three corners or more, not '" +
                                              text + "'");
        polygon.corners.push_back(*numbers);
    }
    CheckPolygon(polygon);
    return polygon;
}

Polygon InPicture(const GivenPolygon& polygon, const PnImageParam& picture, bool ras)
{
    Polygon placed;
    for (const std::vector<double>& corner : polygon.corners)
    {
        if (corner.size() == 2)
        {
            placed.push_back({corner[0], corner[1]});
            continue;
        }
        const double sign = ras ? -1 : 1;
        const double point[3] = {sign * corner[0], sign * corner[1], corner[2]};
        double pixel[2];
        VolumeUtil::PatientToImageCoords(picture, point, pixel);
        placed.push_back({pixel[0], pixel[1]});
    }
    return placed;
}

std::vector<uint8_t> DrawPolygons(const std::vector<Polygon>& polygons, uint32_t rows, uint32_t columns)
{
    std::vector<uint8_t> drawn(size_t(rows) * columns);
    for (const Polygon& polygon : polygons)
        for (uint32_t row = 0; row < rows; ++row)
        {
            const std::vector<Crossing> crossings = CrossingsOf(polygon, row);
            uint8_t* const pixels = drawn.data() + size_t(row) * columns;
            int winding = 0;
            for (size_t n = 0; n + 1 < crossings.size(); ++n)
            {
                winding += crossings[n].turn;
                const uint32_t first = FirstFrom(crossings[n].column, columns);
                const uint32_t end = FirstFrom(crossings[n + 1].column, columns);
                if (winding != 0 && first < end)
                    std::fill(pixels + first, pixels + end, uint8_t(1));
            }
        }
    return drawn;
}
} // namespace corvane::host
