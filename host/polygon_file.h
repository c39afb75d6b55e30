#ifndef CORVANE_HOST_POLYGON_FILE_H
#define CORVANE_HOST_POLYGON_FILE_H

#include "polygon.h"

namespace corvane::host
{
// Reads polygons from a file, in one of two forms:
//   text  a corner on each line, its two or three numbers apart by blanks or commas; an empty line starts the next
//         polygon; # starts a comment
//   JSON  {"polygons": [[[COLUMN, ROW], ...], ...]}, or the list alone, or one polygon alone; three numbers for points
//         of the patient
// Throws Error (Input) with the place in the file for anything else.
std::vector<GivenPolygon> ReadPolygons(const std::string& path);
} // namespace corvane::host

#endif
