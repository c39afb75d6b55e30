#include "seam_engine.h"

// Whether there is a GPU, and whether it is to be used.
namespace corvane::tests
{
namespace
{
using SeamSwitch = Seam;
}

TEST(SeamLifetime, AnEngineCreatesOneRendererAndAsksItNothingUntilItEnds)
{
    gpu::Recording& gpu = gpu::TheRecording() = {};
    {
        Engine3D engine;
        ASSERT_EQ(gpu.calls.size(), 1u);
        EXPECT_EQ(gpu.calls[0].operation, "create");
        EXPECT_FALSE(engine.IsGPUEnabled());
        EXPECT_EQ(gpu.calls.size(), 1u);
    }
    ASSERT_EQ(gpu.calls.size(), 3u);
    EXPECT_EQ(gpu.calls[1].operation, "Clear");
    EXPECT_EQ(gpu.calls[2].operation, "destroy");
    EXPECT_EQ(gpu.calls[2].renderer, gpu.calls[0].renderer);
}

TEST(SeamLifetime, EnginesHaveRenderersOfTheirOwn)
{
    const ScratchFolder folder;
    gpu::Recording& gpu = gpu::TheRecording() = {};
    const TestVolume bone = BoneVolume();
    Engine3D one, other;
    ASSERT_EQ(gpu.calls.size(), 2u);
    const void *const oneRenderer = gpu.calls[0].renderer, *const otherRenderer = gpu.calls[1].renderer;
    EXPECT_NE(oneRenderer, otherRenderer);
    gpu.calls.clear();
    EXPECT_TRUE(one.SetGPUEnabled(true));
    EXPECT_TRUE(one.InitData(bone.data));
    EXPECT_FALSE(other.IsGPUEnabled());
    for (const gpu::Call& call : gpu.calls)
        EXPECT_EQ(call.renderer, oneRenderer) << call.operation;
    gpu.calls.clear();
    EXPECT_TRUE(other.InitData(bone.data));
    EXPECT_TRUE(other.SetOpacity(0.5f, 0)); // the other one holds data, this one does not
    ASSERT_EQ(gpu.calls.size(), 1u);
    EXPECT_EQ(gpu.calls[0].operation, "Clear");
    EXPECT_EQ(gpu.calls[0].renderer, otherRenderer);
}

TEST_F(SeamSwitch, SupportGPUIsTheRenderersAnswer)
{
    for (const bool supports : {false, true, false})
    {
        gpu.supportsGpu = supports;
        EXPECT_EQ(engine.SupportGPU(), supports);
        EXPECT_EQ(Asked(), Names{"SupportGPU"});
        EXPECT_FALSE(engine.IsGPUEnabled());
    }
}

TEST_F(SeamSwitch, EnablingAsksForSupportOnceAndUploadsNothing)
{
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    EXPECT_EQ(Asked(), Names{"SupportGPU"});
    EXPECT_TRUE(engine.IsGPUEnabled());
    gpu.supportsGpu = false;
    EXPECT_TRUE(engine.SetGPUEnabled(true)); // it is on
    EXPECT_EQ(Asked(), Names{});
    EXPECT_TRUE(engine.IsGPUEnabled());
}

TEST_F(SeamSwitch, DisablingAsksNothing)
{
    EXPECT_TRUE(engine.SetGPUEnabled(false)); // it is off
    EXPECT_EQ(Asked(), Names{});
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    Asked();
    EXPECT_TRUE(engine.SetGPUEnabled(false));
    EXPECT_EQ(Asked(), Names{});
    EXPECT_FALSE(engine.IsGPUEnabled());
}

TEST_F(SeamSwitch, WithoutSupportTheGpuStaysOffUntilThereIsSome)
{
    gpu.supportsGpu = false;
    for (int attempt = 0; attempt < 2; ++attempt)
    {
        EXPECT_FALSE(engine.SetGPUEnabled(true));
        EXPECT_EQ(Asked(), Names{"SupportGPU"});
        EXPECT_FALSE(engine.IsGPUEnabled());
        VolumeRendering();
        Endoscopy();
        EXPECT_EQ(Asked(), Names{});
    }
    gpu.supportsGpu = true;
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    EXPECT_EQ(Asked(), Names{"SupportGPU"});
    EXPECT_TRUE(engine.IsGPUEnabled());
}

TEST_F(SeamSwitch, SwitchedOffWhileItHoldsTheVolumeTheGpuIsStillToldChanges)
{
    const Pixels drawnByCpu = VolumeRendering();
    LoadOnGpu();
    EXPECT_TRUE(engine.SetGPUEnabled(false));
    EXPECT_EQ(VolumeRendering(), drawnByCpu);
    EXPECT_NE(Endoscopy(), Painted(gpu::kEndoscopyPaint));
    EXPECT_EQ(Asked(), Names{});
    EXPECT_TRUE(engine.SetOpacity(0.5f, 0));
    engine.UpdateMarkData();
    const float low[3] = {-30, 0, 0}, high[3] = {-20, 18, 24};
    EXPECT_TRUE(engine.SetVisibleBox(low, high));
    EXPECT_EQ(engine.AttachVolumeData(bone.data), 1);
    engine.SetBlendImage(nullptr, 0);
    engine.ClearAttachVolume();
    EXPECT_EQ(Asked(), (Names{"SetPalette", "SetVolumeMark", "SetVisibleBox", "AttachVolumeData", "SetBlendImage",
                              "ClearAttachVolume"}));
    EXPECT_TRUE(engine.SetGPUEnabled(true)); // it still holds what it was told: no second upload
    EXPECT_EQ(VolumeRendering(), Painted(gpu::kVolumePaint));
    EXPECT_EQ(Asked(), (Names{"SupportGPU", "ImagingVR"}));
}

TEST_F(SeamSwitch, ClearKeepsTheSwitchAndForgetsThatTheGpuHoldsData)
{
    LoadOnGpu();
    engine.Clear();
    EXPECT_EQ(Asked(), Names{"Clear"});
    EXPECT_TRUE(engine.IsGPUEnabled());
    EXPECT_TRUE(engine.SetOpacity(0.5f, 0));
    engine.UpdateMarkData();
    EXPECT_EQ(Asked(), Names{});
    EXPECT_TRUE(engine.InitData(bone.data));
    EXPECT_EQ(Asked(), (Names{"Clear", "InitData"}));
    EXPECT_TRUE(engine.IsGPUEnabled());
}

TEST_F(SeamSwitch, ClearReachesTheGpuAlways)
{
    engine.Clear(); // off, no data
    engine.Clear(); // empty
    EXPECT_EQ(Asked(), (Names{"Clear", "Clear"}));
    LoadOnGpu();
    EXPECT_TRUE(engine.SetGPUEnabled(false));
    engine.Clear();
    EXPECT_EQ(Asked(), Names{"Clear"});
    EXPECT_FALSE(engine.IsGPUEnabled());
}
} // namespace corvane::tests
