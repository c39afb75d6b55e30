#include "engine3d/palette_tables.h"

#include "palette_plain.h"

#include <gtest/gtest.h>

#include <climits>

// The sum of the opacities of all visible labels, and tables that slide along the stored values.
namespace corvane::tests
{
using engine3d::PaletteTables;

namespace
{
TestTransfer Constant(int start, int end, float opacity, bool visible = true)
{
    TestTransfer transfer({{int16_t(start), 0, opacity}, {int16_t(end), 0, opacity}});
    transfer.palette.visible = visible;
    return transfer;
}

std::vector<float> SumsOf(const PaletteTables& tables)
{
    const VolumePalette& records = tables.Records();
    return {records.opacitySums, records.opacitySums + records.sumLength};
}

void ExpectNoSums(const PaletteTables& tables)
{
    EXPECT_EQ(tables.Records().opacitySums, nullptr);
    EXPECT_EQ(tables.Records().sumLength, 0);
}
} // namespace

TEST(OpacitySums, CoverEveryVisibleRangeAndTheGapsBetween)
{
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(Constant(10, 13, 0.5f).palette, 0));
    ASSERT_TRUE(tables.Build(Constant(12, 14, 0.25f).palette, 63));
    ASSERT_TRUE(tables.Build(Constant(17, 18, 1.0f).palette, 7));
    ASSERT_TRUE(tables.Build(Constant(0, 100, 0.125f, false).palette, 8)); // hidden
    EXPECT_EQ(tables.Records().sumStart, 10);
    EXPECT_EQ(SumsOf(tables), (std::vector<float>{0.5f, 0.5f, 0.75f, 0.75f, 0.25f, 0, 0, 1, 1}));
}

TEST(OpacitySums, AreNotLimitedTo1)
{
    PaletteTables tables;
    for (int label = 0; label < 64; ++label)
        ASSERT_TRUE(tables.Build(Constant(0, 1, 1.0f).palette, label));
    EXPECT_EQ(SumsOf(tables), (std::vector<float>{64, 64}));
}

// Single precision: 1e8 + 1 is 1e8, so only one order gives 1.
TEST(OpacitySums, AreAddedInTheOrderOfLabels)
{
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(Constant(0, 1, 1.0f).palette, 30));
    ASSERT_TRUE(tables.Build(Constant(0, 1, -1e8f).palette, 20));
    ASSERT_TRUE(tables.Build(Constant(0, 1, 1e8f).palette, 10));
    EXPECT_EQ(SumsOf(tables), (std::vector<float>{1, 1}));
}

TEST(OpacitySums, AreAbsentWhenNothingIsVisible)
{
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(Constant(0, 9, 0.5f).palette, 0));
    EXPECT_EQ(tables.Records().sumLength, 10);
    tables.EntryOf(0)->visible = 0;
    EXPECT_EQ(tables.Records().sumLength, 10); // until the next change of the tables
    ASSERT_TRUE(tables.Build(Constant(3, 5, 0.5f, false).palette, 1));
    ExpectNoSums(tables);
    tables.EntryOf(1)->visible = 1;
    tables.Shift(0);
    EXPECT_EQ(tables.Records().sumStart, 3);
    EXPECT_EQ(SumsOf(tables), (std::vector<float>{0.5f, 0.5f, 0.5f}));
}

TEST(ShiftedTables, SlideWhereVisibleAndKeepTheirNumbers)
{
    const TestTransfer ramp({{-5, 0x000000, 0.0f}, {20, 0xFF8040, 1.0f}});
    TestTransfer hidden = ramp;
    hidden.palette.visible = 0;
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(ramp.palette, 0));
    ASSERT_TRUE(tables.Build(hidden.palette, 1));
    ASSERT_TRUE(tables.Build(Constant(500, 501, 0.5f).palette, 2));
    tables.Shift(100);
    PlainTable expected = *PlainTableOf(ramp.palette), still = *PlainTableOf(hidden.palette);
    expected.entry.rangeStart = 95;
    expected.entry.rangeEnd = 120;
    ExpectSameEntry(*tables.EntryOf(0), expected.entry);
    ExpectSameEntry(*tables.EntryOf(1), still.entry);
    EXPECT_EQ(tables.EntryOf(2)->rangeStart, 600);
    EXPECT_EQ(tables.EntryOf(2)->rangeEnd, 601);
    EXPECT_EQ(tables.Records().sumStart, 95);
    const std::vector<float> sums = SumsOf(tables);
    ASSERT_EQ(sums.size(), 507u);
    EXPECT_TRUE(std::equal(expected.opacities.begin(), expected.opacities.end(), sums.begin()));
    EXPECT_EQ(sums[26], 0.0f);
    EXPECT_EQ(sums[506], 0.5f);
    tables.Shift(-100);
    ExpectSameEntry(*tables.EntryOf(0), PlainTableOf(ramp.palette)->entry);
}

