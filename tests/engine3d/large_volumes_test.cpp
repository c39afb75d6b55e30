#include "corvane/Engine3D.h"
#include "tests/mpr/owned_image.h"
#include "tests/render3d/scenes.h"

#include <gtest/gtest.h>

#include <cmath>

// Labels and cuts of large slices and of many.
namespace corvane::tests
{
namespace
{
constexpr int kSize = 2100;

// How many labels differ from label(i, j, k).
template <class Label>
int64_t WrongLabels(const KsVolumeMark& mark, const Label& label)
{
    int64_t wrong = 0;
    for (uint32_t k = 0; k < mark.sizeZ; ++k)
        for (uint32_t j = 0; j < mark.sizeY; ++j)
            for (uint32_t i = 0; i < mark.sizeX; ++i)
                wrong += mark.slices[k][size_t(j) * mark.sizeX + i] != label(int(i), int(j), int(k));
    return wrong;
}

// An opaque palette of one colour, so that every voxel of the tests is seen.
void ShowEverything(Engine3D& engine)
{
    KsPalettePoint points[2] = {{-1024, 0x204060, 1.0f}, {3000, 0x204060, 1.0f}};
    KsPalette palette;
    palette.points = points;
    palette.pointCount = 2;
    EXPECT_TRUE(engine.SetPalette(palette));
    EXPECT_TRUE(engine.SetShading(1, 0, 0, 0));
}
} // namespace

// Pixels of the region lie on voxel centres: every third voxel of the last two rows of the volume, and the first one.
TEST(LargeVolumes, Of2100SquaredVoxelsAreCutVoxelByVoxel)
{
    const TestVolume volume =
        MakeVolume(kSize, kSize, 2, [](int i, int j, int k) { return (7 * i + 13 * j + k) % 2999; });
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    const auto drawn = [](int i, int j) { return (i == 0 && j == 0) || (j >= kSize - 2 && i % 3 == 0); };
    std::vector<uint8_t> pixels(size_t(kSize) * kSize);
    for (int j = 0; j < kSize; ++j)
        for (int i = 0; i < kSize; ++i)
            pixels[size_t(j) * kSize + size_t(i)] = drawn(i, j);
    // A quarter of a pixel before each centre, because truncation decides.
    const KsImageMark region = {pixels.data(), {kSize, kSize, 1, 1, {1, 0, 0}, {0, 1, 0}, {-0.25, -0.25, 40}}};
    TestLabels selection = MakeLabels(kSize, kSize, 2, [](int, int, int) { return 0xEE; });
    ASSERT_TRUE(engine.CutFill(region, selection.mark, 3));
    EXPECT_EQ(WrongLabels(selection.mark, [&](int i, int j, int) { return drawn(i, j) ? 3 : 0; }), 0);
    ASSERT_TRUE(engine.CutAppend(selection.mark));
    EXPECT_EQ(WrongLabels(*engine.GetMarkData(), [&](int i, int j, int) { return drawn(i, j) ? 64 : 0; }), 0);
}

// The same slices eight times, the upper and the lower one: what is cut away in all of them is not seen any more.
TEST(LargeVolumes, Of2100SquaredVoxelsAreSeenWithoutWhatIsCut)
{
    const TestVolume volume = MakeVolume(kSize, kSize, 1, [](int i, int j, int) { return (7 * i + 13 * j) % 2999; });
    const std::vector<const int16_t*> slices(8, volume.slices[0]);
    KsVolumeData deep = volume.data;
    deep.slices = slices.data();
    deep.sizeZ = 8;
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(deep));
    ShowEverything(engine);
    const auto cut = [](int i, int j) { return j >= kSize - 6 && i % 16 < 8; };
    KsVolumeMark& labels = *engine.GetMarkData();
    for (uint32_t k = 0; k < labels.sizeZ; ++k)
        for (int j = 0; j < kSize; ++j)
            for (int i = 0; i < kSize; ++i)
                if (cut(i, j))
                    labels.slices[k][size_t(j) * kSize + size_t(i)] = 64;
    engine.UpdateMarkData();

