#include "host/palette_presets.h"
#include "host/palette_tables.h"
#include "read_testing.h"

#include <algorithm>

namespace corvane::host
{
namespace
{
Volume VolumeOf(const std::string& modality, std::vector<int16_t> voxels)
{
    Volume volume;
    volume.grid.sizeX = int(voxels.size());
    volume.grid.sizeY = volume.grid.sizeZ = 1;
    volume.voxels = std::move(voxels);
    volume.modality = modality;
    return volume;
}

Volume Ct() { return VolumeOf("CT", {-1000, -50, 40, 300, 1200}); }

// The opacity of one sample of the value in voxels of 1 mm.
double OpacityIn(const std::string& preset, int value)
{
    const PaletteTables tables({{0, PaletteOf(*PresetOf(preset, Ct()), 1, 0, 1)}});
    const VolumePaletteEntry& entry = *tables.Records().entries[0];
    return value < entry.rangeStart || value > entry.rangeEnd ? 0.0 : double(entry.opacities[value - entry.rangeStart]);
}

TEST(Presets, AreAllToBeHad)
{
    for (const PresetName& name : PresetNames())
    {
        const std::optional<TransferFunction> preset = PresetOf(name.name, Ct());
        ASSERT_TRUE(preset) << name.name;
        EXPECT_EQ(preset->name, name.name);
        EXPECT_FALSE(name.description.empty());
        EXPECT_TRUE(std::is_sorted(preset->opacities.begin(), preset->opacities.end(),
                                   [](const auto& a, const auto& b) { return a.value < b.value; }));
        for (const auto& point : preset->opacities)
            EXPECT_TRUE(point.opacity >= 0 && point.opacity <= 1);
        for (double spacing : {0.5, 1.0, 3.0})
            EXPECT_TRUE(PaletteOf(*preset, 1, 0, spacing).warnings.empty()) << name.name << " " << spacing;
    }
    EXPECT_FALSE(PresetOf("brain", Ct()));
    EXPECT_FALSE(PresetOf("", Ct()));
}

TEST(Presets, ShowAndHideWhatTheirNamesSay)
{
    const int air = -1000, lungWall = -500, fat = -100, muscle = 60, contrast = 300, bone = 1000;
    const struct
    {
        const char* preset;
        std::vector<int> shown, hidden;
    } expectations[] = {
        {"default", {contrast, bone}, {air, fat, muscle}},  {"bone", {500, bone, 2000}, {air, fat, muscle, 180}},
        {"vessels", {contrast, bone}, {air, fat, muscle}},  {"muscle", {muscle, contrast, bone}, {air, fat}},
        {"skin", {fat, muscle, bone}, {air, -700}},         {"lung", {lungWall}, {air, -900, fat, muscle, bone}},
        {"airway", {-300, fat, muscle, bone}, {air, -900}}, {"colon", {-400, fat, muscle, bone}, {air, -900}},
    };
    for (const auto& [preset, shown, hidden] : expectations)
    {
        for (int value : shown)
            EXPECT_GT(OpacityIn(preset, value), 0.04) << preset << " " << value;
        for (int value : hidden)
            EXPECT_LE(OpacityIn(preset, value), 0.01) << preset << " " << value;
    }
}

TEST(Presets, HaveTheEnginesOwnDefault)
{
    const PaletteTables tables({{0, PaletteOf(*PresetOf("default", Ct()), 1, 0, 0.7)}});
    const VolumePaletteEntry& entry = *tables.Records().entries[0];
    EXPECT_EQ(entry.rangeStart, 145);
    EXPECT_EQ(entry.rangeEnd, 1448);
    EXPECT_NEAR(entry.opacities[0], 0.05, 1e-6);
    EXPECT_NEAR(entry.opacities[264 - 145], 0.17, 1e-6);
    EXPECT_NEAR(entry.opacities[300 - 145], 0.17 + 0.11 * 36 / 72, 1e-6);
    EXPECT_EQ(entry.colours[0], 0xFF);
    EXPECT_EQ(entry.colours[1], 0x11);
    EXPECT_EQ(entry.colours[3 * (264 - 145) + 2], 0x75);
    EXPECT_EQ(entry.shading[1], 0.816f);
}

TEST(Presets, FollowTheValuesOfOtherVolumes)
{
    std::vector<int16_t> voxels;
    for (int n = 0; n <= 1000; ++n)
        voxels.push_back(int16_t(3 * n));
    Volume volume = VolumeOf("MR", voxels);
    volume.valueSlope = 2;
    volume.valueIntercept = 10;
    const TransferFunction preset = *PresetOf("default", volume);
    EXPECT_EQ(preset.opacities.front().opacity, 0);
    // Real values of percentiles 1 and 99.5: 2 * 30 + 10 and 2 * 2985 + 10, to within a voxel's step.
    EXPECT_NEAR(preset.opacities.front().value, 70 + 0.15 * 5910, 12);
    EXPECT_NEAR(preset.opacities.back().value, 5980, 12);
    const TransferFunction named = *PresetOf("mr", volume);
    EXPECT_EQ(named.opacities.back().value, preset.opacities.back().value);
}
} // namespace
} // namespace corvane::host
