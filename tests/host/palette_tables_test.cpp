#include "host/palette_tables.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
Palette PaletteFrom(std::vector<KsPalettePoint> points) { return {std::move(points), {0.1f, 0.2f, 0.3f}, {}}; }

TEST(PaletteTables, InterpolatesColourAndOpacityForEachStoredValue)
{
    const PaletteTables tables({{5, PaletteFrom({{10, 0x000000, 0}, {14, 0x0000FF, 1}})}});
    const VolumePaletteEntry* entry = tables.Records().entries[5];
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->rangeStart, 10);
    EXPECT_EQ(entry->rangeEnd, 14);
    EXPECT_EQ(entry->size, 5);
    EXPECT_EQ(entry->visible, 1);
    EXPECT_EQ(entry->shading[0], 0.1f);
    EXPECT_EQ(entry->shading[2], 0.3f);
    const int blue[5] = {0, 64, 128, 191, 255}; // 63.75, 127.5 and 191.25, rounded by adding a half
    for (int n = 0; n < 5; ++n)
    {
        EXPECT_EQ(entry->colours[3 * n], 0);
        EXPECT_EQ(entry->colours[3 * n + 1], 0);
        EXPECT_EQ(entry->colours[3 * n + 2], blue[n]);
        EXPECT_EQ(entry->opacities[n], 0.25f * float(n));
    }
    for (int label = 0; label < 64; ++label)
        EXPECT_EQ(tables.Records().entries[label] != nullptr, label == 5);
}

TEST(PaletteTables, KeepsRedGreenAndBlueApart)
{
    const PaletteTables tables({{0, PaletteFrom({{0, 0x102030, 0.5f}, {1, 0xFFEEDD, 0.5f}})}});
    const uint8_t* colours = tables.Records().entries[0]->colours;
    const uint8_t expected[6] = {0x10, 0x20, 0x30, 0xFF, 0xEE, 0xDD};
    for (int n = 0; n < 6; ++n)
        EXPECT_EQ(colours[n], expected[n]);
}

TEST(PaletteTables, SortsPointsAndLetsTheFirstOfEqualValuesCount)
{
    const PaletteTables tables({{0, PaletteFrom({{20, 0xFF0000, 1}, {0, 0x00FF00, 0.25f}, {20, 0x0000FF, 0.5f}})}});
    const VolumePaletteEntry& entry = *tables.Records().entries[0];
    EXPECT_EQ(entry.size, 21);
    EXPECT_EQ(entry.opacities[0], 0.25f);
    EXPECT_EQ(entry.opacities[20], 1.0f);
    EXPECT_EQ(entry.colours[60], 255);
    EXPECT_EQ(entry.colours[62], 0);
}

TEST(PaletteTables, AddsOpacitiesUpOverAllLabels)
{
    const PaletteTables tables(
        {{1, PaletteFrom({{-2, 0, 0.5f}, {0, 0, 0.5f}})}, {63, PaletteFrom({{-1, 0, 0.25f}, {3, 0, 0.25f}})}});
    EXPECT_EQ(tables.Records().sumStart, -2);
    ASSERT_EQ(tables.Records().sumLength, 6);
    const float expected[6] = {0.5f, 0.75f, 0.75f, 0.25f, 0.25f, 0.25f};
    for (int n = 0; n < 6; ++n)
        EXPECT_EQ(tables.Records().opacitySums[n], expected[n]);
}

TEST(PaletteTables, SpansAllStoredValues)
{
    const PaletteTables tables({{0, PaletteFrom({{-32768, 0, 0}, {32767, 0, 1}})}});
    const VolumePaletteEntry& entry = *tables.Records().entries[0];
    ASSERT_EQ(entry.size, 65536);
    EXPECT_EQ(entry.opacities[65535], 1.0f);
    EXPECT_EQ(entry.opacities[32768], 32768.0f / 65535.0f);
}

TEST(PaletteTables, ShowsNothingWithoutPalettes)
{
    const PaletteTables tables({});
    EXPECT_EQ(tables.Records().opacitySums, nullptr);
    EXPECT_EQ(tables.Records().sumLength, 0);
}

TEST(PaletteTables, RefusesLabelsAndPalettesThatCannotBe)
{
    const Palette good = PaletteFrom({{0, 0, 0}, {1, 0, 1}});
    EXPECT_TRUE(Contains(ErrorOf([&] { PaletteTables({{64, good}}); }, ErrorKind::Usage), "0 to 63, not 64"));
    EXPECT_TRUE(Contains(ErrorOf([&] { PaletteTables({{-1, good}}); }, ErrorKind::Usage), "not -1"));
    EXPECT_TRUE(Contains(ErrorOf(
                             [&] {
                                 PaletteTables({{0, PaletteFrom({{7, 0, 0}, {7, 0, 1}})}});
                             },
                             ErrorKind::Usage),
                         "two different values"));
}
} // namespace
} // namespace corvane::host
