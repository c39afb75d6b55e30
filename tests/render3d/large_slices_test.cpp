#include "hazard_scenes.h"
#include "plain_projection.h"

// Slices of 2,100 x 2,100 voxels. Rays run along z through voxel centres, so that every pixel is known from its place.
namespace corvane::tests
{
using namespace hazards;

namespace
{
constexpr int kSize = 2100;

// No two neighbours, and no two voxels a whole number of rows apart within reach, are alike.
int UpperValue(int i, int j) { return (7 * i + 13 * j) % 2999; }
int LowerValue(int i, int j) { return (11 * i + 5 * j) % 2011 + 500; }

// A slice of each kind.
struct LargeSlices
{
    TestVolume two =
        MakeVolume(kSize, kSize, 2, [](int i, int j, int k) { return k ? LowerValue(i, j) : UpperValue(i, j); });
    std::vector<const int16_t*> padded; // each slice four times
    KsVolumeData deep = two.data;

    LargeSlices()
    {
        padded.assign(4, two.slices[0]);
        padded.insert(padded.end(), 4, two.slices[1]);
        deep.slices = padded.data();
        deep.sizeZ = 8;
    }
    LargeSlices(const LargeSlices&) = delete;
    LargeSlices& operator=(const LargeSlices&) = delete;
};

// A pixel for each voxel of the last 300 rows that can be sampled.
constexpr int kRows = 300, kColumns = kSize - 4, kFirstRow = kSize - 2 - kRows;
constexpr PnImageParam kLastRows = {kRows, kColumns, 1, 1, {1, 0, 0}, {0, 1, 0}, {2, kFirstRow, -5}};

// The first pixel that is not as expected of its voxel; none is -1.
template <class Pixels, class Expected>
int64_t FirstWrong(const Pixels& pixels, const Expected& expected)
{
    for (int row = 0; row < kRows; ++row)
        for (int column = 0; column < kColumns; ++column)
        {
            const int64_t pixel = int64_t(row) * kColumns + column;
            if (pixels[size_t(pixel)] != expected(column + 2, kFirstRow + row))
                return pixel;
        }
    return -1;
}

// Every value is opaque and has a colour of its own.
Colour ColourOf(int value) { return {uint8_t(value >> 8), uint8_t(value), uint8_t(255 - value / 16)}; }

TestPalette OpaqueColours()
{
    TestPalette palette;
    palette.Add(
        0, -1024, 4000, [](int) { return 1.0f; }, ColourOf);
    return palette;
}
} // namespace

TEST(LargeSlices, AreProjectedVoxelByVoxel)
{
    const LargeSlices slices;
    const TestPalette palette = OpaqueColours();
    Render3D render;
    ASSERT_TRUE(render.InitData(slices.deep, {}, palette.palette));
    TestValues image(kLastRows);
    // Samples stand at 1.01, 2.01 and so on to 5.01, three nearest to copies of the upper slice and two of the lower.
    ASSERT_TRUE(render.ImagingMIP(&image.image));
    EXPECT_EQ(FirstWrong(image.values, [](int i, int j) { return std::max(UpperValue(i, j), LowerValue(i, j)); }), -1);
    ASSERT_TRUE(render.ImagingMinIP(&image.image));
    EXPECT_EQ(FirstWrong(image.values, [](int i, int j) { return std::min(UpperValue(i, j), LowerValue(i, j)); }), -1);
    ASSERT_TRUE(render.ImagingAIP(&image.image));
    EXPECT_EQ(FirstWrong(image.values, [](int i, int j) { return (3 * UpperValue(i, j) + 2 * LowerValue(i, j)) / 5; }),
              -1);
}

TEST(LargeSlices, AreDrawnVoxelByVoxel)
{
    const LargeSlices slices;
    const TestPalette palette = OpaqueColours();
    Render3D render;
    ASSERT_TRUE(render.InitData(slices.deep, {}, palette.palette));
    TestImage image(kLastRows);
    ASSERT_TRUE(render.ImagingVR(&image.image, 0));
    EXPECT_EQ(FirstWrong(image.pixels, [](int i, int j) { return PixelOf(255, ColourOf(UpperValue(i, j))); }), -1);
}

TEST(LargeSlices, LookTheSameFromInside)
{
    const LargeSlices slices;
    const TestPalette palette = OpaqueColours();
    Render3D render;
    ASSERT_TRUE(render.InitData(slices.deep, {}, palette.palette));
    for (const int voxel : {2, 1050, kSize - 3})
    {
        PnImageParam one = {};
        one.rows = one.columns = 1;
        TestImage image(one);
        const KsViewPoint view = {{float(voxel), float(kSize - 1 - voxel), -3}, {0, 0, 1}, {0, 1, 0}};
        ASSERT_TRUE(render.ImagingVE(view, 90, &image.image));
        // A picture of one pixel is the eye itself.
        EXPECT_EQ(image.At(0, 0), 0u);
        one.rows = one.columns = 3;
        TestImage middle(one);
        ASSERT_TRUE(render.ImagingVE(view, 5, &middle.image));
        EXPECT_EQ(middle.At(1, 1), PixelOf(255, ColourOf(UpperValue(voxel, kSize - 1 - voxel)))) << voxel;
    }
}

TEST(LargeSlices, WithLabelsShowWhatTheirTablesShow)
{
    const LargeSlices slices;
    TestPalette palette = OpaqueColours();
    palette.AddOpaqueFrom(5, -1024, {9, 8, 7});
    // Label 6 has no table. The last row that can be sampled has label 5 but for its last voxel.
    const auto labelAt = [](int i, int j) { return j == kSize - 3 ? (i == kSize - 3 ? 6 : 5) : 0; };
    TestLabels labels = MakeLabels(kSize, kSize, 1, [&](int i, int j, int) { return labelAt(i, j); });
    labels.slices.assign(8, labels.slices[0]);
    labels.mark = {labels.slices.data(), kSize, kSize, 8};
    Render3D render;
    ASSERT_TRUE(render.InitData(slices.deep, labels.mark, palette.palette));
    TestImage image(kLastRows);
    ASSERT_TRUE(render.ImagingVR(&image.image, 0));
    EXPECT_EQ(FirstWrong(image.pixels,
                         [&](int i, int j)
                         {
                             const int label = labelAt(i, j);
                             return label == 6   ? 0u
                                    : label == 5 ? PixelOf(255, {9, 8, 7})
                                                 : PixelOf(255, ColourOf(UpperValue(i, j)));
                         }),
              -1);
    TestValues values(kLastRows);
    ASSERT_TRUE(render.ImagingMIP(&values.image));
    EXPECT_EQ(FirstWrong(values.values, [&](int i, int j)
                         { return labelAt(i, j) == 6 ? -1024 : std::max(UpperValue(i, j), LowerValue(i, j)); }),
              -1);
}

// As they are, two slices have no voxel with neighbours on both sides.
TEST(LargeSlices, OfWhichThereAreTwoShowNothing)
{
    const LargeSlices slices;
    Scene scene;
    scene.palette = OpaqueColours();
    ExpectNothing(slices.two.data, scene);
    Render3D render;
    ASSERT_TRUE(render.InitData(slices.two.data, {}, scene.palette.palette));
    PnImageParam some = kLastRows;
    some.rows = some.columns = 40;
    some.position[0] = some.position[1] = kSize - 42;
    TestImage image(some);
    ASSERT_TRUE(render.ImagingVR(&image.image, 0));
    EXPECT_TRUE(ShowsNothing(image));
    for (const ProjectionKind kind : kAllKinds)
    {
        TestValues values(some);
        EXPECT_TRUE(Imaging(render, kind, &values.image));
        EXPECT_TRUE(values.AreAll(kBackground));
    }
}
} // namespace corvane::tests
