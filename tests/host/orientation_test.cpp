#include "host/orientation.h"

#include <gtest/gtest.h>
#include <numbers>

namespace corvane::host
{
namespace
{
TEST(DirectionLetters, NameTheSixDirectionsOfPatientSpace)
{
    EXPECT_EQ(DirectionLetters({1, 0, 0}), "L");
    EXPECT_EQ(DirectionLetters({-1, 0, 0}), "R");
    EXPECT_EQ(DirectionLetters({0, 1, 0}), "P");
    EXPECT_EQ(DirectionLetters({0, -1, 0}), "A");
    EXPECT_EQ(DirectionLetters({0, 0, 1}), "S");
    EXPECT_EQ(DirectionLetters({0, 0, -1}), "I");
}

TEST(DirectionLetters, PutTheStrongestFirst)
{
    EXPECT_EQ(DirectionLetters({0.6, 0.8, 0}), "PL");
    EXPECT_EQ(DirectionLetters({0.8, 0.6, 0}), "LP");
    EXPECT_EQ(DirectionLetters({-0.5, -0.6, 0.62}), "SAR");
    EXPECT_EQ(DirectionLetters({1, 1, 0}), "LP"); // equal shares: x, y, z
    EXPECT_EQ(DirectionLetters({3, 0, -3}), "LI");
}

TEST(DirectionLetters, LeaveOutWhatTurnsByLessThanFifteenDegrees)
{
    const auto turned = [](double degrees)
    {
        const double angle = degrees * std::numbers::pi / 180;
        return DirectionLetters({std::cos(angle), std::sin(angle), 0});
    };
    EXPECT_EQ(turned(14.9), "L");
    EXPECT_EQ(turned(15.1), "LP");
    EXPECT_EQ(turned(-15.1), "LA");
    EXPECT_EQ(turned(74.9), "PL");
    EXPECT_EQ(turned(75.1), "P");
}

TEST(DirectionLetters, OfNoDirectionAreNone)
{
    EXPECT_EQ(DirectionLetters({0, 0, 0}), "");
    EXPECT_EQ(DirectionLetters({NAN, 0, 0}), "");
}
} // namespace
} // namespace corvane::host
