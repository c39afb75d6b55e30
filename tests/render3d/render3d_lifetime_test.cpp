#include "corvane/Render3D.h"

#include "block_scene.h"
#include "scratch_folder.h"

#include <gtest/gtest.h>

#include <optional>

// Copies of a renderer, and memory of the host's that goes.
namespace corvane::tests
{
using namespace block;

TEST(Render3DLifetime, CopiesDrawTheSameAndGoTheirOwnWays)
{
    const ScratchFolder folder;
    const Scene scene = BlockScene();
    TestPalette green;
    green.AddOpaqueFrom(0, 500, {0, 200, 0});
    TestLabels cut = MakeLabels(20, 20, 20, [](int, int, int) { return 64; });
    const TestVolume other = MakeVolume(20, 20, 20, [](int i, int, int) { return i < 8 ? 1000 : 0; });
    const float low[3] = {0, 0, 0}, high[3] = {11, 20, 20};

    struct Ended final : Render3D // the interface has no virtual destructor
    {
    };
    std::optional<Ended> original(std::in_place);
    ASSERT_TRUE(original->InitData(scene.volume.data, {}, scene.palette.palette));
    ASSERT_EQ(original->AttachVolumeData(other.data), 1);
    ASSERT_TRUE(original->SetVisibleBox(low, high));
    Render3D early(*original); // before its masks were made
    const TestImage image = Drawn(*original), attached = Drawn(*original, 1);
    Render3D copy(*original), assigned;
    ASSERT_TRUE(assigned.InitData(other.data, {}, green.palette));
    assigned = *original;
    for (Render3D* each : {&early, &copy, &assigned})
    {
        ExpectSamePixels(Drawn(*each), image);
        ExpectSamePixels(Drawn(*each, 1), attached);
        EXPECT_EQ(VisibleBox(*each), VisibleBox(*original));
    }

    // Whatever happens to one of them does not happen to the others.
    EXPECT_TRUE(copy.SetPalette(green.palette));
    EXPECT_EQ(Drawn(copy).At(10, 8), PixelOf(255, {0, 200, 0}));
    copy.SetVolumeMark(cut.mark);
    Drawn(copy);
    copy.ClearAttachVolume();
    assigned.Clear();
    ExpectSamePixels(Drawn(*original), image);
    ExpectSamePixels(Drawn(*original, 1), attached);
    original.reset();
    ExpectSamePixels(Drawn(early), image);
    ExpectSamePixels(Drawn(early, 1), attached);
    EXPECT_TRUE(IsEmpty(assigned));

    Render3D& self = early;
    early = self;
    ExpectSamePixels(Drawn(early), image);
    Render3D nothing;
    early = nothing;
    EXPECT_TRUE(IsEmpty(early));
    Render3D copyOfNothing(nothing);
    EXPECT_TRUE(IsEmpty(copyOfNothing));
}

TEST(Render3DLifetime, ACopyKeepsItsBlendImages)
{
    const Scene scene = BlockScene();
    std::vector<uint32_t> pixels(400, 0xFFFFFF00);
    KsBlendImage blend = {{{0, 0}, {19, 0}, {19, 19}, {0, 19}}, pixels.data(), {}, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}};
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    render.SetBlendImage(&blend, 1);
    Render3D copy(render);
    render.SetBlendImage(nullptr, 0);
    EXPECT_EQ(Drawn(copy).At(0, 0), 0xFFFFFFFFu);
    EXPECT_EQ(Drawn(render).At(0, 0), kUntouched);
}

// The host's memory may go as soon as the renderer has been given something else, or has been cleared.
TEST(Render3DLifetime, WhatTheRendererHasLetGoIsNotReadAgain)
{
    const ScratchFolder folder;
    const Scene scene = BlockScene();
    std::optional<Scene> gone(BlockScene());
    gone->labels = MakeLabels(20, 20, 20, [](int, int, int) { return 64; });
    std::optional<std::vector<uint32_t>> pixels(std::in_place, 400, 0xFFFFFF00u);
    const KsBlendImage blend = {{{0, 0}, {19, 0}, {19, 19}, {0, 19}}, pixels->data(), {}, {1, 0, 0}, {0, 1, 0}, {}};
    KsBlendImage record = blend;
    Render3D render, cleared;
    for (Render3D* each : {&render, &cleared})
    {
        ASSERT_TRUE(each->InitData(gone->volume.data, gone->labels.mark, gone->palette.palette));
        ASSERT_EQ(each->AttachVolumeData(gone->volume.data), 1);
        each->SetBlendImage(&record, 1);
        Drawn(*each, 1);
    }
    gone.reset();
    pixels.reset();
    Render3D copy(render);
    copy = cleared;
    cleared.Clear();
    EXPECT_TRUE(IsEmpty(cleared));
    EXPECT_TRUE(render.SetPalette(scene.palette.palette));
    render.SetVolumeMark({});
    render.ClearAttachVolume();
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    EXPECT_EQ(Drawn(render).At(10, 10), PixelOf(255, {200, 0, 0}));
    EXPECT_EQ(Drawn(render, 1).At(0, 0), kUntouched);
}
} // namespace corvane::tests
