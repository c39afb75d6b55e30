#ifndef CORVANE_HOST_PHANTOM_SHAPES_H
#define CORVANE_HOST_PHANTOM_SHAPES_H

#include "vec3.h"

#include <vector>

namespace corvane::host
{
// The solids that the phantom is made of. Distances are mm, negative inside, exact at the surface and good within a
// few mm of it. Only + - * / and square roots: every machine computes the same bits.

struct Ellipsoid
{
    Vec3 centre;
    Vec3 radii;
};

// A piece of tube with round ends and a radius that changes evenly along it.
struct Capsule
{
    Vec3 from, to;
    double fromRadius, toRadius;
};

// An upright elliptical cylinder.
struct Cylinder
{
    Vec3 centre;
    double radiusX, radiusY, halfHeight;
};

struct Box
{
    Vec3 low, high;
};

double Distance(const Ellipsoid& ellipsoid, Vec3 point);
double Distance(const Capsule& capsule, Vec3 point);
double Distance(const Cylinder& cylinder, Vec3 point);

Box BoundsOf(const Ellipsoid& ellipsoid);
Box BoundsOf(const Capsule& capsule);
Box BoundsOf(const Cylinder& cylinder);

// A point that a tube runs through, and the tube's radius there.
struct TubePoint
{
    Vec3 position;
    double radius;
};

// A smooth curve through the points, as a chain of points about `step` mm apart (Catmull-Rom splines).
std::vector<TubePoint> SmoothCurve(const std::vector<TubePoint>& points, double step);

// The tube along a chain of points; `grow` mm are added to its radius.
std::vector<Capsule> TubeAlong(const std::vector<TubePoint>& chain, double grow = 0);

// A branching tree: a stem that splits in two, `generations` times, each branch shorter and thinner than its parent.
std::vector<Capsule> BranchingTree(Vec3 root, Vec3 direction, Vec3 sideways, double length, double radius,
                                   int generations);
} // namespace corvane::host

#endif
