#include "view_path.h"

#include <algorithm>
#include <sstream>

#include "error.h"
#include "phantom_shapes.h"
#include "read_text.h"
#include "text_file.h"

namespace corvane::host
{
namespace
{
constexpr double kFine = 0.25;     // mm between the points by which a path is measured
constexpr double kLongest = 1e5;   // mm; a longer path is no path in a patient, and would take memory without end
constexpr double kShortest = 0.01; // mm; points that are nearer to each other count as one

// A chain of points and how far along it each lies.
struct MeasuredPath
{
    std::vector<Vec3> points;
    std::vector<double> distances;

    Vec3 At(double distance) const
    {
        const auto after = std::upper_bound(distances.begin(), distances.end(), distance);
        if (after == distances.begin())
            return points.front();
        if (after == distances.end())
            return points.back();
        const size_t n = size_t(after - distances.begin());
        const double share = (distance - distances[n - 1]) / (distances[n] - distances[n - 1]);
        return points[n - 1] + share * (points[n] - points[n - 1]);
    }
};

MeasuredPath Measured(const std::vector<Vec3>& points)
{
    std::vector<TubePoint> corners;
    for (const Vec3& point : points)
        if (corners.empty() || Length(point - corners.back().position) > kShortest)
            corners.push_back({point, 0});
    if (corners.size() < 2)
        throw Error(ErrorKind::Usage, "a path needs two different points at least");
    double length = 0;
    for (size_t n = 1; n < corners.size(); ++n)
        length += Length(corners[n].position - corners[n - 1].position);
    if (!(length <= kLongest))
        throw Error(ErrorKind::Usage, "a path of " + Number(length) + " mm is longer than the " + Number(kLongest) +
                                          " mm that are allowed; its points are in mm");
    MeasuredPath path;
    for (const TubePoint& point : SmoothCurve(corners, kFine))
    {
        const double step = path.points.empty() ? 0 : Length(point.position - path.points.back());
        if (!path.points.empty() && !(step > 0))
            continue;
        path.distances.push_back(path.points.empty() ? 0 : path.distances.back() + step);
        path.points.push_back(point.position);
    }
    return path;
}
} // namespace

InsideView InsideViewOf(Vec3 eye, Vec3 direction, Vec3 up)
{
    if (!(Length(direction) > 1e-9))
        throw Error(ErrorKind::Usage, "the direction of sight has no length");
    direction = Unit(direction);
    for (Vec3 hint : {up, Vec3{0, 0, 1}, Vec3{0, -1, 0}})
    {
        if (!(Length(hint) > 1e-9))
            continue;
        hint = Unit(hint);
        const Vec3 across = hint - Dot(hint, direction) * direction;
        if (Length(across) > 0.05)
            return {eye, direction, Unit(across)};
    }
    return {eye, direction, {1, 0, 0}}; // not reached: a direction cannot lie along both z and y
}

std::vector<InsideView> FlyThrough(const std::vector<Vec3>& points, int count, Vec3 up)
{
    if (count < 2)
        throw Error(ErrorKind::Usage, "a path takes two views at least");
    const MeasuredPath path = Measured(points);
    const double length = path.distances.back();
    // Looking a little ahead smooths bends; at the end the sight stays as it was.
    const double ahead = std::min(10.0, 0.1 * length);
    std::vector<InsideView> views;
    for (int n = 0; n < count; ++n)
    {
        const double distance = length * n / (count - 1);
        const Vec3 direction =
            path.At(std::min(distance + ahead, length)) - path.At(std::min(distance, length - ahead));
        views.push_back(InsideViewOf(path.At(distance), direction, views.empty() ? up : views.back().up));
    }
    return views;
}

std::vector<Vec3> ReadPoints(const std::string& path)
{
    std::istringstream file(TextOfFile(path, "a file with a point per line, X Y Z in mm"));
    std::vector<Vec3> points;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number)
    {
        std::string text = Trimmed(line.substr(0, line.find('#')));
        std::replace(text.begin(), text.end(), ',', ' ');
        std::replace(text.begin(), text.end(), '\t', ' ');
        if (text.empty())
            continue;
        const std::optional<std::vector<double>> numbers = ParseNumbers(text, ' ');
        if (!numbers || numbers->size() != 3)
            throw Error(ErrorKind::Input,
                        path + ", line " + std::to_string(number) + ": a point is three numbers, X Y Z in mm");
        points.push_back({(*numbers)[0], (*numbers)[1], (*numbers)[2]});
    }
    return points;
}
} // namespace corvane::host
