#include "phantom_shapes.h"

#include <algorithm>

namespace corvane::host
{
namespace
{
// One coordinate of a Catmull-Rom spline between b (t = 0) and c (t = 1).
double Spline(double a, double b, double c, double d, double t)
{
    return b + 0.5 * t * ((c - a) + t * ((2 * a - 5 * b + 4 * c - d) + t * (3 * (b - c) + d - a)));
}

Box Around(Vec3 centre, Vec3 halfSize) { return {centre - halfSize, centre + halfSize}; }
} // namespace

double Distance(const Ellipsoid& ellipsoid, Vec3 point)
{
    // First order: the implicit function |p / r| - 1 divided by the length of its gradient.
    const Vec3 p = point - ellipsoid.centre, r = ellipsoid.radii;
    const Vec3 q = {p.x / r.x, p.y / r.y, p.z / r.z};
    const double length = Length(q);
    const double gradient = Length({q.x / r.x, q.y / r.y, q.z / r.z});
    return gradient > 0 ? length * (length - 1) / gradient : -std::min({r.x, r.y, r.z});
}

double Distance(const Capsule& capsule, Vec3 point)
{
    const Vec3 axis = capsule.to - capsule.from, p = point - capsule.from;
    const double squared = Dot(axis, axis);
    const double t = squared > 0 ? std::clamp(Dot(p, axis) / squared, 0.0, 1.0) : 0.0;
    return Length(p - t * axis) - (capsule.fromRadius + t * (capsule.toRadius - capsule.fromRadius));
}

double Distance(const Cylinder& cylinder, Vec3 point)
{
    const Vec3 p = point - cylinder.centre;
    const double radiusZ = std::max(cylinder.radiusX, cylinder.radiusY); // has no part in the distance
    const double side = Distance(Ellipsoid{{}, {cylinder.radiusX, cylinder.radiusY, radiusZ}}, {p.x, p.y, 0});
    return std::max(side, std::max(p.z, -p.z) - cylinder.halfHeight);
}

Box BoundsOf(const Ellipsoid& ellipsoid) { return Around(ellipsoid.centre, ellipsoid.radii); }

Box BoundsOf(const Capsule& capsule)
{
    const double radius = std::max(capsule.fromRadius, capsule.toRadius);
    const Vec3 a = capsule.from, b = capsule.to, margin = {radius, radius, radius};
    const Vec3 low = {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)};
    const Vec3 high = {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)};
    return {low - margin, high + margin};
}

Box BoundsOf(const Cylinder& cylinder)
{
    return Around(cylinder.centre, {cylinder.radiusX, cylinder.radiusY, cylinder.halfHeight});
}

std::vector<TubePoint> SmoothCurve(const std::vector<TubePoint>& points, double step)
{
    std::vector<TubePoint> chain = {points.front()};
    for (size_t n = 0; n + 1 < points.size(); ++n)
    {
        const TubePoint &a = points[n == 0 ? 0 : n - 1], &b = points[n], &c = points[n + 1],
                        &d = points[std::min(n + 2, points.size() - 1)];
        const int pieces = std::max(1, int(Length(c.position - b.position) / step));
        for (int piece = 1; piece <= pieces; ++piece)
        {
            const double t = double(piece) / pieces;
            const Vec3 position = {Spline(a.position.x, b.position.x, c.position.x, d.position.x, t),
                                   Spline(a.position.y, b.position.y, c.position.y, d.position.y, t),
                                   Spline(a.position.z, b.position.z, c.position.z, d.position.z, t)};
            chain.push_back({position, b.radius + t * (c.radius - b.radius)});
        }
    }
    return chain;
}

std::vector<Capsule> TubeAlong(const std::vector<TubePoint>& chain, double grow)
{
    std::vector<Capsule> tube;
    for (size_t n = 0; n + 1 < chain.size(); ++n)
        tube.push_back({chain[n].position, chain[n + 1].position, chain[n].radius + grow, chain[n + 1].radius + grow});
    return tube;
}

std::vector<Capsule> BranchingTree(Vec3 root, Vec3 direction, Vec3 sideways, double length, double radius,
                                   int generations)
{
    const Vec3 tip = root + length * direction;
    std::vector<Capsule> tree = {{root, tip, radius, 0.8 * radius}};
    if (generations == 0)
        return tree;
    // The two branches leave to either side, unequally; the next split stands across this one.
    for (double turn : {0.55, -0.8})
    {
        const std::vector<Capsule> branch =
            BranchingTree(tip, Unit(direction + turn * sideways), Unit(Cross(direction, sideways)), 0.8 * length,
                          0.75 * radius, generations - 1);
        tree.insert(tree.end(), branch.begin(), branch.end());
    }
    return tree;
}
} // namespace corvane::host
