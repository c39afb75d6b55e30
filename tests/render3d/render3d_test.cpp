#include "corvane/Render3D.h"

#include "block_scene.h"
#include "scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

// What the renderer keeps between pictures.
namespace corvane::tests
{
using namespace block;

namespace
{
// The start of a line, digits and the end of the line; nothing else.
bool IsOneNumberAfter(const std::string& start, const std::string& printed)
{
    const size_t digits = printed.find_first_not_of("0123456789", start.size());
    return printed.substr(0, start.size()) == start && digits > start.size() && digits != std::string::npos &&
           printed.substr(digits) == "\n";
}
} // namespace

TEST(Render3DState, WithoutAVolumeNothingIsDrawnAndNoBoxIsKnown)
{
    const Scene scene = BlockScene();
    Render3D render;
    EXPECT_TRUE(IsEmpty(render));
    EXPECT_EQ(render.AttachVolumeData(scene.volume.data), 0);
    render.Clear();
    render.Clear();
    EXPECT_TRUE(IsEmpty(render));
}

TEST(Render3DState, APaletteMayComeBeforeTheVolume)
{
    const Scene scene = BlockScene();
    TestPalette green;
    green.AddOpaqueFrom(0, 500, {0, 200, 0});
    Render3D render;
    EXPECT_TRUE(render.SetPalette(green.palette));
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    EXPECT_EQ(Drawn(render).At(10, 10), PixelOf(255, {200, 0, 0})); // the volume came with its own
    EXPECT_TRUE(render.SetPalette(green.palette));
    EXPECT_EQ(Drawn(render).At(10, 10), PixelOf(255, {0, 200, 0}));
}

TEST(Render3DState, ANewPaletteCanShowWhatTheOldOneHid)
{
    const Scene scene = BlockScene();
    TestPalette nothing;
    nothing.AddOpaqueFrom(0, 2000, {1, 1, 1});
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, nothing.palette));
    EXPECT_EQ(Drawn(render).At(10, 10), 0u);
    EXPECT_TRUE(render.SetPalette(scene.palette.palette));
    EXPECT_EQ(Drawn(render).At(10, 10), PixelOf(255, {200, 0, 0}));
    EXPECT_TRUE(render.SetPalette(nothing.palette));
    EXPECT_EQ(Drawn(render).At(10, 10), 0u);
}

TEST(Render3DState, NewLabelsCutAndUncutWhatIsDrawn)
{
    const ScratchFolder folder;
    const Scene scene = BlockScene();
    TestLabels cut = MakeLabels(20, 20, 20, [](int i, int, int) { return i < 10 ? 64 : 0; });
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    EXPECT_EQ(Drawn(render).At(10, 8), PixelOf(255, {200, 0, 0}));
    render.SetVolumeMark(cut.mark);
    TestImage image(kFront);
    ASSERT_TRUE(render.ImagingVR(&image.image, 0));
    EXPECT_TRUE(image.At(10, 8) == 0 || image.At(10, 8) == kUntouched);
    EXPECT_EQ(image.At(10, 12), PixelOf(255, {200, 0, 0}));
    render.SetVolumeMark({});
    EXPECT_EQ(Drawn(render).At(10, 8), PixelOf(255, {200, 0, 0}));
}

// 1.1 voxels inside the outermost voxel centres.
TEST(Render3DState, TheBoundingBoxHoldsWhatCanBeSampled)
{
    TestVolume volume = MakeVolume(10, 20, 30, [](int, int, int) { return 0; });
    const float spacing[3] = {2, 1, 0.5f}, origin[3] = {-5, 7, 100};
    std::copy_n(spacing, 3, volume.data.spacing);
    std::copy_n(origin, 3, volume.data.origin);
    Render3D render;
    ASSERT_TRUE(render.InitData(volume.data, {}, {}));
    float low[3], high[3];
    ASSERT_TRUE(render.GetBoundingBox(low, high));
    const std::array<float, 6> visible = VisibleBox(render);
    const double sizes[3] = {10, 20, 30};
    for (int axis = 0; axis < 3; ++axis)
    {
        EXPECT_NEAR(low[axis], origin[axis] + 1.1 * spacing[axis], 2e-5);
        EXPECT_NEAR(high[axis], origin[axis] + (sizes[axis] - 2.1) * spacing[axis], 2e-5);
        EXPECT_EQ(visible[size_t(axis)], low[axis] - 0.1f);
        EXPECT_EQ(visible[size_t(axis) + 3], high[axis] + 0.1f);
    }
}

