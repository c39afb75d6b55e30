#include "corvane/Engine3D.h"
#include "engine3d/palette_tables.h"
#include "palette_plain.h"
#include "tests/test_volume.h"

#include <gtest/gtest.h>

#include <algorithm>

// Transfer functions of as many points as a host may care to make, and tables slid as far as numbers go: a table holds
// a stored value once, and the sum of all tables is no longer than 2^24 values.
namespace corvane::tests
{
using engine3d::PaletteTables;

namespace
{
constexpr int kManyPoints = 1 << 21;

// Points from the highest value to the lowest, each value 32 times, the first of which counts.
TestTransfer ManyPoints()
{
    std::vector<KsPalettePoint> points;
    points.reserve(kManyPoints);
    for (int n = 0; n < kManyPoints; ++n)
    {
        const int value = 32767 - n / 32;
        const float opacity = n % 32 == 0 ? float(value & 255) / 256 : 0.7f;
        points.push_back({int16_t(value), uint32_t(value + 32768) * 0x35, opacity});
    }
    return TestTransfer(points);
}
} // namespace

TEST(LargePalettes, OfMillionsOfPointsHoldEachValueOnce)
{
    const TestTransfer many = ManyPoints();
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(many.palette, 5));
    const VolumePaletteEntry& entry = *tables.Records().entries[5];
    ASSERT_EQ(entry.size, 65536);
    EXPECT_EQ(entry.rangeStart, -32768);
    EXPECT_EQ(entry.rangeEnd, 32767);
    for (int value = -32768; value <= 32767; ++value)
    {
        const size_t index = size_t(value + 32768);
        const uint32_t colour = uint32_t(index) * 0x35;
        ASSERT_EQ(entry.opacities[index], float(value & 255) / 256) << value;
        ASSERT_EQ(entry.colours[3 * index], uint8_t(colour >> 16)) << value;
        ASSERT_EQ(entry.colours[3 * index + 1], uint8_t(colour >> 8)) << value;
        ASSERT_EQ(entry.colours[3 * index + 2], uint8_t(colour)) << value;
    }
    EXPECT_EQ(tables.Records().sumLength, 65536);
}

TEST(LargePalettes, ReachAnEngineAndComeBack)
{
    const TestTransfer many = ManyPoints();
    const TestVolume volume = MakeVolume(8, 8, 8, [](int i, int, int) { return i; });
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    ASSERT_TRUE(engine.SetPalette(many.palette));
    KsPalette back;
    ASSERT_TRUE(engine.GetPalette(back));
    EXPECT_EQ(back.pointCount, kManyPoints);
    EXPECT_EQ(back.points[kManyPoints - 1].value, -32768);
    delete[] back.points;
}

// One table stays, as it is hidden, and comes back when the other one is billions of values away.
TEST(LargePalettes, ThatSlideApartHaveNoSumBeyond2To24Values)
{
    const TestTransfer few({{0, 0, 0.5f}, {99, 0, 0.5f}});
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(few.palette, 0));
    ASSERT_TRUE(tables.Build(few.palette, 1));
    tables.EntryOf(1)->visible = false;
    const int longest = (1 << 24) - 1; // from the first value to the last
    tables.Shift(longest - 99);
    tables.EntryOf(1)->visible = true;
    tables.Shift(0);
    EXPECT_EQ(tables.Records().sumLength, longest + 1);
    tables.EntryOf(1)->visible = false;
    tables.Shift(1);
    tables.EntryOf(1)->visible = true;
    tables.Shift(0);
    EXPECT_EQ(tables.Records().sumLength, 0);
    EXPECT_EQ(tables.Records().opacitySums, nullptr);
    for (int n = 0; n < 40; ++n)
        tables.Shift(n % 2 ? INT32_MIN : INT32_MAX);
    EXPECT_LE(tables.Records().sumLength, 1 << 24);
}
} // namespace corvane::tests
