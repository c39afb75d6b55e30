#include "seam_engine.h"

#include <functional>

// What the GPU is told of changes, and when.
namespace corvane::tests
{
namespace
{
struct Change
{
    const char* told; // what the GPU hears of it while it holds the volume
    std::function<void()> make;
};

class SeamForwarding : public Seam
{
protected:
    SeamForwarding() : selection(MakeLabels(20, 18, 16, [](int i, int, int) { return i == 4; }))
    {
        palette.points = points;
        palette.pointCount = 2;
    }

    std::vector<Change> Changes()
    {
        return {
            {"SetPalette", [&] { EXPECT_TRUE(engine.SetPalette(palette)); }},
            {"SetPalette", [&] { EXPECT_TRUE(engine.AdjustColor(7)); }},
            {"SetPalette", [&] { EXPECT_TRUE(engine.SetShading(0.1f, 0.2f, 0.3f, 0)); }},
            {"SetPalette", [&] { EXPECT_TRUE(engine.SetShading(0.1f, 0.2f, 0.3f, 64)); }},
            {"SetPalette", [&] { EXPECT_TRUE(engine.SetOpacity(0.4f, 0)); }},
            {"SetPalette", [&] { EXPECT_TRUE(engine.SetOpacity(0.4f, -1)); }},
            {"SetPalette", [&] { EXPECT_TRUE(engine.SetVisible(false, 0)); }},
            {"SetPalette", [&] { EXPECT_TRUE(engine.SetVisible(true, 0)); }},
            {"SetPalette", [&] { EXPECT_TRUE(engine.SetVisible(true, 17)); }},
            {"SetVolumeMark", [&] { engine.UpdateMarkData(); }},
            {"SetVolumeMark", [&] { EXPECT_TRUE(engine.CutAppend(selection.mark)); }},
            {"SetVisibleBox", [&] { EXPECT_TRUE(engine.SetVisibleBox(low, high)); }},
            {"AttachVolumeData", [&] { EXPECT_GE(engine.AttachVolumeData(bone.data), 1); }},
            {"SetBlendImage", [&] { engine.SetBlendImage(&blend, 1); }},
            {"SetBlendImage", [&] { engine.SetBlendImage(nullptr, 3); }},
            {"ClearAttachVolume", [&] { engine.ClearAttachVolume(); }},
        };
    }

