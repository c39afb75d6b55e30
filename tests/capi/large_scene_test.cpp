#include "c_handles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

// Scenes of large slices, and outlines of as many points as are taken.
namespace
{
using namespace corvane::tests;

constexpr int kSize = 2100;
constexpr size_t kSlice = size_t(kSize) * kSize;

KsVolumeData GeometryOf(int sizeX, int sizeY, int sizeZ)
{
    return {nullptr, sizeX, sizeY, sizeZ, {1, 1, 1}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
}

// Pixel (row j, column i) lies before voxel (i, j).
PnImageParam FrontOf(const KsVolumeData& volume)
{
    return {uint32_t(volume.sizeY), uint32_t(volume.sizeX), 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, -10}};
}
} // namespace

TEST(LargeScene, Of2100SquaredVoxelsIsLabelledCutAndResliced)
{
    const KsVolumeData volume = GeometryOf(kSize, kSize, 2);
    std::vector<int16_t> voxels(2 * kSlice, 500);
    const Owned<CorvaneScene> scene(corvane_scene_create(CORVANE_C_INTERFACE));
    ASSERT_EQ(corvane_scene_set_voxels(scene.get(), &volume, voxels.data(), voxels.size()), CORVANE_OK);
    std::vector<uint8_t> labels(2 * kSlice);
    for (size_t voxel = 0; voxel < labels.size(); ++voxel)
        labels[voxel] = uint8_t(voxel * 7 / 3 % 2 * 9); // 0 and 9
    ASSERT_EQ(corvane_scene_set_labels(scene.get(), labels.data(), labels.size()), CORVANE_OK);
    KsPalettePoint points[2] = {{0, 0xFFFFFF, 1}, {1000, 0xFFFFFF, 1}};
    KsPalette palette = PaletteOf(points);
    ASSERT_EQ(corvane_scene_set_palette(scene.get(), 9, &palette), CORVANE_OK);

    // Around the last 3 columns and 2 rows of voxels.
    const PnImageParam plane = FrontOf(volume);
    const double end = kSize + 5, corner[8] = {kSize - 3.5, kSize - 2.5, end, kSize - 2.5, end, end, kSize - 3.5, end};
    uint64_t cut = 0;
    ASSERT_EQ(corvane_scene_cut_polygon(scene.get(), &plane, corner, 4, CORVANE_INSIDE, &cut), CORVANE_OK);
    EXPECT_EQ(cut, 2u * 3 * 2);
    const std::vector<uint8_t> before = labels;
    for (int k = 0; k < 2; ++k)
        for (int j = kSize - 2; j < kSize; ++j)
            for (int i = kSize - 3; i < kSize; ++i)
                labels[(size_t(k) * kSize + size_t(j)) * kSize + size_t(i)] |= 64;
    EXPECT_TRUE(LabelsOf(scene.get(), volume) == labels);

    std::vector<uint8_t> image(kSlice);
    PnImageParam through = plane;
    through.position[2] = 1;
    ASSERT_EQ(corvane_scene_reslice_labels(scene.get(), &through, image.data(), image.size()), CORVANE_OK);
    EXPECT_TRUE(std::equal(image.begin(), image.end(), labels.begin() + int64_t(kSlice)));
    ASSERT_EQ(corvane_scene_undo(scene.get()), CORVANE_OK);
    EXPECT_TRUE(LabelsOf(scene.get(), volume) == before);

    std::vector<uint8_t> selection(2 * kSlice);
    selection[0] = selection[kSlice] = selection.back() = 1;
    ASSERT_EQ(corvane_scene_cut_selection(scene.get(), selection.data(), selection.size(), &cut), CORVANE_OK);
    EXPECT_EQ(cut, 3u);
    EXPECT_EQ(corvane_scene_restore(scene.get(), &cut), CORVANE_OK);
    EXPECT_EQ(cut, 3u);
}

// The sides of a square in 2^16 pieces, and one that runs 2^16 times from side to side: an outline costs a step for
// each point and row of voxels, and cuts what its four corners cut.
TEST(LargeScene, IsCutByOutlinesOfAsManyPointsAsAreTaken)
{
    const TestVolume volume = MakeVolume(12, 10, 8, [](int, int, int) { return 500; });
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    ASSERT_TRUE(scene);
    const PnImageParam plane = FrontOf(volume.data);
    constexpr size_t kMost = size_t(1) << 16, kSide = kMost / 4;
    std::vector<double> square, zigzag;
    for (size_t n = 0; n < kMost; ++n)
    {
        const double share = 5.0 * double(n % kSide) / double(kSide);
        const std::pair<double, double> sides[4] = {
            {2.5 + share, 2.5}, {7.5, 2.5 + share}, {7.5 - share, 7.5}, {2.5, 7.5 - share}};
        square.insert(square.end(), {sides[n / kSide].first, sides[n / kSide].second});
    }
    for (size_t n = 0; n < kMost; ++n)
        zigzag.insert(zigzag.end(), {-20 + 40 * double(n) / double(kMost), n % 2 ? -20.0 : 20.0});
    uint64_t cut = 0;
    ASSERT_EQ(corvane_scene_cut_polygon(scene.get(), &plane, square.data(), kMost, CORVANE_INSIDE, &cut), CORVANE_OK);
    EXPECT_EQ(cut, 5u * 5 * 8);
    ASSERT_EQ(corvane_scene_restore(scene.get(), &cut), CORVANE_OK);
    uint64_t inside = 0, outside = 0;
    ASSERT_EQ(corvane_scene_cut_polygon(scene.get(), &plane, zigzag.data(), kMost, CORVANE_INSIDE, &inside),
              CORVANE_OK);
    ASSERT_EQ(corvane_scene_cut_polygon(scene.get(), &plane, zigzag.data(), kMost, CORVANE_OUTSIDE, &outside),
              CORVANE_OK);
    EXPECT_EQ(inside + outside, 12u * 10 * 8);
    EXPECT_EQ(corvane_scene_cut_polygon(scene.get(), &plane, square.data(), kMost + 1, CORVANE_INSIDE, &cut),
              CORVANE_ERROR_ARGUMENT);
}
