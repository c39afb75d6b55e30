#include "engine3d/palette_tables.h"

#include "palette_plain.h"

#include <gtest/gtest.h>

#include <climits>

// Lookup tables of single labels.
namespace corvane::tests
{
using engine3d::PaletteTables;

namespace
{
std::vector<int> ChannelOf(const VolumePaletteEntry& entry, int channel)
{
    std::vector<int> values;
    for (int n = 0; n < entry.size; ++n)
        values.push_back(entry.colours[3 * n + channel]);
    return values;
}

constexpr int kRed = 0, kGreen = 1, kBlue = 2;
} // namespace

TEST(PaletteTables, RoundColoursHalvesUpwardsAndOpacitiesNot)
{
    const TestTransfer blue({{10, 0x000000, 0.25f}, {14, 0x0000FF, 0.75f}});
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(blue.palette, 0));
    const VolumePaletteEntry& entry = *tables.EntryOf(0);
    EXPECT_EQ(ChannelOf(entry, kBlue), (std::vector<int>{0, 64, 128, 191, 255}));
    EXPECT_EQ(ChannelOf(entry, kGreen), std::vector<int>(5, 0));
    EXPECT_EQ(ChannelOf(entry, kRed), std::vector<int>(5, 0));
    EXPECT_EQ(std::vector<float>(entry.opacities, entry.opacities + 5),
              (std::vector<float>{0.25f, 0.375f, 0.5f, 0.625f, 0.75f}));
}

TEST(PaletteTables, RoundFallingChannelsTheSameWay)
{
    const TestTransfer falling({{0, 0xFF00C8, 1}, {4, 0x00FF64, 1}});
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(falling.palette, 0));
    EXPECT_EQ(ChannelOf(*tables.EntryOf(0), kRed), (std::vector<int>{255, 191, 128, 64, 0}));
    EXPECT_EQ(ChannelOf(*tables.EntryOf(0), kGreen), (std::vector<int>{0, 64, 128, 191, 255}));
    EXPECT_EQ(ChannelOf(*tables.EntryOf(0), kBlue), (std::vector<int>{200, 175, 150, 125, 100}));
}

TEST(PaletteTables, ReachFromTheSmallestValueToTheLargest)
{
    const TestTransfer unsorted({{7, 0x070707, 0.7f}, {-3, 0x030303, 0.3f}, {2, 0x020202, 0.2f}});
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(unsorted.palette, 5));
    const VolumePaletteEntry& entry = *tables.EntryOf(5);
    EXPECT_EQ(entry.rangeStart, -3);
    EXPECT_EQ(entry.rangeEnd, 7);
    EXPECT_EQ(entry.size, 11);
    EXPECT_EQ(entry.opacities[0], 0.3f);
    EXPECT_EQ(entry.opacities[5], 0.2f);
    EXPECT_EQ(entry.opacities[10], 0.7f);
    EXPECT_EQ(ChannelOf(entry, kRed), (std::vector<int>{3, 3, 3, 2, 2, 2, 3, 4, 5, 6, 7}));
}

TEST(PaletteTables, KeepTheFirstOfPointsWithTheSameValue)
{
    const TestTransfer twice({{5, 0x640000, 0.5f}, {9, 0x00C800, 1.0f}, {5, 0x0000FF, 0.9f}, {9, 0xFFFFFF, 0.0f}});
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(twice.palette, 0));
    const VolumePaletteEntry& entry = *tables.EntryOf(0);
    EXPECT_EQ(entry.size, 5);
    EXPECT_EQ(ChannelOf(entry, kRed), (std::vector<int>{100, 75, 50, 25, 0}));
    EXPECT_EQ(ChannelOf(entry, kGreen), (std::vector<int>{0, 50, 100, 150, 200}));
    EXPECT_EQ(ChannelOf(entry, kBlue), std::vector<int>(5, 0));
    EXPECT_EQ(entry.opacities[0], 0.5f);
    EXPECT_EQ(entry.opacities[4], 1.0f);
}

