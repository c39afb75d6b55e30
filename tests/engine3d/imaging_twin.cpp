#include "imaging_twin.h"

#include "tests/mpr/random_cases.h"

#include <algorithm>
#include <cmath>

namespace corvane::tests
{
Twin::Twin(TestVolume given) : volume(std::move(given))
{
    const KsVolumeData& data = volume.data;
    labels = MakeLabels(data.sizeX, data.sizeY, data.sizeZ, [](int, int, int) { return 0; });
    EXPECT_TRUE(tables.Add(DefaultTransfer().palette, 0));
    EXPECT_TRUE(engine.InitData(data));
    EXPECT_TRUE(render.InitData(data, labels.mark, tables.Records()));
}

void Twin::SetPalette(const KsPalette& palette, int label)
{
    if (label == 0)
        EXPECT_TRUE(engine.SetPalette(palette));
    else
        SetPaletteOf(engine, palette, label);
    EXPECT_TRUE(tables.Add(palette, label));
    Refresh();
}

void Twin::SetLabels(TestLabels given)
{
    labels = std::move(given);
    SetLabelsOf(engine, labels);
    render.SetVolumeMark(labels.mark);
}

TestVolume MakePatient(uint32_t seed)
{
    Random random(seed);
    TestVolume volume = MakeVolume(42, 36, 28,
                                   [](int i, int j, int k)
                                   {
                                       const double x = i - 20.5, y = j - 17.5, z = k - 13.5;
                                       const double vessel = std::hypot(x - 5 * std::sin(0.3 * z), y - 3);
                                       const double bone = std::hypot(x + 8, y + 7);
                                       const double body = std::hypot(x / 18, y / 15, z / 12);
                                       if (body > 1)
                                           return -1000 + int(30 * std::sin(i * 12.9 + j * 78.2 + k * 37.7));
                                       return int(40 + 380 * std::max(0.0, 1 - vessel / 4) +
                                                  1200 * std::max(0.0, 1 - bone / 5) + 8 * std::sin(i + 3.0 * j));
                                   });
    PlaceAtRandom(random, volume.data);
    return volume;
}

TestTransfer TissueTransfer()
{
    return TestTransfer({{-200, 0x803010, 0.0f}, {60, 0xC05030, 0.06f}, {300, 0xFF2010, 0.4f}, {1200, 0xFFFFF0, 0.9f}});
}

TestLabels MakeLumps(const KsVolumeData& volume)
{
    return MakeLabels(volume.sizeX, volume.sizeY, volume.sizeZ,
                      [](int i, int j, int k)
                      {
                          constexpr int kLabels[] = {0, 0, 1, 2, 0, 3, 9, 64, 65, 0, 1, 128, 255, 0, 2};
                          return kLabels[(i / 5 * 7 + j / 6 * 3 + k / 4) % 15];
                      });
}

void SetLabelsOf(Engine3D& engine, const TestLabels& labels)
{
    const KsVolumeMark* const mark = engine.GetMarkData();
    ASSERT_NE(mark, nullptr);
    ASSERT_EQ(mark->sizeZ, labels.labels.size());
    for (size_t k = 0; k < labels.labels.size(); ++k)
        std::copy(labels.labels[k].begin(), labels.labels[k].end(), mark->slices[k]);
    engine.UpdateMarkData();
}

TestImage RenderingOf(Engine3D& engine, int width, int height, int volumeIndex)
{
    TestImage image(PlaneOf(engine, width, height));
    EXPECT_TRUE(engine.ImagingVR(width, height, image.pixels.data(), false, nullptr, volumeIndex));
    return image;
}

TestImage RenderingOf(Render3D& render, const PnImageParam& plane, int volumeIndex)
{
    TestImage image(plane);
    std::fill(image.pixels.begin(), image.pixels.end(), 0u);
    EXPECT_TRUE(render.ImagingVR(&image.image, volumeIndex));
    return image;
}

PnImageParam PlaneOf(Engine3D& engine, int width, int height)
{
    PnImageParam plane = {};
    EXPECT_TRUE(engine.GetParamsOfVR(width, height, plane));
    return plane;
}
} // namespace corvane::tests