TEST(ShiftedTables, LeaveTheStoredValuesWithoutWrapping)
{
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(Constant(-10, 10, 0.5f).palette, 0));
    tables.Shift(65536);
    EXPECT_EQ(tables.EntryOf(0)->rangeStart, 65526);
    EXPECT_EQ(tables.EntryOf(0)->rangeEnd, 65546);
    EXPECT_EQ(tables.Records().sumStart, 65526);
    EXPECT_EQ(SumsOf(tables), std::vector<float>(21, 0.5f));
}

TEST(ShiftedTables, StopAtTheLimitsOfTheirIntegers)
{
    for (const int shift : {INT_MAX, INT_MIN})
    {
        PaletteTables tables;
        ASSERT_TRUE(tables.Build(Constant(-10, 10, 0.5f).palette, 0));
        tables.Shift(shift);
        // 10 beyond the limit on one side, so the other end is 10 before it.
        EXPECT_EQ(tables.EntryOf(0)->rangeStart, shift > 0 ? INT_MAX - 10 : INT_MIN);
        EXPECT_EQ(tables.EntryOf(0)->rangeEnd, shift > 0 ? INT_MAX : INT_MIN + 10);
        EXPECT_EQ(SumsOf(tables), std::vector<float>(11, 0.5f));
        tables.Shift(shift);
        EXPECT_EQ(tables.EntryOf(0)->rangeStart, shift);
        EXPECT_EQ(tables.EntryOf(0)->rangeEnd, shift);
        ExpectNoSums(tables);
        tables.Shift(shift);
        EXPECT_EQ(tables.EntryOf(0)->rangeEnd, shift);
    }
}

TEST(ShiftedTables, HaveNoSumsOverBillionsOfValues)
{
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(Constant(0, 100, 0.5f).palette, 0));
    ASSERT_TRUE(tables.Build(Constant(0, 50, 0.25f).palette, 1));
    tables.EntryOf(1)->visible = 0;
    tables.Shift(2000000000); // the hidden one stays behind
    EXPECT_EQ(tables.Records().sumLength, 101);
    tables.EntryOf(1)->visible = 1;
    tables.Shift(0);
    ExpectNoSums(tables);
    ASSERT_TRUE(tables.Build(Constant(5, 6, 0.25f).palette, 2));
    ExpectNoSums(tables);
    tables.EntryOf(0)->visible = 0;
    tables.Shift(0);
    EXPECT_EQ(tables.Records().sumStart, 0);
    EXPECT_EQ(tables.Records().sumLength, 51);
}

TEST(ShiftedTables, HaveSumsOverEveryRangeThatHostsMeet)
{
    PaletteTables tables;
    ASSERT_TRUE(tables.Build(Constant(0, 1, 0.5f).palette, 0));
    ASSERT_TRUE(tables.Build(Constant(0, 1, 0.25f).palette, 1));
    tables.EntryOf(1)->visible = 0;
    tables.Shift(1000000); // far beyond 16 bits
    tables.EntryOf(1)->visible = 1;
    tables.Shift(0);
    ASSERT_EQ(tables.Records().sumLength, 1000002);
    const std::vector<float> sums = SumsOf(tables);
    EXPECT_EQ(sums[1], 0.25f);
    EXPECT_EQ(sums[2], 0.0f);
    EXPECT_EQ(sums[1000000], 0.5f);
}
} // namespace corvane::tests
