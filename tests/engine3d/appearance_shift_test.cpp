#include "appearance_host.h"

#include <algorithm>
#include <climits>

// The engine's transfer functions slid along the stored values.
namespace corvane::tests
{
TEST(AdjustColor, MovesWhatIsVisibleAndLeavesWhatIsHidden)
{
    Twin twin(MakePatient());
    twin.SetLabels(MakeLumps(twin.volume.data));
    for (const int label : {1, 2})
        twin.SetPalette(TissueTransfer().palette, label);
    EXPECT_TRUE(twin.engine.SetVisible(false, 1));
    EXPECT_TRUE(twin.engine.AdjustColor(100));
    twin.tables.Entry(1).visible = 0;
    for (const int label : {0, 2})
    {
        twin.tables.Entry(label).rangeStart += 100;
        twin.tables.Entry(label).rangeEnd += 100;
    }
    twin.tables.Sum();
    twin.Refresh();
    EXPECT_EQ(TablesOf(twin.engine).entries[0]->rangeStart, 245);
    EXPECT_EQ(TablesOf(twin.engine).entries[1]->rangeStart, -200);
    ExpectSameTables(TablesOf(twin.engine), twin.tables.Records());
    ExpectDrawnAlike(twin);
    EXPECT_EQ(ValuesOf(twin.engine), (std::vector<int>{-100, 160, 400, 1300})); // the palette that was set last
}

// Sliding the transfer function and giving it anew with higher values are the same picture.
TEST(AdjustColor, IsTheSamePictureAsAPaletteOfShiftedPoints)
{
    Twin twin(MakePatient());
    for (const int shift : {60, -250, 7, 0})
    {
        TestTransfer shifted = DefaultTransfer();
        for (KsPalettePoint& point : shifted.points)
            point.value = int16_t(point.value + shift);
        EXPECT_TRUE(twin.engine.SetPalette(DefaultTransfer().palette));
        EXPECT_TRUE(twin.engine.AdjustColor(shift));
        const TestImage adjusted = RenderingOf(twin.engine, 40, 40);
        twin.SetPalette(shifted.palette, 0);
        ExpectSamePixels(adjusted, RenderingOf(twin.engine, 40, 40));
        ExpectDrawnAlike(twin);
    }
}

TEST(AdjustColor, WrapsPointsInSixteenBitsAndMovesEntriesByAll)
{
    Twin twin(MakePatient());
    const TestTransfer ends({{-32768, 0xFF, 0.5f}, {0, 0xFF, 0.5f}, {32767, 0xFF, 0.5f}});
    EXPECT_TRUE(twin.engine.SetPalette(ends.palette));
    EXPECT_TRUE(twin.engine.AdjustColor(1));
    EXPECT_EQ(ValuesOf(twin.engine), (std::vector<int>{-32767, 1, -32768}));
    EXPECT_EQ(TablesOf(twin.engine).entries[0]->rangeStart, -32767);
    EXPECT_EQ(TablesOf(twin.engine).entries[0]->rangeEnd, 32768);
    EXPECT_TRUE(twin.engine.AdjustColor(65536));
    EXPECT_EQ(ValuesOf(twin.engine), (std::vector<int>{-32767, 1, -32768}));
    EXPECT_EQ(TablesOf(twin.engine).entries[0]->rangeStart, -32767 + 65536);
    EXPECT_TRUE(twin.engine.AdjustColor(-65537));
    EXPECT_EQ(ValuesOf(twin.engine), (std::vector<int>{-32768, 0, 32767}));
    EXPECT_EQ(TablesOf(twin.engine).entries[0]->rangeEnd, 32767);
}

TEST(AdjustColor, NearTheLimitsOfIntegersShowsNothingAndEnds)
{
    for (const int shift : {INT_MAX, INT_MIN, INT_MAX - 145, INT_MAX - 1448, INT_MIN + 145})
    {
        SCOPED_TRACE(shift);
        Twin twin(MakePatient());
        // 145 + 2^31 - 1 is 144 in 16 bits, and so on.
        const auto wrapped = [&](int value) { return int(int16_t(int64_t(value) + shift)); };
        for (int again = 0; again < 3; ++again)
        {
            EXPECT_TRUE(twin.engine.AdjustColor(shift));
            if (again == 0)
            {
                EXPECT_EQ(ValuesOf(twin.engine),
                          (std::vector<int>{wrapped(145), wrapped(264), wrapped(336), wrapped(1448)}));
            }
            const TestImage image = RenderingOf(twin.engine, 20, 20);
            EXPECT_EQ(std::count(image.pixels.begin(), image.pixels.end(), 0u), 400);
            std::vector<uint32_t> pixels(400);
            EXPECT_TRUE(twin.engine.ImagingVE(20, 20, pixels.data(), 60, false, nullptr));
        }
        EXPECT_TRUE(twin.engine.SetPalette(DefaultTransfer().palette));
        ExpectDrawnAlike(twin);
    }
}

// A hidden label stays behind, then comes back billions of values away: no sum can span them.
TEST(AdjustColor, WithASumRangeOfBillionsLeavesTheSumOut)
{
    Twin twin(MakePatient());
    twin.SetPalette(TissueTransfer().palette, 1);
    EXPECT_TRUE(twin.engine.SetVisible(false, 1));
    EXPECT_TRUE(twin.engine.AdjustColor(2000000000));
    EXPECT_TRUE(twin.engine.SetVisible(true, 1));
    EXPECT_TRUE(twin.engine.AdjustColor(0));
    EXPECT_EQ(TablesOf(twin.engine).opacitySums, nullptr);
    EXPECT_EQ(TablesOf(twin.engine).sumLength, 0);
    const TestImage image = RenderingOf(twin.engine, 20, 20);
    EXPECT_EQ(std::count(image.pixels.begin(), image.pixels.end(), 0u), 400);
}
} // namespace corvane::tests
