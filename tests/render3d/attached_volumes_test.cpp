#include "corvane/Render3D.h"

#include "plain_ray_caster.h"
#include "scenes.h"
#include "scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>

// Further volumes of the same sizes, drawn in place of the main one.
namespace corvane::tests
{
namespace
{
constexpr PnImageParam kFront = {20, 20, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, -10}};

// A volume of 20 voxels cubed, 1000 for x in a range.
TestVolume Bar(int from, int to)
{
    return MakeVolume(20, 20, 20, [=](int i, int, int) { return i >= from && i <= to ? 1000 : 0; });
}

TestPalette OpaquePalette(Colour colour)
{
    TestPalette palette;
    palette.AddOpaqueFrom(0, 500, colour);
    return palette;
}

TestImage Drawn(Render3D& render, int index, const PnImageParam& param = kFront)
{
    TestImage image(param);
    EXPECT_TRUE(render.ImagingVR(&image.image, index));
    return image;
}

TestImage DrawnAlone(const KsVolumeData& volume, const KsVolumeMark& mark, const VolumePalette& palette,
                     const PnImageParam& param = kFront)
{
    TestImage image(param);
    PlainRayCaster(volume, mark, palette).DrawVolume(image.image);
    return image;
}
} // namespace

TEST(AttachedVolumes, AreCountedAndDrawnByNumber)
{
    const TestVolume main = Bar(3, 5), first = Bar(7, 9), second = Bar(12, 14), third = Bar(15, 16);
    const TestPalette palette = OpaquePalette({200, 100, 50});
    Render3D render;
    ASSERT_TRUE(render.InitData(main.data, {}, palette.palette));
    EXPECT_EQ(render.AttachVolumeData(first.data), 1);
    EXPECT_EQ(render.AttachVolumeData(second.data), 2);
    const TestImage mainImage = DrawnAlone(main.data, {}, palette.palette);
    ExpectSamePixels(Drawn(render, 3), mainImage);
    EXPECT_EQ(render.AttachVolumeData(third.data), 3);
    ExpectSamePixels(Drawn(render, 1), DrawnAlone(first.data, {}, palette.palette));
    ExpectSamePixels(Drawn(render, 2), DrawnAlone(second.data, {}, palette.palette));
    ExpectSamePixels(Drawn(render, 3), DrawnAlone(third.data, {}, palette.palette));
    for (const int index : {0, -1, 4, 1000000, INT32_MIN, INT32_MAX})
        ExpectSamePixels(Drawn(render, index), mainImage);
}

TEST(AttachedVolumes, HaveTheirOwnGeometry)
{
    TestVolume main = Bar(3, 5), other = MakeBall(20, 20, 20, 9, 10, 11, 6);
    const float spacing[3] = {0.5f, 0.75f, 1.25f}, slice[3] = {0.28f, 0, 0.96f};
    std::copy_n(spacing, 3, other.data.spacing);
    std::copy_n(slice, 3, other.data.sliceDirection);
    other.data.origin[0] = -3;
    const TestPalette palette = OpaquePalette({200, 100, 50});
    Render3D render;
    ASSERT_TRUE(render.InitData(main.data, {}, palette.palette));
    ASSERT_EQ(render.AttachVolumeData(other.data), 1);
    ExpectSamePixels(Drawn(render, 1), DrawnAlone(other.data, {}, palette.palette));
}

TEST(AttachedVolumes, OfOtherSizesOrWithoutVoxelsAreRefused)
{
    const TestVolume main = Bar(3, 5), good = Bar(7, 9);
    const TestPalette palette = OpaquePalette({200, 100, 50});
    Render3D render;
    EXPECT_EQ(render.AttachVolumeData(good.data), 0); // there is no main volume
    ASSERT_TRUE(render.InitData(main.data, {}, palette.palette));
    ASSERT_EQ(render.AttachVolumeData(good.data), 1);
    for (int wrong = 0; wrong < 8; ++wrong)
    {
        KsVolumeData volume = good.data;
        std::vector<const int16_t*> slices = good.slices;
        slices.push_back(slices[0]);
        volume.slices = slices.data();
        if (wrong < 6)
            (wrong % 3 == 0 ? volume.sizeX : wrong % 3 == 1 ? volume.sizeY : volume.sizeZ) += wrong < 3 ? -1 : 1;
        else if (wrong == 6)
            volume.slices = nullptr;
        else
            slices[4] = nullptr;
        EXPECT_EQ(render.AttachVolumeData(volume), 0) << wrong;
    }
    EXPECT_EQ(render.AttachVolumeData(good.data), 2);
}

