#include "hazard_scenes.h"
#include "plain_projection.h"
#include "tests/large_memory.h"

#include <memory>
#include <set>

// Images of 20,000 x 20,000 pixels, 256 to a voxel. Every 4999th pixel of every 4999th row is one of a small image
// whose pixels stand 4999 / 256 mm apart: the same places, which single precision holds exactly, so the same pixels.
namespace corvane::tests
{
using namespace hazards;

namespace
{
constexpr uint32_t kSide = 20000, kApart = 4999;
constexpr size_t kPixels = size_t(kSide) * kSide;

// Few voxels deep, so that 400 million rays take seconds.
TestVolume ThinVolume()
{
    return MakeVolume(84, 83, 4, [](int i, int j, int k) { return (7 * i + 13 * j + 1009 * k) % 2999; });
}

PnImageParam PlaneOf(uint32_t side, double apart)
{
    return {side, side, apart, apart, {1, 0, 0}, {0, 1, 0}, {1.5, 1.5, -2}};
}

const PnImageParam kLarge = PlaneOf(kSide, 1.0 / 256), kSmall = PlaneOf(5, kApart / 256.0);

// Compares the pixels that both images have; returns how many different ones there are.
template <class Pixel>
size_t ExpectSamePlaces(const Pixel* large, const std::vector<Pixel>& small)
{
    for (size_t row = 0; row < 5; ++row)
        for (size_t column = 0; column < 5; ++column)
            EXPECT_EQ(large[row * kApart * kSide + column * kApart], small[5 * row + column]) << row << ", " << column;
    return std::set<Pixel>(small.begin(), small.end()).size();
}
} // namespace

TEST(LargeImages, AreProjectedToTheLastPixel)
{
    if (!HasMemoryFor(kPixels * sizeof(int16_t)))
        GTEST_SKIP() << "needs 0.8 GB of memory, neither Windows nor a sanitizer";
    const TestVolume volume = ThinVolume();
    TestPalette palette;
    palette.AddOpaqueFrom(0, 0, {1, 2, 3});
    Render3D render;
    ASSERT_TRUE(render.InitData(volume.data, {}, palette.palette));
    const auto values = std::make_unique<int16_t[]>(kPixels);
    // Only some rows of voxels are to be seen, so that most rays are quick to miss: the first for the highest values,
    // those in the middle for the mean, the last for the lowest.
    const float rows[3][2] = {{0, 3}, {39, 42}, {59, 100}};
    for (const ProjectionKind kind : kAllKinds)
    {
        const float(&seen)[2] = rows[int(kind)];
        const float low[3] = {-100, seen[0], -100}, high[3] = {100, seen[1], 100};
        ASSERT_TRUE(render.SetVisibleBox(low, high));
        KsImageVAL large = {values.get(), kLarge};
        ASSERT_TRUE(Imaging(render, kind, &large));
        TestValues small(kSmall);
        ASSERT_TRUE(Imaging(render, kind, &small.image));
        EXPECT_GE(ExpectSamePlaces(values.get(), small.values), 6u); // background and a row of the small image
        if (kind != ProjectionKind::Average)
            continue;
        // The mean of one sample is its nearest voxel.
        constexpr size_t kMiddle = 9999;
        for (size_t column = 0; column < kSide; ++column)
        {
            const int i = int(1.5 + double(column) / 256 + 0.5), j = int(1.5 + double(kMiddle) / 256 + 0.5);
            ASSERT_EQ(values[kMiddle * kSide + column], (7 * i + 13 * j + 1009) % 2999) << column;
        }
        EXPECT_EQ(values[0], kBackground);
        EXPECT_EQ(values[kPixels - 1], kBackground);
    }
}

// Of 400 million rays, those of three spots meet something: in the first and the last corner and in the middle.
TEST(LargeImages, AreDrawnToTheLastPixel)
{
    if (!HasMemoryFor(kPixels * sizeof(uint32_t)))
        GTEST_SKIP() << "needs 1.6 GB of memory, neither Windows nor a sanitizer";
    const auto pixels = std::make_unique<uint32_t[]>(kPixels);
    for (const int spot : {2, 40, 78})
    {
        Scene scene;
        scene.volume = MakeVolume(84, 83, 8,
                                  [&](int i, int j, int k)
                                  {
                                      const bool inside = i >= spot && i < spot + 2 && j >= spot && j < spot + 2;
                                      return inside ? 1000 + 100 * (i - spot) + 50 * (j - spot) + 10 * k : 0;
                                  });
        scene.palette.Add(
            0, 600, 2000, [](int) { return 0.4f; },
            [](int value) {
                return Colour{uint8_t(value / 8), uint8_t(value), uint8_t(value / 3)};
            },
            {0.4f, 0.5f, 0.2f});
        std::fill_n(pixels.get(), kPixels, kUntouched);
        PnImageRGB large = {pixels.get(), kLarge};
        Render3D render;
        ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
        ASSERT_TRUE(render.ImagingVR(&large, 0));
        // A few pixels around the spot, whole numbers of them from the edge.
        PnImageParam near = PlaneOf(5, 0.5);
        near.position[0] = near.position[1] = spot - 0.5;
        TestImage small(near);
        std::fill(small.pixels.begin(), small.pixels.end(), 0u);
        ASSERT_TRUE(render.ImagingVR(&small.image, 0));
        const size_t first = size_t(spot - 2) * 256;
        int seen = 0;
        for (size_t row = 0; row < 5; ++row)
            for (size_t column = 0; column < 5; ++column)
            {
                const uint32_t pixel = pixels[(first + 128 * row) * kSide + first + 128 * column];
                EXPECT_EQ(pixel == kUntouched ? 0 : pixel, small.pixels[5 * row + column])
                    << spot << ": " << row << ", " << column;
                seen += pixel != kUntouched && pixel != 0;
            }
        EXPECT_GE(seen, 9) << spot;
        EXPECT_EQ(pixels[size_t(spot == 2 ? kSide - 1 : 0) * (kSide + 1)], kUntouched); // far from the spot
    }
}
} // namespace corvane::tests
