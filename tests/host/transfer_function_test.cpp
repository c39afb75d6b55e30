#include "host/transfer_function.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
TransferFunction Ramp(double low, double high)
{
    TransferFunction function;
    function.name = "ramp";
    function.opacities = {{low, 0}, {high, 1}};
    function.colours = {{low, 0, 0, 0}, {high, 1, 1, 1}};
    return function;
}

const KsPalettePoint* PointAt(const Palette& palette, int value)
{
    for (const KsPalettePoint& point : palette.points)
        if (point.value == value)
            return &point;
    return nullptr;
}

// The opacity that straight lines between the palette's points give.
double OpacityAt(const Palette& palette, double value)
{
    for (size_t n = 1; n < palette.points.size(); ++n)
    {
        const KsPalettePoint &a = palette.points[n - 1], &b = palette.points[n];
        if (value >= a.value && value <= b.value)
            return a.opacity + (b.opacity - a.opacity) * (value - a.value) / (b.value - a.value);
    }
    return 0;
}

TEST(TransferFunction, TurnsOpacityOfADistanceIntoThatOfASample)
{
    EXPECT_NEAR(OpacityOfSample(0.5, 1, 1), 0.20446, 1e-5); // 1 - 0.5^0.33
    EXPECT_DOUBLE_EQ(OpacityOfSample(0.3, 0.33, 1), 0.3);   // a sample every 0.33 mm
    EXPECT_EQ(OpacityOfSample(0, 1, 2), 0);
    EXPECT_EQ(OpacityOfSample(1, 1, 0.5), 1);
    // Samples through the whole distance let through what it lets through.
    EXPECT_NEAR(std::pow(1 - OpacityOfSample(0.8, 2, 0.5), 2 / 0.165), 0.2, 1e-12);
}

TEST(TransferFunction, KeepsOpacitiesOfSamplesAsTheyAre)
{
    const Palette palette = PaletteOf(Ramp(0, 100), 1, 0, 0.1);
    for (int value = 0; value <= 100; ++value)
        EXPECT_NEAR(OpacityAt(palette, value), value / 100.0, 1e-6);
    EXPECT_EQ(PointAt(palette, 0)->colour, 0u);
    EXPECT_EQ(PointAt(palette, 100)->colour, 0xFFFFFFu);
}

TEST(TransferFunction, FollowsTheCurveOfADistanceBetweenItsPoints)
{
    TransferFunction function = Ramp(0, 1600);
    function.opacityDistance = 1;
    const Palette palette = PaletteOf(function, 1, 0, 1);
    for (int value = 0; value < 1500; value += 10)
        EXPECT_NEAR(OpacityAt(palette, value), 1 - std::pow(1 - value / 1600.0, 0.33), 0.004) << value;
}

TEST(TransferFunction, SpeaksOfRealValues)
{
    // Real value 100 is stored value (100 + 1000) / 0.5 = 2200.
    const Palette palette = PaletteOf(Ramp(100, 300), 0.5, -1000, 1);
    EXPECT_EQ(palette.points.front().value, 2200);
    ASSERT_TRUE(PointAt(palette, 2600));
    EXPECT_NEAR(PointAt(palette, 2600)->opacity, 1, 1e-6);
    EXPECT_NEAR(OpacityAt(palette, 2400), 0.5, 1e-6);
}

TEST(TransferFunction, GoesOnBeyondItsEndsOnlyWhereItIsSeenThere)
{
    const Palette held = PaletteOf(Ramp(0, 100), 1, 0, 1);
    EXPECT_EQ(held.points.front().value, 0);    // nothing to see below
    EXPECT_EQ(held.points.back().value, 32767); // opaque above
    EXPECT_EQ(held.points.back().opacity, 1);
    EXPECT_EQ(held.points.back().colour, 0xFFFFFFu);
    TransferFunction falling = Ramp(0, 100);
    falling.opacities = {{0, 0.5}, {100, 0}};
    EXPECT_EQ(PaletteOf(falling, 1, 0, 1).points.front().value, -32768);
    EXPECT_EQ(PaletteOf(falling, 1, 0, 1).points.back().value, 100);
    TransferFunction hidden = Ramp(0, 100);
    hidden.holdEnds = false;
    EXPECT_EQ(PaletteOf(hidden, 1, 0, 1).points.back().value, 100);
}

TEST(TransferFunction, ReachesNoFurtherThanStoredValues)
{
    TransferFunction wide = Ramp(-100000, 100000);
    const Palette palette = PaletteOf(wide, 1, 0, 1);
    EXPECT_EQ(palette.points.front().value, -32768);
    EXPECT_EQ(palette.points.back().value, 32767);
    EXPECT_NEAR(palette.points.front().opacity, 67232 / 200000.0, 1e-6);
    EXPECT_NEAR(PaletteOf(Ramp(-1e300, 1e300), 1, 0, 1).points.front().opacity, 0.5, 1e-6);
    TransferFunction outside = Ramp(40000, 50000);
    outside.holdEnds = false;
    EXPECT_TRUE(
        Contains(ErrorOf([&] { PaletteOf(outside, 1, 0, 1); }, ErrorKind::Usage), "'ramp' shows fewer than two"));
}

TEST(TransferFunction, MakesAStepOfTwoPointsAtTheSameValue)
{
    TransferFunction function;
    function.opacities = {{0, 0.2}, {50, 0.2}, {50, 0.8}, {100, 0.8}};
    function.colours = {{0, 1, 0, 0}, {50, 1, 0, 0}, {50, 0, 0, 1}};
    const Palette palette = PaletteOf(function, 1, 0, 1);
    EXPECT_NEAR(OpacityAt(palette, 49), 0.2, 1e-6);
    EXPECT_NEAR(OpacityAt(palette, 50), 0.8, 1e-6);
    EXPECT_EQ(PointAt(palette, 49)->colour, 0xFF0000u);
    EXPECT_EQ(PointAt(palette, 50)->colour, 0x0000FFu);
}

TEST(TransferFunction, WarnsOfPointsThatAreTooFaintToBeDrawn)
{
    TransferFunction function = Ramp(0, 100);
    function.opacities = {{0, 0}, {50, 0.02}, {100, 0.5}};
    EXPECT_TRUE(PaletteOf(function, 1, 0, 1).warnings.empty());
    function.opacityDistance = 1; // 1 - 0.98^0.33 = 0.0066
    const Palette palette = PaletteOf(function, 1, 0, 1);
    ASSERT_EQ(palette.warnings.size(), 1u);
    EXPECT_TRUE(Contains(palette.warnings[0], "too faint at 1 of its 3 points"));
}

TEST(TransferFunction, StaysFiniteUnderTheSmallestSlope)
{
    TransferFunction function = Ramp(-1e12, 1e12);
    function.opacities.insert(function.opacities.begin() + 1, {0, 0.5});
    const Palette palette = PaletteOf(function, 1e-310, 0, 1);
    ASSERT_GE(palette.points.size(), 2u);
    for (const KsPalettePoint& point : palette.points)
        EXPECT_NEAR(point.opacity, 0.5, 1e-6); // all stored values stand for next to nothing
}
} // namespace
} // namespace corvane::host