TEST(Render3DState, TheBoundingBoxOfATiltedStackHoldsItsCorners)
{
    TestVolume volume = MakeVolume(12, 12, 12, [](int, int, int) { return 0; });
    const float slice[3] = {0, -0.6f, 0.8f};
    std::copy_n(slice, 3, volume.data.sliceDirection);
    Render3D render;
    ASSERT_TRUE(render.InitData(volume.data, {}, {}));
    float low[3], high[3];
    ASSERT_TRUE(render.GetBoundingBox(low, high));
    const double expected[6] = {1.1, 1.1 - 0.6 * 9.9, 0.8 * 1.1, 9.9, 9.9 - 0.6 * 1.1, 0.8 * 9.9};
    for (int axis = 0; axis < 3; ++axis)
    {
        EXPECT_NEAR(low[axis], expected[axis], 1e-5) << axis;
        EXPECT_NEAR(high[axis], expected[axis + 3], 1e-5) << axis;
    }
}

TEST(Render3DState, TheVisibleBoxIsStoredWithItsCornersSorted)
{
    const Scene scene = BlockScene();
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    const std::array<float, 6> whole = VisibleBox(render);
    const float a[3] = {9, 2, 30}, b[3] = {-4, 5, 8};
    EXPECT_TRUE(render.SetVisibleBox(a, b));
    EXPECT_EQ(VisibleBox(render), (std::array<float, 6>{-4, 2, 8, 9, 5, 30}));
    // The bounding box stays, and the next volume starts with its own.
    float low[3], high[3];
    ASSERT_TRUE(render.GetBoundingBox(low, high));
    EXPECT_EQ(low[0], whole[0] + 0.1f);
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    EXPECT_EQ(VisibleBox(render), whole);
}

TEST(Render3DState, TheVisibleBoxCutsAtOnce)
{
    const Scene scene = BlockScene();
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    EXPECT_EQ(Drawn(render).At(10, 8), PixelOf(255, {200, 0, 0}));
    const float low[3] = {10, 0, 0}, high[3] = {20, 20, 20};
    ASSERT_TRUE(render.SetVisibleBox(low, high));
    const TestImage image = Drawn(render);
    EXPECT_EQ(image.At(10, 8), 0u);
    EXPECT_EQ(image.At(10, 12), PixelOf(255, {200, 0, 0}));
}

TEST(Render3DState, AVolumeThatCannotBeTakenLeavesTheRendererEmpty)
{
    const Scene scene = BlockScene();
    for (int wrong = 0; wrong < 8; ++wrong)
    {
        Render3D render;
        ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
        KsVolumeData volume = scene.volume.data;
        std::vector<const int16_t*> slices = scene.volume.slices;
        volume.slices = slices.data();
        if (wrong == 0)
            volume.slices = nullptr;
        else if (wrong == 1)
            slices[19] = nullptr;
        else
            (wrong % 3 == 0 ? volume.sizeX : wrong % 3 == 1 ? volume.sizeY : volume.sizeZ) = wrong < 5 ? 0 : -20;
        EXPECT_FALSE(render.InitData(volume, {}, scene.palette.palette)) << wrong;
        EXPECT_TRUE(IsEmpty(render)) << wrong;
        EXPECT_EQ(render.AttachVolumeData(scene.volume.data), 0) << wrong;
        EXPECT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette)) << wrong;
        EXPECT_EQ(Drawn(render).At(10, 10), PixelOf(255, {200, 0, 0})) << wrong;
    }
}