    const PnImageParam plane = {3, kSize - 4, 1, 1, {1, 0, 0}, {0, 1, 0}, {2, kSize - 5, 3.5}};
    OwnedImage image;
    ASSERT_TRUE(engine.ImagingMIP(plane, 20, &image));
    int wrong = 0;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < kSize - 4; ++column)
            wrong += image.values[row * (kSize - 4) + column] != (7 * (column + 2) + 13 * (kSize - 5 + row)) % 2999;
    EXPECT_EQ(wrong, 0); // a slab ignores labels

    engine.RotateToAxial();
    std::vector<uint32_t> pixels(size_t(kSize) * kSize);
    PnImageRGB picture;
    ASSERT_TRUE(engine.ImagingVR(kSize, kSize, pixels.data(), false, &picture, 0));
    // A pixel shows its nearest voxel; those that lie between two, or on the edge of what can be sampled, are left out.
    const PnImageParam& param = picture.param;
    const auto isBetween = [](double place) { return std::abs(place - std::floor(place) - 0.5) < 0.02; };
    int64_t shown = 0, hidden = 0, different = 0;
    for (int row = 0; row < kSize; ++row)
        for (int column = 0; column < kSize; ++column)
        {
            const double right = column * param.columnSpacing, down = row * param.rowSpacing;
            const double x = param.position[0] + right * param.rowDirection[0] + down * param.columnDirection[0];
            const double y = param.position[1] + right * param.rowDirection[1] + down * param.columnDirection[1];
            if (isBetween(x) || isBetween(y) || !(x > 1.1 && x < kSize - 2.1 && y > 1.1 && y < kSize - 2.1))
                continue;
            const bool isCut = cut(int(x + 0.5), int(y + 0.5));
            different +=
                pixels[size_t(row) * kSize + size_t(column)] != (isCut ? 0u : PixelOf(255, {0x20, 0x40, 0x60}));
            (isCut ? hidden : shown) += 1;
        }
    EXPECT_EQ(different, 0);
    EXPECT_GT(shown, kSize * kSize / 3); // the camera's square is as wide as the volume's diagonal
    EXPECT_GT(hidden, 1000);
}

TEST(LargeVolumes, Of3500SlicesAreLabelledAndCutToTheLast)
{
    constexpr int kSlices = 3500;
    const TestVolume volume = MakeVolume(20, 24, 1, [](int i, int j, int) { return 100 + i + j; });
    const std::vector<const int16_t*> slices(kSlices, volume.slices[0]);
    KsVolumeData stack = volume.data;
    stack.slices = slices.data();
    stack.sizeZ = kSlices;
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(stack));
    // From the side: pixels of a row along y, rows along z, a little before each centre. The last two slices and the
    // first are drawn, and of those every row of voxels but one.
    std::vector<uint8_t> pixels(size_t(24) * kSlices);
    const auto drawn = [](int j, int k) { return (k == 0 || k >= kSlices - 2) && j != 7; };
    for (int k = 0; k < kSlices; ++k)
        for (int j = 0; j < 24; ++j)
            pixels[size_t(k) * 24 + size_t(j)] = drawn(j, k);
    const KsImageMark region = {pixels.data(), {kSlices, 24, 1, 1, {0, 1, 0}, {0, 0, 1}, {-9, -0.25, -0.25}}};
    TestLabels selection = MakeLabels(20, 24, kSlices, [](int, int, int) { return 0xEE; });
    ASSERT_TRUE(engine.CutFill(region, selection.mark, 1));
    EXPECT_EQ(WrongLabels(selection.mark, [&](int, int j, int k) { return int(drawn(j, k)); }), 0);
    ASSERT_TRUE(engine.CutAppend(selection.mark));
    EXPECT_EQ(WrongLabels(*engine.GetMarkData(), [&](int, int j, int k) { return drawn(j, k) ? 64 : 0; }), 0);
}

// A region of 20,000 x 20,000 pixels of which the last is drawn: 256 pixels to a voxel.
TEST(LargeVolumes, AreCutByTheLastPixelOf20000Squared)
{
    constexpr uint32_t kSide = 20000;
    const TestVolume volume = MakeVolume(79, 79, 4, [](int, int, int) { return 500; });
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    std::vector<uint8_t> pixels(size_t(kSide) * kSide);
    const double pixel = 1.0 / 256;
    // Voxel 78 lies in pixel 19968 of the rows and columns that begin at 0.
    pixels[size_t(19968) * kSide + 19968] = 1;
    pixels[19968] = 1; // of the first row of voxels
    const KsImageMark region = {pixels.data(), {kSide, kSide, pixel, pixel, {1, 0, 0}, {0, 1, 0}, {0, 0, -3}}};
    TestLabels selection = MakeLabels(79, 79, 4, [](int, int, int) { return 0xEE; });
    ASSERT_TRUE(engine.CutFill(region, selection.mark, 9));
    EXPECT_EQ(WrongLabels(selection.mark, [](int i, int j, int) { return i == 78 && (j == 0 || j == 78) ? 9 : 0; }), 0);
}
} // namespace corvane::tests