    KsPalettePoint points[2] = {{100, 0x00FF00, 0.25f}, {900, 0x0000FF, 0.75f}};
    KsPalette palette;
    TestLabels selection;
    Pixels pixels = Pixels(size_t(kWidth) * kHeight, 0x11223300);
    KsBlendImage blend = BlendImageOf(pixels, 3);
    const float low[3] = {-25, 2, 3}, high[3] = {-15, 12, 20};
};
} // namespace

TEST_F(SeamForwarding, EveryChangeIsToldOnceWhileTheGpuHoldsTheVolume)
{
    LoadOnGpu();
    for (const Change& change : Changes())
    {
        change.make();
        EXPECT_EQ(Asked(), Names{change.told});
    }
}

TEST_F(SeamForwarding, NoChangeIsToldWhileTheGpuHoldsNothing)
{
    for (const Change& change : Changes())
        change.make();
    EXPECT_EQ(Asked(), Names{}) << "off";
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    Asked();
    for (const Change& change : Changes())
        change.make();
    EXPECT_EQ(Asked(), Names{}) << "enabled, not uploaded";
    gpu.takesVolumes = false;
    VolumeRendering();
    EXPECT_EQ(Asked(), Names{"InitData"});
    for (const Change& change : Changes())
        change.make();
    EXPECT_EQ(Asked(), Names{}) << "refused";
}

TEST_F(SeamForwarding, WhatChangesNothingForAGpuIsNotTold)
{
    LoadOnGpu();
    KsPalette none, one = palette;
    one.pointCount = 1;
    EXPECT_TRUE(engine.SetPalette(none));
    EXPECT_TRUE(engine.SetPalette(one));
    KsPalette copy;
    EXPECT_TRUE(engine.GetPalette(copy));
    delete[] copy.points;
    KsVolumeMark wrong = selection.mark;
    wrong.sizeX = 19;
    EXPECT_FALSE(engine.CutAppend(wrong));
    EXPECT_FALSE(engine.CutAppend({}));
    EXPECT_FALSE(engine.CutSubtract(selection.mark));
    engine.CutClear();
    uint8_t drawn = 1;
    const KsImageMark region = {&drawn, {1, 1, 50, 50, {1, 0, 0}, {0, 0, 1}, {-30, 0, 0}}};
    EXPECT_TRUE(engine.CutFill(region, selection.mark, 1));
    EXPECT_FALSE(engine.SetVisibleBox(nullptr, high));
    EXPECT_FALSE(engine.SetVisibleBox(low, nullptr));
    float box[6];
    EXPECT_TRUE(engine.GetBoundingBox(box, box + 3));
    EXPECT_TRUE(engine.GetVisibleBox(box, box + 3));
    KsVolumeData volume;
    EXPECT_TRUE(engine.GetVolumeData(volume));
    double origin[3];
    EXPECT_TRUE(engine.GetOrigin(origin));
    EXPECT_TRUE(engine.SetOrigin(origin));
    EXPECT_NE(engine.GetMarkData(), nullptr);
    for (const KsRender type : {KsRenderPerspective, KsRenderParallel})
    {
        engine.SetRenderType(type);
        EXPECT_EQ(engine.GetRenderType(), type);
        engine.RotateScreen(0.1f);
        engine.RotateH(0.1f);
        engine.RotateV(0.1f);
        engine.RotateToSagittal();
        engine.RotateToCoronal();
        engine.RotateToAxial();
        engine.RotateToX();
        engine.RotateToY();
        engine.RotateToZ();
        engine.RotateToBack();
        engine.Zoom(1.5f);
        engine.SetViewAngle(60);
        engine.Step(1);
        engine.StepOrigin(1);
    }
    PnImageParam param;
    EXPECT_TRUE(engine.GetParamsOfVR(4, 4, param));
    EXPECT_TRUE(engine.GetImageParams(4, 4, param));
    EXPECT_TRUE(engine.IsGPUEnabled());
    EXPECT_EQ(Asked(), Names{});
}

TEST_F(SeamForwarding, TheTablesAreTheNewOnes)
{
    LoadOnGpu();
    const void* const pointsBefore = points;
    EXPECT_TRUE(engine.SetPalette(palette));
    std::fill_n(points, 2, KsPalettePoint{}); // the engine reads them no more
    EXPECT_EQ(palette.points, pointsBefore);
    Asked();
    {
        const gpu::Call& call = Last("SetPalette");
        ASSERT_EQ(call.tables.size(), 1u);
        EXPECT_EQ(call.tables[0].entry.rangeStart, 100);
        EXPECT_EQ(call.tables[0].entry.rangeEnd, 900);
        ASSERT_EQ(call.tables[0].entry.size, 801);
        EXPECT_EQ(call.tables[0].opacities[0], 0.25f);
        EXPECT_EQ(call.tables[0].opacities[400], 0.5f);
        EXPECT_EQ(call.tables[0].opacities[800], 0.75f);
        EXPECT_EQ(call.tables[0].colours[1], 255);
        EXPECT_EQ(call.tables[0].colours[3 * 400 + 1], 128); // 127.5, rounded up
        EXPECT_EQ(call.tables[0].colours[3 * 800 + 2], 255);
        EXPECT_EQ(call.sums, call.tables[0].opacities);
        EXPECT_EQ(call.palette.sumStart, 100);
    }
    EXPECT_TRUE(engine.SetShading(0.5f, 0.25f, 0.125f, 0));
    Asked();
    EXPECT_EQ(Last("SetPalette").tables[0].entry.shading[0], 0.5f);
    EXPECT_EQ(Last("SetPalette").tables[0].entry.shading[1], 0.25f);
    EXPECT_EQ(Last("SetPalette").tables[0].entry.shading[2], 0.125f);
    EXPECT_TRUE(engine.SetOpacity(0.75f, 0));
    Asked();
    EXPECT_EQ(Last("SetPalette").tables[0].entry.opacity, 0.75f);
    EXPECT_TRUE(engine.AdjustColor(-30));
    Asked();
    EXPECT_EQ(Last("SetPalette").tables[0].entry.rangeStart, 70);
    EXPECT_EQ(Last("SetPalette").tables[0].entry.rangeEnd, 870);
    EXPECT_EQ(Last("SetPalette").palette.sumStart, 70);
    EXPECT_TRUE(engine.SetVisible(false, 0));
    Asked();
    EXPECT_EQ(Last("SetPalette").tables[0].entry.visible, 0);
    EXPECT_EQ(Last("SetPalette").sums.size(), 801u); // summed anew only with the next tables
    EXPECT_TRUE(engine.AdjustColor(10));
    Asked();
    EXPECT_EQ(Last("SetPalette").tables[0].entry.rangeStart, 70); // hidden labels stay
    EXPECT_EQ(Last("SetPalette").palette.opacitySums, nullptr);
}

TEST_F(SeamForwarding, APaletteOfOneValueIsToldWithTheTablesThatWereThere)
{
    LoadOnGpu();
    points[1].value = points[0].value;
    EXPECT_TRUE(engine.SetPalette(palette));
    EXPECT_EQ(Asked(), Names{"SetPalette"});
    EXPECT_EQ(Last("SetPalette").tables[0].entry.rangeStart, 145);
    EXPECT_EQ(Last("SetPalette").tables[0].entry.rangeEnd, 1448);
}

TEST_F(SeamForwarding, TheLabelsAreTheEnginesOwn)
{
    LoadOnGpu();
    KsVolumeMark* const mark = engine.GetMarkData();
    mark->slices[2][5] = 33;
    EXPECT_EQ(Asked(), Names{}); // edits alone are not noticed
    engine.UpdateMarkData();
    Asked();
    EXPECT_TRUE(SameBytes(Last("SetVolumeMark").mark, *mark));
    EXPECT_EQ(Last("SetVolumeMark").labels[size_t(2) * 360 + 5], 33);
    EXPECT_EQ(std::count(Last("SetVolumeMark").labels.begin(), Last("SetVolumeMark").labels.end(), 0), 16 * 360 - 1);
    EXPECT_TRUE(engine.CutAppend(selection.mark));
    Asked();
    EXPECT_TRUE(SameBytes(Last("SetVolumeMark").mark, *mark));
    EXPECT_EQ(Last("SetVolumeMark").labels[4], 64);
    EXPECT_EQ(std::count(Last("SetVolumeMark").labels.begin(), Last("SetVolumeMark").labels.end(), 64), 16 * 18);

    TestLabels nothing = MakeLabels(20, 18, 16, [](int, int, int) { return 0; });
    EXPECT_TRUE(engine.CutAppend(nothing.mark)); // cuts nothing, tells all the same
    EXPECT_EQ(Asked(), Names{"SetVolumeMark"});
}

TEST_F(SeamForwarding, TheCornersAreThoseOfTheHost)
{
    LoadOnGpu();
    const float a[3] = {-15, 2, 20}, b[3] = {-25, 12, 3}; // not lowest and highest
    EXPECT_TRUE(engine.SetVisibleBox(a, b));
    Asked();
    EXPECT_EQ(Last("SetVisibleBox").box, (std::array<float, 6>{-15, 2, 20, -25, 12, 3}));
    float box[6];
    EXPECT_TRUE(engine.GetVisibleBox(box, box + 3));
    EXPECT_EQ(box[0], -25); // the CPU renderer puts them in order
}

TEST_F(SeamForwarding, FurtherVolumesAndImagesArriveAsTheyAre)
{
    LoadOnGpu();
    const TestVolume other = BoneVolume(3, 4), small = MakeVolume(4, 4, 4, [](int, int, int) { return 0; });
    EXPECT_EQ(engine.AttachVolumeData(other.data), 1); // the CPU's answer
    Asked();
    EXPECT_TRUE(SameBytes(Last("AttachVolumeData").volume, other.data));
    EXPECT_EQ(engine.AttachVolumeData(small.data), 0); // refused by the CPU
    EXPECT_EQ(Asked(), Names{"AttachVolumeData"});
    EXPECT_TRUE(SameBytes(Last("AttachVolumeData").volume, small.data));

    std::vector<KsBlendImage> six;
    for (int n = 0; n < 6; ++n)
        six.push_back(BlendImageOf(pixels, n));
    engine.SetBlendImage(six.data(), 6);
    Asked();
    ASSERT_EQ(Last("SetBlendImage").blendCount, 6); // all of them, though the CPU uses four
    EXPECT_NE(Last("SetBlendImage").blendPointer, six.data());
    for (size_t n = 0; n < 6; ++n)
        EXPECT_TRUE(SameBytes(Last("SetBlendImage").blends[n], six[n])) << n;
    engine.SetBlendImage(six.data(), -1);
    Asked();
    EXPECT_EQ(Last("SetBlendImage").blendCount, 0);
    engine.SetBlendImage(six.data(), 1);
    engine.SetBlendImage(nullptr, 3);
    Asked();
    EXPECT_EQ(Last("SetBlendImage").blendCount, 0);
}
} // namespace corvane::tests
