#include "seam_engine.h"

// When the GPU is given the volume, and what goes with it.
namespace corvane::tests
{
namespace
{
class SeamUpload : public Seam
{
protected:
    SeamUpload() : red(size_t(kWidth) * kHeight, 0x0000FF00), green(size_t(kWidth) * kHeight, 0x00FF0000) {}

    // Two further volumes, and two images.
    void AddMore()
    {
        EXPECT_EQ(engine.AttachVolumeData(second.data), 1);
        EXPECT_EQ(engine.AttachVolumeData(third.data), 2);
        KsBlendImage images[] = {BlendImageOf(red, 1), BlendImageOf(green, 2)};
        engine.SetBlendImage(images, 2);
        std::memset(images, 0xEE, sizeof images); // the engine keeps copies
    }

    const TestVolume second = BoneVolume(3, 5), third = BoneVolume(15, 17);
    Pixels red, green;
};

// The tables of the transfer function that a new volume gets.
void ExpectDefaultTables(const gpu::Call& call)
{
    ASSERT_EQ(call.tables.size(), 1u);
    const gpu::TableCopy& table = call.tables[0];
    EXPECT_EQ(table.label, 0);
    EXPECT_EQ(table.entry.rangeStart, 145);
    EXPECT_EQ(table.entry.rangeEnd, 1448);
    ASSERT_EQ(table.entry.size, 1304);
    EXPECT_EQ(table.entry.visible, 1);
    EXPECT_EQ(table.entry.opacity, 1.0f);
    EXPECT_EQ(table.entry.shading[0], 0.11f);
    EXPECT_EQ(table.entry.shading[1], 0.816f);
    EXPECT_EQ(table.entry.shading[2], 0.0f);
    const auto colourAt = [&](int value)
    {
        const uint8_t* const colour = &table.colours[3 * size_t(value - 145)];
        return uint32_t(colour[0]) << 16 | uint32_t(colour[1]) << 8 | colour[2];
    };
    EXPECT_EQ(colourAt(145), 0xFF1111u);
    EXPECT_EQ(colourAt(264), 0xFFFF75u);
    EXPECT_EQ(colourAt(336), 0xFFFFFFu);
    EXPECT_EQ(colourAt(1448), 0xFFF5F5u);
    EXPECT_EQ(colourAt(300), 0xFFFFBAu); // halfway from 0x75 to 0xFF
    EXPECT_EQ(table.opacities[0], 0.05f);
    EXPECT_FLOAT_EQ(table.opacities[264 - 145], 0.17f);
    EXPECT_FLOAT_EQ(table.opacities[336 - 145], 0.28f);
    EXPECT_FLOAT_EQ(table.opacities[1303], 0.62f);
    EXPECT_FLOAT_EQ(table.opacities[300 - 145], 0.225f);
    EXPECT_EQ(call.palette.sumStart, 145);
    EXPECT_EQ(call.sums, table.opacities);
}
} // namespace

TEST_F(SeamUpload, InitDataUploadsAtOnceWhenTheGpuIsEnabled)
{
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    Asked();
    EXPECT_TRUE(engine.InitData(bone.data));
    EXPECT_EQ(Asked(), (Names{"Clear", "InitData"}));
    const gpu::Call& upload = Last("InitData");
    EXPECT_TRUE(SameBytes(upload.volume, bone.data));
    EXPECT_TRUE(SameBytes(upload.mark, *engine.GetMarkData()));
    EXPECT_EQ(upload.mark.sizeX, 20u);
    EXPECT_EQ(upload.mark.sizeY, 18u);
    EXPECT_EQ(upload.mark.sizeZ, 16u);
    EXPECT_EQ(upload.labels, std::vector<uint8_t>(size_t(20) * 18 * 16, 0));
    ExpectDefaultTables(upload);
    EXPECT_EQ(VolumeRendering(), Painted(gpu::kVolumePaint));
    EXPECT_EQ(Endoscopy(), Painted(gpu::kEndoscopyPaint));
    EXPECT_EQ(Asked(), (Names{"ImagingVR", "ImagingVE"})); // nothing is left to be sent
}

TEST_F(SeamUpload, InitDataUploadsNothingWhenTheGpuIsOff)
{
    EXPECT_TRUE(engine.InitData(bone.data));
    EXPECT_EQ(Asked(), Names{"Clear"});
}

TEST_F(SeamUpload, ARefusedVolumeIsNotUploaded)
{
    LoadOnGpu();
    KsVolumeData noSlices = bone.data, flat = bone.data, gap = bone.data;
    noSlices.slices = nullptr;
    flat.sizeZ = 0;
    std::vector<const int16_t*> slices = bone.slices;
    slices[7] = nullptr;
    gap.slices = slices.data();
    for (const KsVolumeData& refused : {noSlices, flat, gap})
    {
        Load();
        EXPECT_FALSE(engine.InitData(refused));
        const Names asked = Asked();
        EXPECT_EQ(asked[0], "Clear");
        EXPECT_EQ(std::count(asked.begin(), asked.end(), "InitData"), 0);
        EXPECT_TRUE(engine.SetOpacity(0.5f, 0)); // it holds nothing: it is told nothing
        EXPECT_EQ(Asked(), Names{});
    }
}

TEST_F(SeamUpload, TheFirstVolumeRenderingBringsTheVolumeThenImagesThenFurtherVolumes)
{
    AddMore();
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    EXPECT_EQ(Asked(), Names{"SupportGPU"}); // until then nothing
    EXPECT_EQ(VolumeRendering(), Painted(gpu::kVolumePaint));
    ASSERT_EQ(Asked(), (Names{"InitData", "SetBlendImage", "AttachVolumeData", "AttachVolumeData", "ImagingVR"}));
    EXPECT_TRUE(SameBytes(last[0].volume, bone.data));
    EXPECT_TRUE(SameBytes(last[0].mark, *engine.GetMarkData()));
    ExpectDefaultTables(last[0]);
    ASSERT_EQ(last[1].blendCount, 2);
    EXPECT_TRUE(SameBytes(last[1].blends[0], BlendImageOf(red, 1)));
    EXPECT_TRUE(SameBytes(last[1].blends[1], BlendImageOf(green, 2)));
    EXPECT_TRUE(SameBytes(last[2].volume, second.data));
    EXPECT_TRUE(SameBytes(last[3].volume, third.data));
    VolumeRendering();
    EXPECT_EQ(Asked(), Names{"ImagingVR"});
}

TEST_F(SeamUpload, TheCallForImagesComesEvenWithoutAny)
{
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    Asked();
    VolumeRendering();
    EXPECT_EQ(Asked(), (Names{"InitData", "SetBlendImage", "ImagingVR"}));
    EXPECT_EQ(Last("SetBlendImage").blendCount, 0);
}

TEST_F(SeamUpload, AnEndoscopyBringsNoImagesAndNobodySendsThemLater)
{
    AddMore();
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    Asked();
    EXPECT_EQ(Endoscopy(), Painted(gpu::kEndoscopyPaint));
    ASSERT_EQ(Asked(), (Names{"InitData", "AttachVolumeData", "AttachVolumeData", "ImagingVE"}));
    EXPECT_TRUE(SameBytes(last[0].volume, bone.data));
    EXPECT_TRUE(SameBytes(last[1].volume, second.data));
    EXPECT_TRUE(SameBytes(last[2].volume, third.data));
    VolumeRendering();
    EXPECT_EQ(Asked(), Names{"ImagingVR"});
}

TEST_F(SeamUpload, ImagingBringsTheVolumeAsTheOperationThatItStandsFor)
{
    KsBlendImage image = BlendImageOf(red, 1);
    Pixels pixels(size_t(kWidth) * kHeight);
    for (const KsRender type : {KsRenderParallel, KsRenderPerspective})
    {
        EXPECT_TRUE(engine.SetGPUEnabled(false));
        Load();
        engine.SetBlendImage(&image, 1);
        EXPECT_TRUE(engine.SetGPUEnabled(true));
        engine.SetRenderType(type);
        Asked();
        EXPECT_TRUE(engine.Imaging(kWidth, kHeight, pixels.data(), false, nullptr, 0));
        EXPECT_EQ(Asked(), type == KsRenderParallel ? (Names{"InitData", "SetBlendImage", "ImagingVR"})
                                                    : (Names{"InitData", "ImagingVE"}));
    }
}

TEST_F(SeamUpload, TheLateUploadBringsWhatChangedBeforeIt)
{
    KsPalettePoint points[] = {{100, 0x0000FF, 0.5f}, {300, 0xFF0000, 0.25f}};
    KsPalette palette;
    palette.points = points;
    palette.pointCount = 2;
    EXPECT_TRUE(engine.SetPalette(palette));
    EXPECT_TRUE(engine.SetShading(0.5f, 0.25f, 0.125f, 0));
    EXPECT_TRUE(engine.AdjustColor(50));
    engine.GetMarkData()->slices[15][359] = 9;
    engine.UpdateMarkData();
    const float low[3] = {-30, 0, 0}, high[3] = {-20, 18, 24};
    EXPECT_TRUE(engine.SetVisibleBox(low, high));
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    Asked();
    VolumeRendering();
    ASSERT_EQ(Asked(), (Names{"InitData", "SetBlendImage", "ImagingVR"})); // the visible box is not part of it
    const gpu::Call& upload = last[0];
    ASSERT_EQ(upload.tables.size(), 1u);
    EXPECT_EQ(upload.tables[0].entry.rangeStart, 150);
    EXPECT_EQ(upload.tables[0].entry.rangeEnd, 350);
    EXPECT_EQ(upload.tables[0].entry.shading[0], 0.5f);
    EXPECT_EQ(upload.tables[0].entry.shading[2], 0.125f);
    EXPECT_EQ(upload.tables[0].opacities[100], 0.375f); // halfway
    EXPECT_EQ(upload.palette.sumStart, 150);
    EXPECT_EQ(upload.labels.back(), 9);
}

TEST_F(SeamUpload, AGpuThatRefusesIsAskedAgainForEveryImageWhichTheCpuDraws)
{
    AddMore();
    const Pixels volumeByCpu = VolumeRendering(), endoscopyByCpu = Endoscopy();
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    gpu.takesVolumes = false;
    Asked();
    for (int attempt = 0; attempt < 2; ++attempt)
    {
        EXPECT_EQ(VolumeRendering(), volumeByCpu);
        EXPECT_EQ(Endoscopy(), endoscopyByCpu);
        EXPECT_EQ(Asked(), (Names{"InitData", "InitData"})); // nothing is sent after a refusal
        EXPECT_TRUE(engine.SetOpacity(0.5f, 3));             // a label without tables: nothing to be seen
        EXPECT_EQ(Asked(), Names{});
    }
    EXPECT_TRUE(engine.IsGPUEnabled());
    gpu.takesVolumes = true;
    EXPECT_EQ(VolumeRendering(), Painted(gpu::kVolumePaint));
    EXPECT_EQ(Asked(), (Names{"InitData", "SetBlendImage", "AttachVolumeData", "AttachVolumeData", "ImagingVR"}));
}

TEST_F(SeamUpload, AGpuThatRefusesInInitDataIsAskedAgainByTheNextImage)
{
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    gpu.takesVolumes = false;
    Asked();
    EXPECT_TRUE(engine.InitData(bone.data)); // the CPU has it
    EXPECT_EQ(Asked(), (Names{"Clear", "InitData"}));
    gpu.takesVolumes = true;
    EXPECT_EQ(Endoscopy(), Painted(gpu::kEndoscopyPaint));
    EXPECT_EQ(Asked(), (Names{"InitData", "ImagingVE"}));
}

TEST_F(SeamUpload, ASecondVolumeReplacesTheFirstOnTheGpu)
{
    LoadOnGpu();
    AddMore();
    Asked();
    EXPECT_TRUE(engine.InitData(second.data));
    EXPECT_EQ(Asked(), (Names{"Clear", "InitData"}));
    EXPECT_TRUE(SameBytes(Last("InitData").volume, second.data));
    gpu.takesVolumes = false;
    EXPECT_TRUE(engine.InitData(third.data)); // held the one before, does not hold this one
    Asked();
    engine.UpdateMarkData();
    EXPECT_EQ(Asked(), Names{});
}

TEST_F(SeamUpload, ARefusedFurtherVolumeIsSentAllTheSame)
{
    const TestVolume small = MakeVolume(4, 4, 4, [](int, int, int) { return 0; });
    EXPECT_EQ(engine.AttachVolumeData(second.data), 1);
    EXPECT_EQ(engine.AttachVolumeData(small.data), 0);
    EXPECT_EQ(engine.AttachVolumeData(third.data), 2);
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    Asked();
    VolumeRendering();
    ASSERT_EQ(Asked(), (Names{"InitData", "SetBlendImage", "AttachVolumeData", "AttachVolumeData", "AttachVolumeData",
                              "ImagingVR"}));
    EXPECT_TRUE(SameBytes(last[2].volume, second.data));
    EXPECT_TRUE(SameBytes(last[3].volume, small.data));
    EXPECT_TRUE(SameBytes(last[4].volume, third.data));
}

TEST_F(SeamUpload, WhatWasTakenAwayIsNotSent)
{
    AddMore();
    engine.ClearAttachVolume();
    EXPECT_EQ(engine.AttachVolumeData(third.data), 1);
    KsBlendImage image = BlendImageOf(green, 7);
    engine.SetBlendImage(&image, 0);
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    Asked();
    VolumeRendering();
    ASSERT_EQ(Asked(), (Names{"InitData", "SetBlendImage", "AttachVolumeData", "ImagingVR"}));
    EXPECT_EQ(last[1].blendCount, 0);
    EXPECT_TRUE(SameBytes(last[2].volume, third.data));

    EXPECT_TRUE(engine.SetGPUEnabled(false));
    engine.ClearAttachVolume();
    AddMore();
    EXPECT_TRUE(engine.InitData(bone.data)); // forgets them, too
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    Asked();
    VolumeRendering();
    ASSERT_EQ(Asked(), (Names{"InitData", "SetBlendImage", "ImagingVR"}));
    EXPECT_EQ(last[1].blendCount, 0);
}

TEST_F(SeamUpload, AnEmptyEngineUploadsItsEmptiness)
{
    engine.Clear();
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    Asked();
    EXPECT_EQ(VolumeRendering(), Painted(gpu::kVolumePaint));
    ASSERT_EQ(Asked(), (Names{"InitData", "SetBlendImage", "ImagingVR"}));
    EXPECT_EQ(last[0].volume.slices, nullptr);
    EXPECT_EQ(last[0].mark.slices, nullptr);
    EXPECT_TRUE(last[0].tables.empty());
    EXPECT_TRUE(last[0].sums.empty());
    EXPECT_EQ(last[0].palette.opacitySums, nullptr);

    engine.Clear();
    gpu.takesVolumes = false;
    Asked();
    EXPECT_EQ(VolumeRendering(0, false), Pixels(size_t(kWidth) * kHeight, 0)); // the CPU has nothing to draw
    EXPECT_EQ(Endoscopy(), Pixels(size_t(kWidth) * kHeight, kGarbage));
    EXPECT_EQ(Asked(), (Names{"InitData", "InitData"}));
}
} // namespace corvane::tests
