#include "trigonometry.h"

#include <cmath>

namespace corvane::core
{
namespace
{
// pi / 2 in three pieces: the first two have 33 significant bits each, so a quadrant count up to 2^20 times one of
// them is exact.
constexpr double kHalfPiHigh = 0x1.921fb544p+0;
constexpr double kHalfPiMiddle = 0x1.0b4611a6p-34;
constexpr double kHalfPiLow = 0x1.3198a2e037073p-69;
constexpr double kTwoOverPi = 0x1.45f306dc9c883p-1;
constexpr double kTwoPi = 0x1.921fb54442d18p+2;
constexpr double kExactQuadrants = 1048576.0;

// Taylor series about 0; on [-pi/4, pi/4] the first term left out is below 1e-19.
double SineNearZero(double x)
{
    const double s = x * x;
    double sum = 0.0;
    for (int n = 17; n >= 3; n -= 2)
        sum = -s / double(n * (n - 1)) * (1.0 + sum);
    return x + x * sum;
}

double CosineNearZero(double x)
{
    const double s = x * x;
    double sum = 0.0;
    for (int n = 18; n >= 4; n -= 2)
        sum = -s / double(n * (n - 1)) * (1.0 + sum);
    return 1.0 - 0.5 * s * (1.0 + sum);
}
} // namespace

SineCosine SineCosineOf(double angle)
{
    // Far out a single-precision angle does not know its turn any more; the remainder is exact in any case.
    if (std::abs(angle) > kExactQuadrants)
        angle = std::remainder(angle, kTwoPi);
    const double quadrants = std::nearbyint(angle * kTwoOverPi);
    const double rest = ((angle - quadrants * kHalfPiHigh) - quadrants * kHalfPiMiddle) - quadrants * kHalfPiLow;
    const double sine = SineNearZero(rest);
    const double cosine = CosineNearZero(rest);
    switch (int(std::isfinite(quadrants) ? quadrants : 0.0) & 3)
    {
    case 0:
        return {sine, cosine};
    case 1:
        return {cosine, -sine};
    case 2:
        return {-sine, -cosine};
    default:
        return {-cosine, sine};
    }
}
} // namespace corvane::core