TEST(AttachedVolumes, ShareTheLabelsAndTablesOfTheMainVolume)
{
    const ScratchFolder folder;
    const TestVolume main = Bar(3, 5), other = Bar(4, 15);
    TestLabels half = MakeLabels(20, 20, 20, [](int, int j, int) { return j < 10 ? 64 : 0; });
    TestLabels quarter = MakeLabels(20, 20, 20, [](int i, int, int) { return i < 9 ? 1 : 0; });
    const TestPalette red = OpaquePalette({200, 0, 0}), green = OpaquePalette({0, 200, 0});
    Render3D render;
    ASSERT_TRUE(render.InitData(main.data, half.mark, red.palette));
    ASSERT_EQ(render.AttachVolumeData(other.data), 1);
    ExpectSamePixels(Drawn(render, 1), DrawnAlone(other.data, half.mark, red.palette));

    ASSERT_TRUE(render.SetPalette(green.palette));
    ExpectSamePixels(Drawn(render, 1), DrawnAlone(other.data, half.mark, green.palette));
    ExpectSamePixels(Drawn(render, 0), DrawnAlone(main.data, half.mark, green.palette));

    // New labels reach a volume that was drawn with the old ones.
    KsVolumeMark mark = quarter.mark;
    render.SetVolumeMark(mark);
    ExpectSamePixels(Drawn(render, 1), DrawnAlone(other.data, quarter.mark, green.palette));
    ExpectSamePixels(Drawn(render, 0), DrawnAlone(main.data, quarter.mark, green.palette));
}

TEST(AttachedVolumes, AreNotCutByTheVisibleBox)
{
    const TestVolume main = Bar(3, 15), other = Bar(4, 16);
    const TestPalette palette = OpaquePalette({200, 0, 0});
    Render3D render;
    ASSERT_TRUE(render.InitData(main.data, {}, palette.palette));
    ASSERT_EQ(render.AttachVolumeData(other.data), 1);
    const float low[3] = {0, 0, 0}, high[3] = {8, 20, 20};
    ASSERT_TRUE(render.SetVisibleBox(low, high));
    EXPECT_EQ(Drawn(render, 0).At(10, 12), 0u);
    EXPECT_EQ(Drawn(render, 1).At(10, 12), PixelOf(255, {200, 0, 0}));
}

TEST(AttachedVolumes, ShowBlendImagesToo)
{
    const TestVolume main = Bar(3, 5), other = Bar(7, 9);
    const TestPalette palette = OpaquePalette({200, 0, 0});
    std::vector<uint32_t> pixels(400, 0x01020300);
    KsBlendImage blend = {{{0, 0}, {19, 0}, {19, 19}, {0, 19}}, pixels.data(), {}, {1, 0, 0}, {0, 1, 0}, {0, 0, 19}};
    Render3D render;
    ASSERT_TRUE(render.InitData(main.data, {}, palette.palette));
    ASSERT_EQ(render.AttachVolumeData(other.data), 1);
    render.SetBlendImage(&blend, 1);
    TestImage expected(kFront);
    PlainRayCaster(other.data, {}, palette.palette).DrawVolume(expected.image, {&blend, 1});
    ExpectSamePixels(Drawn(render, 1), expected);
    EXPECT_EQ(expected.At(10, 15), 0x010203FFu);
}

TEST(AttachedVolumes, AreForgottenByClearAttachVolumeAndByClear)
{
    const TestVolume main = Bar(3, 5), other = Bar(7, 9);
    const TestPalette palette = OpaquePalette({200, 0, 0});
    Render3D render;
    render.ClearAttachVolume(); // nothing to forget
    ASSERT_TRUE(render.InitData(main.data, {}, palette.palette));
    ASSERT_EQ(render.AttachVolumeData(other.data), 1);
    ASSERT_EQ(render.AttachVolumeData(other.data), 2);
    render.ClearAttachVolume();
    ExpectSamePixels(Drawn(render, 1), DrawnAlone(main.data, {}, palette.palette));
    EXPECT_EQ(render.AttachVolumeData(other.data), 1);
    ExpectSamePixels(Drawn(render, 1), DrawnAlone(other.data, {}, palette.palette));

    ASSERT_TRUE(render.InitData(main.data, {}, palette.palette)); // clears
    ExpectSamePixels(Drawn(render, 1), DrawnAlone(main.data, {}, palette.palette));
    EXPECT_EQ(render.AttachVolumeData(other.data), 1);
}

// The masks of each volume are brought up to date when it is drawn, whatever was drawn before.
TEST(AttachedVolumes, AreBroughtUpToDateOneByOne)
{
    const TestVolume main = Bar(3, 5), first = Bar(7, 9), second = Bar(12, 14);
    const TestPalette red = OpaquePalette({200, 0, 0});
    TestPalette nothing;
    nothing.AddOpaqueFrom(0, 5000, {1, 1, 1});
    Render3D render;
    ASSERT_TRUE(render.InitData(main.data, {}, nothing.palette));
    ASSERT_EQ(render.AttachVolumeData(first.data), 1);
    ASSERT_EQ(render.AttachVolumeData(second.data), 2);
    for (const int index : {0, 1, 2})
        EXPECT_EQ(Drawn(render, index).At(10, 10), 0u) << index;
    ASSERT_TRUE(render.SetPalette(red.palette));
    ExpectSamePixels(Drawn(render, 2), DrawnAlone(second.data, {}, red.palette));
    ExpectSamePixels(Drawn(render, 0), DrawnAlone(main.data, {}, red.palette));
    ExpectSamePixels(Drawn(render, 1), DrawnAlone(first.data, {}, red.palette));
}
} // namespace corvane::tests
