#include "trevik/Cuda3D.h"

#include "tests/test_volume.h"

#include <gtest/gtest.h>

#include <cstring>

// The GPU renderer that there is where there is no GPU.
namespace corvane::tests
{
TEST(Cuda3D, SupportsNoGPU)
{
    Cuda3D gpu;
    EXPECT_FALSE(gpu.SupportGPU());
}

TEST(Cuda3D, RefusesVolumesPalettesAndBoxes)
{
    const TestVolume volume = MakeVolume(4, 4, 4, [](int, int, int) { return 0; });
    TestLabels labels = MakeLabels(4, 4, 4, [](int, int, int) { return 0; });
    const VolumePalette palette = {};
    Cuda3D gpu;
    EXPECT_FALSE(gpu.InitData(volume.data, labels.mark, palette));
    EXPECT_FALSE(gpu.SetPalette(palette));
    EXPECT_EQ(gpu.AttachVolumeData(volume.data), 0);
    const float low[3] = {0, 0, 0}, high[3] = {1, 1, 1};
    EXPECT_FALSE(gpu.SetVisibleBox(low, high));
    float lowOut[3] = {7, 8, 9}, highOut[3] = {10, 11, 12};
    EXPECT_FALSE(gpu.GetVisibleBox(lowOut, highOut));
    EXPECT_EQ(lowOut[0], 7);
    EXPECT_EQ(highOut[2], 12);
}

TEST(Cuda3D, RefusesImagesAndLeavesThemAlone)
{
    std::vector<uint32_t> pixels(16, 0x5A5A5A5Au);
    PnImageRGB image;
    std::memset(&image, 0x5A, sizeof image);
    image.pixels = pixels.data();
    PnImageRGB before;
    std::memcpy(&before, &image, sizeof image);
    Cuda3D gpu;
    EXPECT_FALSE(gpu.ImagingVR(&image, 0));
    EXPECT_FALSE(gpu.ImagingVR(&image, 1));
    EXPECT_FALSE(gpu.ImagingVR(nullptr, 0));
    EXPECT_FALSE(gpu.ImagingVE(KsViewPoint{}, 90.0f, &image));
    EXPECT_FALSE(gpu.ImagingVE(KsViewPoint{}, 90.0f, nullptr));
    EXPECT_EQ(std::memcmp(&image, &before, sizeof image), 0);
    EXPECT_EQ(pixels, std::vector<uint32_t>(16, 0x5A5A5A5Au));
}

TEST(Cuda3D, StaysWithoutAGPUWhateverItIsGiven)
{
    TestLabels labels = MakeLabels(4, 4, 4, [](int, int, int) { return 5; });
    KsBlendImage blend = {};
    Cuda3D gpu;
    gpu.SetVolumeMark(labels.mark);
    gpu.SetBlendImage(&blend, 1);
    gpu.SetBlendImage(nullptr, 3);
    gpu.ClearAttachVolume();
    gpu.Clear();
    gpu.Clear();
    EXPECT_FALSE(gpu.SupportGPU());
    EXPECT_EQ(labels.labels[3][15], 5);
}
} // namespace corvane::tests
