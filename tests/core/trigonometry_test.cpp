#include "core/trigonometry.h"

#include "random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace corvane::core
{
namespace
{
constexpr double kPi = 3.14159265358979323846;
constexpr double kAccuracy = 2e-16;

// The long double of some compilers is no longer than a double; there the reference itself is off by half a unit.
constexpr double kReferenceError = std::numeric_limits<long double>::digits > 60 ? 0 : 1.2e-16;

void ExpectClose(double angle, double tolerance = kAccuracy)
{
    const SineCosine result = SineCosineOf(angle);
    ASSERT_LE(std::abs(double(result.sine - std::sin((long double)angle))), tolerance + kReferenceError)
        << std::hexfloat << angle;
    ASSERT_LE(std::abs(double(result.cosine - std::cos((long double)angle))), tolerance + kReferenceError)
        << std::hexfloat << angle;
}
} // namespace

TEST(SineCosine, IsExactAtZero)
{
    EXPECT_EQ(SineCosineOf(0.0).sine, 0.0);
    EXPECT_EQ(SineCosineOf(0.0).cosine, 1.0);
    EXPECT_EQ(SineCosineOf(-0.0).sine, 0.0);
    EXPECT_EQ(SineCosineOf(-0.0).cosine, 1.0);
}

TEST(SineCosine, IsTheAngleItselfForASmallOne)
{
    for (const double angle : {1e-300, 1e-20, 1e-9})
    {
        EXPECT_EQ(SineCosineOf(angle).sine, angle); // the cube is far below the last place
        EXPECT_EQ(SineCosineOf(angle).cosine, 1.0);
    }
}

TEST(SineCosine, KnowsTheQuadrants)
{
    // The double nearest to a multiple of pi / 2 misses it by up to some 1e-16, which the small one of both shows.
    struct Expected
    {
        double angle, sine, cosine;
    };
    for (const Expected& e :
         {Expected{kPi / 2, 1.0, 6.123233995736766e-17}, Expected{kPi, 1.2246467991473532e-16, -1.0},
          Expected{3 * kPi / 2, -1.0, -1.8369701987210297e-16}, Expected{2 * kPi, -2.4492935982947064e-16, 1.0},
          Expected{-kPi / 2, -1.0, 6.123233995736766e-17}})
    {
        const SineCosine result = SineCosineOf(e.angle);
        EXPECT_NEAR(result.sine, e.sine, 1e-30) << e.angle;
        EXPECT_NEAR(result.cosine, e.cosine, 1e-30) << e.angle;
    }
}

TEST(SineCosine, KnowsTheAnglesOfASquareAndATriangle)
{
    EXPECT_NEAR(SineCosineOf(kPi / 4).sine, std::sqrt(0.5), kAccuracy);
    EXPECT_NEAR(SineCosineOf(kPi / 4).cosine, std::sqrt(0.5), kAccuracy);
    EXPECT_NEAR(SineCosineOf(kPi / 6).sine, 0.5, kAccuracy);
    EXPECT_NEAR(SineCosineOf(kPi / 3).cosine, 0.5, kAccuracy);
    // In these two the angle itself is rounded, by up to 3e-16 and 7e-16, of which half reaches the result.
    EXPECT_NEAR(SineCosineOf(2 * kPi / 3).sine, std::sqrt(0.75), kAccuracy + 1.5e-16);
    EXPECT_NEAR(SineCosineOf(7 * kPi / 6).cosine, -std::sqrt(0.75), kAccuracy + 3.5e-16);
}

TEST(SineCosine, IsCloseToTheTrueValuesOnEveryDegreeOfThousandsOfTurns)
{
    for (int degree = -360 * 3; degree <= 360 * 3; ++degree)
        ExpectClose(degree * (kPi / 180));
    for (int turn = -5000; turn <= 5000; turn += 7)
        for (int eighth = 0; eighth < 8; ++eighth)
            ExpectClose((turn + eighth / 8.0) * (2 * kPi));
}

TEST(SineCosine, IsCloseToTheTrueValuesForAnglesOfEverySize)
{
    tests::Random random(1);
    for (int n = 0; n < 200000; ++n)
        ExpectClose(random.Real(-8, 8));
    for (int n = 0; n < 200000; ++n)
        ExpectClose(random.Real(-30000, 30000));
    for (int n = 0; n < 100000; ++n)
        ExpectClose(float(random.Real(-30000, 30000))); // as hosts give them
    for (int n = 0; n < 100000; ++n)
        ExpectClose(std::ldexp(random.Real(-1, 1), random.Between(-300, 3)));
}

TEST(SineCosine, StaysCloseForAsManyTurnsAsAFloatCanTellApart)
{
    // A single-precision angle beyond 2^20 knows itself to a sixteenth at best; 1e-16 of it is no loss.
    tests::Random random(2);
    for (int n = 0; n < 100000; ++n)
    {
        const double angle = std::ldexp(random.Real(1, 2), random.Between(10, 24));
        ExpectClose(angle, kAccuracy + 1e-16 * angle);
        ExpectClose(-angle, kAccuracy + 1e-16 * angle);
    }
}

TEST(SineCosine, IsOddAndEvenToTheLastBit)
{
    tests::Random random(3);
    for (int n = 0; n < 100000; ++n)
    {
        const double angle = std::ldexp(random.Real(0, 1), random.Between(-40, 60));
        const SineCosine left = SineCosineOf(-angle), right = SineCosineOf(angle);
        ASSERT_EQ(left.sine, -right.sine) << angle;
        ASSERT_EQ(left.cosine, right.cosine) << angle;
    }
}

TEST(SineCosine, LiesOnTheUnitCircleHoweverLargeTheAngle)
{
    tests::Random random(4);
    for (int n = 0; n < 200000; ++n)
    {
        const double angle = std::ldexp(random.Real(-1, 1), random.Between(-1070, 1024));
        const SineCosine result = SineCosineOf(angle);
        ASSERT_LE(std::abs(result.sine), 1.0) << angle;
        ASSERT_LE(std::abs(result.cosine), 1.0) << angle;
        ASSERT_NEAR(result.sine * result.sine + result.cosine * result.cosine, 1.0, 1e-15) << angle;
    }
    const double largest = std::numeric_limits<double>::max();
    const SineCosine result = SineCosineOf(largest);
    EXPECT_NEAR(result.sine * result.sine + result.cosine * result.cosine, 1.0, 1e-15);
}

TEST(SineCosine, IsNotANumberForAnAngleThatIsNotFinite)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double angle : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN()})
    {
        EXPECT_FALSE(std::isfinite(SineCosineOf(angle).sine)) << angle;
        EXPECT_FALSE(std::isfinite(SineCosineOf(angle).cosine)) << angle;
    }
}
} // namespace corvane::core