TEST(Render3DState, ClearForgetsVolumeTablesAttachedVolumesAndBlendImages)
{
    const Scene scene = BlockScene();
    std::vector<uint32_t> pixels(400, 0xFFFFFF00);
    KsBlendImage blend = {{{0, 0}, {19, 0}, {19, 19}, {0, 19}}, pixels.data(), {}, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}};
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    const TestImage plain = Drawn(render);
    ASSERT_EQ(render.AttachVolumeData(scene.volume.data), 1);
    render.SetBlendImage(&blend, 1);
    EXPECT_EQ(Drawn(render).At(0, 0), 0xFFFFFFFFu);
    render.Clear();
    EXPECT_TRUE(IsEmpty(render));
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    ExpectSamePixels(Drawn(render), plain);
    EXPECT_EQ(render.AttachVolumeData(scene.volume.data), 1);
}

TEST(Render3DState, InitDataClearsThroughTheVirtualTable)
{
    struct Counting : Render3D
    {
        void Clear() override
        {
            ++clears;
            Render3D::Clear();
        }
        int clears = 0;
    } render;
    const Scene scene = BlockScene();
    EXPECT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    EXPECT_EQ(render.clears, 1);
    EXPECT_FALSE(render.InitData({}, {}, scene.palette.palette));
    EXPECT_EQ(render.clears, 2);
}

TEST(Render3DState, ImagesWithoutARecordOrABufferAreRefused)
{
    const Scene scene = BlockScene();
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    EXPECT_FALSE(render.ImagingVR(nullptr, 0));
    PnImageRGB image = {nullptr, kFront};
    EXPECT_FALSE(render.ImagingVR(&image, 0));
}

TEST(Render3DState, AVolumeRenderingLeavesTheGeometryOfItsImage)
{
    const Scene scene = BlockScene();
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    const PnImageParam param = Drawn(render).image.param;
    EXPECT_EQ(param.rows, kFront.rows);
    EXPECT_EQ(param.columns, kFront.columns);
    EXPECT_EQ(param.rowSpacing, kFront.rowSpacing);
    for (int axis = 0; axis < 3; ++axis)
    {
        EXPECT_EQ(param.position[axis], kFront.position[axis]);
        EXPECT_EQ(param.rowDirection[axis], kFront.rowDirection[axis]);
        EXPECT_EQ(param.columnDirection[axis], kFront.columnDirection[axis]);
    }
}

TEST(Render3DState, EveryPictureSaysHowLongItTook)
{
    const Scene scene = BlockScene();
    Render3D render;
    TestImage image(kFront);
    const auto printed = [&](const auto& draw)
    {
        testing::internal::CaptureStdout();
        draw();
        return testing::internal::GetCapturedStdout();
    };
    const std::string volumeLine = "Render3D::VR take time ", endoscopyLine = "Render3D::VE take time ";
    const auto drawVolume = [&] { return render.ImagingVR(&image.image, 0); };
    const auto drawEndoscopy = [&] { return render.ImagingVE(kInside, 60, &image.image); };

    EXPECT_EQ(printed(drawVolume), "");
    EXPECT_EQ(printed(drawEndoscopy), "");
    EXPECT_EQ(printed([&] { ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette)); }), "");
    EXPECT_TRUE(IsOneNumberAfter(volumeLine, printed(drawVolume)));
    EXPECT_TRUE(IsOneNumberAfter(endoscopyLine, printed(drawEndoscopy)));
    EXPECT_EQ(printed([&] { return render.ImagingVR(nullptr, 0); }), "");
    image.image.param.rows = 0; // nothing to draw
    EXPECT_TRUE(IsOneNumberAfter(volumeLine, printed(drawVolume)));
    EXPECT_EQ(printed(drawEndoscopy), "");
}
} // namespace corvane::tests
