#include "c_handles.h"
#include "corvane/Engine3D.h"

#include <gtest/gtest.h>

// Palettes of labels: the same pictures as the class draws with the palette of its label 0.

namespace
{
using namespace corvane::tests;

std::vector<uint8_t> LabelsEverywhere(const KsVolumeData& volume, uint8_t label)
{
    return std::vector<uint8_t>(size_t(volume.sizeX) * size_t(volume.sizeY) * size_t(volume.sizeZ), label);
}

struct Picture
{
    PnImageParam plane = {};
    std::vector<uint32_t> pixels;
};

// What Engine3D draws, with a palette or with its own.
Picture DrawnByEngine(const KsVolumeData& volume, const KsPalette* palette)
{
    Engine3D engine;
    Picture picture;
    picture.pixels.resize(60 * 80);
    PnImageRGB image = {};
    EXPECT_TRUE(engine.InitData(volume));
    EXPECT_TRUE(!palette || engine.SetPalette(*palette));
    engine.RotateH(0.5f);
    engine.Zoom(0.6f);
    EXPECT_TRUE(engine.ImagingVR(60, 80, picture.pixels.data(), false, &image, 0));
    picture.plane = image.param;
    return picture;
}

uint32_t Red(uint32_t pixel) { return pixel >> 8 & 255; }
uint32_t Green(uint32_t pixel) { return pixel >> 16 & 255; }

// Points out of order, one value twice, a steep end.
KsPalettePoint kWildPoints[] = {{900, 0x20FF40, 0.9f},  {-200, 0x102030, 0.01f}, {300, 0xFF8000, 0.35f},
                                {300, 0x0000FF, 0.99f}, {120, 0x804080, 0.0f},   {310, 0xFFFFFF, 0.5f}};

TEST(ScenePalettes, EveryLabelIsDrawnAsEngine3DDrawsLabelZero)
{
    const TestVolume volume = MakeTiltedVolume();
    KsPalette palette = PaletteOf(kWildPoints);
    palette.shading[0] = 0.3f;
    palette.shading[2] = 0.4f;
    palette.opacity = 0.8f;
    const Picture expected = DrawnByEngine(volume.data, &palette);
    ASSERT_GT(std::count_if(expected.pixels.begin(), expected.pixels.end(), [](uint32_t pixel) { return pixel != 0; }),
              200);
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    for (const int32_t label : {0, 1, 17, 63})
    {
        const std::vector<uint8_t> labels = LabelsEverywhere(volume.data, uint8_t(label));
        ASSERT_EQ(corvane_scene_set_labels(scene.get(), labels.data(), labels.size()), CORVANE_OK);
        ASSERT_EQ(corvane_scene_remove_palette(scene.get(), 0), CORVANE_OK);
        ASSERT_EQ(corvane_scene_set_palette(scene.get(), label, &palette), CORVANE_OK);
        EXPECT_EQ(Rendered(scene.get(), expected.plane), expected.pixels) << "label " << label;
        ASSERT_EQ(corvane_scene_remove_palette(scene.get(), label), CORVANE_OK);
        EXPECT_EQ(Rendered(scene.get(), expected.plane), std::vector<uint32_t>(60 * 80));
    }
}

TEST(ScenePalettes, ANewVolumeIsDrawnAsEngine3DDrawsOne)
{
    const TestVolume volume = MakeTiltedVolume();
    const Picture expected = DrawnByEngine(volume.data, nullptr);
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    EXPECT_EQ(Rendered(scene.get(), expected.plane), expected.pixels);

    KsPalette palette = PaletteOf(kWildPoints);
    ASSERT_EQ(corvane_scene_set_palette(scene.get(), 0, &palette), CORVANE_OK);
    ASSERT_NE(Rendered(scene.get(), expected.plane), expected.pixels);
    ASSERT_EQ(corvane_scene_set_volume(scene.get(), &volume.data), CORVANE_OK); // standard palette again
    EXPECT_EQ(Rendered(scene.get(), expected.plane), expected.pixels);
}

// A block, its left half label 1 in red, its right half label 2 in green, seen from the front: the patient's left is to
// the right of the picture.
TEST(ScenePalettes, TwoLabelsHaveTheirOwnColoursSideBySide)
{
    const TestVolume volume = MakeVolume(40, 40, 40, [](int, int, int) { return 500; });
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    std::vector<uint8_t> labels;
    for (int n = 0; n < 40 * 40 * 40; ++n)
        labels.push_back(n % 40 < 20 ? 1 : 2);
    ASSERT_EQ(corvane_scene_set_labels(scene.get(), labels.data(), labels.size()), CORVANE_OK);
    KsPalettePoint red[] = {{400, 0xFF0000, 1}, {600, 0xFF0000, 1}}, green[] = {{400, 0x00FF00, 1}, {600, 0x00FF00, 1}};
    KsPalette redPalette = PaletteOf(red), greenPalette = PaletteOf(green);
    for (KsPalette* palette : {&redPalette, &greenPalette}) // ambient light only: a block has no gradients inside
    {
        palette->shading[0] = 1;
        palette->shading[1] = 0;
    }
    ASSERT_EQ(corvane_scene_set_palette(scene.get(), 1, &redPalette), CORVANE_OK);
    ASSERT_EQ(corvane_scene_set_palette(scene.get(), 2, &greenPalette), CORVANE_OK);
    const PnImageParam plane = PlaneOf(scene.get(), {CORVANE_FROM_FRONT, 0, 0, 0, 0.4f}, 60, 60);
    const auto middle = [&](uint32_t column) { return Rendered(scene.get(), plane)[30 * 60 + column]; };
    const double pixelsPerVoxel = 1 / plane.columnSpacing;
    const uint32_t left = uint32_t(30 - 8 * pixelsPerVoxel), right = uint32_t(30 + 8 * pixelsPerVoxel);
    EXPECT_GT(Red(middle(left)), 100u);
    EXPECT_EQ(Green(middle(left)), 0u);
    EXPECT_GT(Green(middle(right)), 100u);
    EXPECT_EQ(Red(middle(right)), 0u);

    redPalette.visible = 0;
    ASSERT_EQ(corvane_scene_set_palette(scene.get(), 1, &redPalette), CORVANE_OK);
    EXPECT_EQ(middle(left), 0u);
    EXPECT_GT(Green(middle(right)), 100u);
}

TEST(ScenePalettes, AreReadAsTheyWereSetAndRefusedOnesChangeNothing)
{
    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    KsPalette palette = PaletteOf(kWildPoints);
    palette.opacity = 0.25f;
    ASSERT_EQ(corvane_scene_set_palette(scene.get(), 9, &palette), CORVANE_OK);
    KsPalette kept;
    for (int read = 0; read < 2; ++read) // the second frees the points of the first
        ASSERT_EQ(corvane_scene_get_palette(scene.get(), 9, &kept), CORVANE_OK);
    ASSERT_EQ(kept.pointCount, 6);
    for (int n = 0; n < 6; ++n)
    {
        EXPECT_EQ(kept.points[n].value, kWildPoints[n].value);
        EXPECT_EQ(kept.points[n].colour, kWildPoints[n].colour);
        EXPECT_EQ(kept.points[n].opacity, kWildPoints[n].opacity);
    }
    EXPECT_EQ(kept.opacity, 0.25f);
    ASSERT_EQ(corvane_scene_set_palette(scene.get(), 10, &kept), CORVANE_OK); // a record that owns its points
    corvane_palette_free(&kept);

    KsPalettePoint same[] = {{5, 1, 1}, {5, 2, 0.5f}};
    const KsPalette useless = PaletteOf(same);
    EXPECT_EQ(corvane_scene_set_palette(scene.get(), 9, &useless), CORVANE_ERROR_ARGUMENT);
    ASSERT_EQ(corvane_scene_get_palette(scene.get(), 9, &kept), CORVANE_OK);
    EXPECT_EQ(kept.pointCount, 6);
    corvane_palette_free(&kept);
    EXPECT_EQ(corvane_scene_set_palette(scene.get(), 64, &palette), CORVANE_ERROR_ARGUMENT);
    EXPECT_EQ(corvane_scene_set_palette(scene.get(), -1, &palette), CORVANE_ERROR_ARGUMENT);
    EXPECT_EQ(corvane_scene_get_palette(scene.get(), 11, &kept), CORVANE_ERROR_ARGUMENT);
}
} // namespace