TEST(PaletteTables, CopyShadingOpacityAndVisibility)
{
    TestTransfer transfer({{0, 0, 0}, {1, 0, 1}});
    transfer.palette.opacity = 0.375f;
    transfer.palette.visible = 0;
    transfer.palette.shading[0] = 0.5f;
    transfer.palette.shading[1] = -2.0f;
    transfer.palette.shading[2] = 17.0f;
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(transfer.palette, 63));
    const VolumePaletteEntry& entry = *tables.EntryOf(63);
    EXPECT_EQ(entry.opacity, 0.375f);
    EXPECT_EQ(entry.visible, 0);
    EXPECT_EQ(entry.shading[0], 0.5f);
    EXPECT_EQ(entry.shading[1], -2.0f);
    EXPECT_EQ(entry.shading[2], 17.0f);
}

TEST(PaletteTables, AreRefusedForFewerThanTwoDifferentValuesAndKeepWhatTheyHad)
{
    const TestTransfer good({{0, 0x123456, 0.25f}, {100, 0x654321, 0.5f}});
    TestTransfer oneValue({{7, 1, 0.1f}, {7, 2, 0.2f}, {7, 3, 0.3f}});
    TestTransfer onePoint = good, noPoints = good, lessThanNone = good, nullPoints = good;
    onePoint.palette.pointCount = 1;
    noPoints.palette.pointCount = 0;
    lessThanNone.palette.pointCount = INT_MIN;
    nullPoints.palette.points = nullptr;
    PlainTables expected;
    ASSERT_TRUE(expected.Add(good.palette, 4));
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(good.palette, 4));
    for (const TestTransfer* refused : {&oneValue, &onePoint, &noPoints, &lessThanNone, &nullPoints})
        for (const int label : {4, 0})
        {
            EXPECT_FALSE(tables.Build(refused->palette, label));
            ExpectSameTables(tables.Records(), expected.Records());
        }
}

TEST(PaletteTables, AreForLabelsUpTo63)
{
    const TestTransfer transfer({{0, 0, 0}, {100, 0, 1}});
    PaletteTables tables;
    for (const int label : {-1, 64, 65, 256, INT_MIN, INT_MAX})
    {
        EXPECT_FALSE(tables.Build(transfer.palette, label)) << label;
        EXPECT_EQ(tables.EntryOf(label), nullptr) << label;
    }
    ExpectSameTables(tables.Records(), VolumePalette{});
    for (const int label : {0, 63})
    {
        EXPECT_TRUE(tables.Build(transfer.palette, label)) << label;
        EXPECT_EQ(tables.EntryOf(label), tables.Records().entries[label]);
        EXPECT_NE(tables.EntryOf(label), nullptr);
    }
}

TEST(PaletteTables, OfAllStoredValuesReachBothEnds)
{
    const TestTransfer all({{32767, 0xFF0000, 1.0f}, {-32768, 0x0000FF, 0.0f}});
    PlainTables expected;
    ASSERT_TRUE(expected.Add(all.palette, 0));
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(all.palette, 0));
    EXPECT_EQ(tables.EntryOf(0)->size, 65536);
    EXPECT_EQ(tables.Records().sumLength, 65536);
    ExpectSameTables(tables.Records(), expected.Records());
}

TEST(PaletteTables, AreThoseOfThePlainVersion)
{
    for (uint32_t seed = 0; seed < 60; ++seed)
    {
        SCOPED_TRACE(seed);
        Random random(seed);
        PaletteTables tables;
        PlainTables expected;
        const int reach = seed % 10 == 0 ? 32767 : random.Between(1, 600);
        for (int build = random.Between(1, 8); build > 0; --build)
        {
            const TestTransfer transfer = RandomTransfer(random, -reach, reach);
            const int label = random.Below(2) ? random.Below(3) : random.Below(64);
            EXPECT_EQ(tables.Build(transfer.palette, label), expected.Add(transfer.palette, label));
            ExpectSameTables(tables.Records(), expected.Records());
        }
    }
}

TEST(PaletteTables, AreGoneAfterClear)
{
    const TestTransfer transfer({{0, 0, 0}, {100, 0, 1}});
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(transfer.palette, 0));
    ASSERT_TRUE(tables.Build(transfer.palette, 9));
    tables.Clear();
    ExpectSameTables(tables.Records(), VolumePalette{});
    EXPECT_EQ(tables.EntryOf(9), nullptr);
    tables.Shift(5); // nothing to move
    ExpectSameTables(tables.Records(), VolumePalette{});
    EXPECT_TRUE(tables.Build(transfer.palette, 0));
}
} // namespace corvane::tests
