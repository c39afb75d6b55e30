#ifndef CORVANE_HOST_VIEW_PATH_H
#define CORVANE_HOST_VIEW_PATH_H

#include "vec3.h"

#include <string>
#include <vector>

namespace corvane::host
{
// A look from a point inside the patient.
struct InsideView
{
    Vec3 eye;
    Vec3 direction, up; // unit vectors at right angles
};

// Makes unit vectors at right angles: the direction as it is, `up` as near as it can be to the one given; without a
// hint, or for one along the direction, upwards in the patient or, looking along that, to the front.
// Throws Error (Usage) for a direction of no length.
InsideView InsideViewOf(Vec3 eye, Vec3 direction, Vec3 up = {0, 0, 0});

// Views along a smooth path through points, the same distance apart; each looks along the path, and the picture turns
// as little as it can on the way. Throws Error (Usage) unless there are two different points and two views at least.
std::vector<InsideView> FlyThrough(const std::vector<Vec3>& points, int count, Vec3 up = {0, 0, 0});

// Points of a text file: three numbers a line, separated by blanks or commas; # starts a comment.
// Throws Error (Input) with file and line.
std::vector<Vec3> ReadPoints(const std::string& path);
} // namespace corvane::host

#endif
