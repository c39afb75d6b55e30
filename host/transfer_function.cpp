#include "transfer_function.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "error.h"
#include "read_text.h"

namespace corvane::host
{
namespace
{
constexpr double kStep = 0.33;            // samples lie this far apart, in smallest spacings
constexpr double kFaintestVisible = 0.01; // the renderer leaves out samples of this opacity and below
constexpr double kLowest = -32768, kHighest = 32767;
constexpr int kPieces = 64; // straight pieces that stand for one bend of the opacity

// The first point above a value, and the one before it with the share of the way between the two. At a step the
// later point counts.
template <class Point>
struct Neighbours
{
    const Point &before, &after;
    double share;
};

template <class Point>
Neighbours<Point> NeighboursOf(const std::vector<Point>& points, double value)
{
    const auto after = std::upper_bound(points.begin(), points.end(), value,
                                        [](double wanted, const Point& point) { return wanted < point.value; });
    if (after == points.begin())
        return {points.front(), points.front(), 0};
    if (after == points.end())
        return {points.back(), points.back(), 0};
    const Point& before = *(after - 1);
    return {before, *after, (value - before.value) / (after->value - before.value)};
}

double Between(double a, double b, double share) { return a + (b - a) * share; }

double OpacityAt(const TransferFunction& function, double value)
{
    const auto [before, after, share] = NeighboursOf(function.opacities, value);
    return Between(before.opacity, after.opacity, share);
}

uint32_t ColourAt(const TransferFunction& function, double value)
{
    const auto [before, after, share] = NeighboursOf(function.colours, value);
    const auto byte = [](double channel) { return uint32_t(std::clamp(channel, 0.0, 1.0) * 255 + 0.5); };
    return byte(Between(before.red, after.red, share)) << 16 | byte(Between(before.green, after.green, share)) << 8 |
           byte(Between(before.blue, after.blue, share));
}

// The same function over stored values. Beyond every stored value it does not matter how far away a point is, but it
// must be finite.
TransferFunction OverStoredValues(TransferFunction function, double slope, double intercept)
{
    constexpr double kFarthest = 1e15;
    const auto stored = [&](double value) { return std::clamp((value - intercept) / slope, -kFarthest, kFarthest); };
    for (TransferFunction::OpacityPoint& point : function.opacities)
        point.value = stored(point.value);
    for (TransferFunction::ColourPoint& point : function.colours)
        point.value = stored(point.value);
    if (slope < 0)
    {
        std::reverse(function.opacities.begin(), function.opacities.end());
        std::reverse(function.colours.begin(), function.colours.end());
    }
    return function;
}

// Stored values between which both curves are straight.
std::set<int> Knots(const TransferFunction& stored, int first, int last)
{
    std::set<int> knots = {first, last};
    const auto add = [&](double value)
    {
        if (value >= first && value <= last)
            knots.insert(int(value));
    };
    const auto addAround = [&](double value)
    {
        if (!(value > first - 2.0 && value < last + 2.0))
            return;
        for (int whole = int(std::ceil(value)) - 1; whole <= int(std::floor(value)) + 1; ++whole)
            add(whole);
    };
    for (const TransferFunction::ColourPoint& point : stored.colours)
        addAround(point.value);
    for (size_t n = 0; n < stored.opacities.size(); ++n)
    {
        const TransferFunction::OpacityPoint& point = stored.opacities[n];
        addAround(point.value);
        if (n == 0 || !(stored.opacityDistance > 0) || point.opacity == stored.opacities[n - 1].opacity)
            continue;
        for (int piece = 1; piece < kPieces; ++piece)
            add(std::round(Between(stored.opacities[n - 1].value, point.value, double(piece) / kPieces)));
    }
    return knots;
}
} // namespace

double OpacityOfSample(double opacity, double distance, double spacing)
{
    return 1 - std::pow(1 - opacity, kStep * spacing / distance);
}

Palette PaletteOf(const TransferFunction& function, double valueSlope, double valueIntercept, double smallestSpacing)
{
    const TransferFunction stored = OverStoredValues(function, valueSlope, valueIntercept);
    const auto sampleOpacity = [&](double opacity) {
        return stored.opacityDistance > 0 ? OpacityOfSample(opacity, stored.opacityDistance, smallestSpacing) : opacity;
    };
    double low = std::min(stored.opacities.front().value, stored.colours.front().value);
    double high = std::max(stored.opacities.back().value, stored.colours.back().value);
    if (stored.holdEnds && sampleOpacity(stored.opacities.front().opacity) > kFaintestVisible)
        low = kLowest;
    if (stored.holdEnds && sampleOpacity(stored.opacities.back().opacity) > kFaintestVisible)
        high = kHighest;
    low = std::ceil(std::max(low, kLowest));
    high = std::floor(std::min(high, kHighest));
    if (!(low < high))
        throw Error(ErrorKind::Usage, "the transfer function '" + function.name +
                                          "' shows fewer than two of the values that this volume can hold");

    Palette palette = {{}, {float(stored.ambient), float(stored.diffuse), float(stored.specular)}, function.warnings};
    for (int value : Knots(stored, int(low), int(high)))
        palette.points.push_back(
            {int16_t(value), ColourAt(stored, value), float(sampleOpacity(OpacityAt(stored, value)))});

    const auto faint = std::count_if(stored.opacities.begin(), stored.opacities.end(),
                                     [&](const TransferFunction::OpacityPoint& point)
                                     { return point.opacity > 0 && sampleOpacity(point.opacity) <= kFaintestVisible; });
    if (faint > 0)
        palette.warnings.push_back("the transfer function '" + function.name + "' is too faint at " +
                                   std::to_string(faint) + " of its " + std::to_string(stored.opacities.size()) +
                                   " points: samples, " + Number(kStep * smallestSpacing) +
                                   " mm apart here, of opacity 0.01 or less are not drawn");
    return palette;
}
} // namespace corvane::host
