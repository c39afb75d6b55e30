#ifndef CORVANE_HOST_POLYGON_H
#define CORVANE_HOST_POLYGON_H

#include "vec3.h"

#include "corvane/Records.h"

#include <string>
#include <vector>

namespace corvane::host
{
// A place in a picture, in pixels; (0, 0) is the centre of the first one.
struct PixelPoint
{
    double column = 0, row = 0;
};

// The corners of a closed line in a picture, in the order in which it was drawn.
using Polygon = std::vector<PixelPoint>;

// A polygon as somebody gives it: either by places in the picture, with two numbers for each corner, or by points of
// the patient, with three (mm, LPS), that are looked at from where the picture is taken.
struct GivenPolygon
{
    std::vector<std::vector<double>> corners; // two or three numbers each, the same for all
};

// Throws Error (Usage) unless all corners have two or all have three numbers, all within a million, and there are at
// least three of them.
void CheckPolygon(const GivenPolygon& polygon);

// Reads "COLUMN,ROW:COLUMN,ROW:..." or "X,Y,Z:X,Y,Z:...". Throws Error (Usage) for anything else.
GivenPolygon ParsePolygon(const std::string& text);

// Where the corners lie in a picture. `ras` says that points of the patient are given as RAS.
Polygon InPicture(const GivenPolygon& polygon, const PnImageParam& picture, bool ras);

// A picture of what polygons cover, row by row: 1 where the pixel's centre lies inside of at least one, else 0. Inside
// is what a line goes round, however often it crosses itself (non-zero winding). Of centres on an edge, those on the
// left and upper edges are inside: polygons side by side share no pixel and leave none out.
std::vector<uint8_t> DrawPolygons(const std::vector<Polygon>& polygons, uint32_t rows, uint32_t columns);
} // namespace corvane::host

#endif
