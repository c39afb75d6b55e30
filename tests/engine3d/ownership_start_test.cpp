#include "lifecycle_scene.h"
#include "tests/core/failing_allocator.h"
#include "tests/render3d/scratch_folder.h"

// Memory that runs out while an engine is made.
namespace corvane::tests
{
TEST(EngineMemoryAtStart, AnEngineThatGotNoneRefusesEverythingUntilItTakesAVolume)
{
    const ScratchFolder folder;
    const TestVolume bone = BoneVolume();
    Engine3D undisturbed;
    ASSERT_TRUE(undisturbed.InitData(bone.data));
    const Pixels expected = Picture(undisturbed);
    int failures = 0;
    for (int allowed = 0; allowed < 20; ++allowed)
    {
        FailAllocationAfter(allowed);
        Engine3D engine;
        if (!StopFailingAllocations())
            break;
        ++failures;
        uint32_t pixel = kGarbage;
        int16_t value = 7;
        float box[6] = {};
        double point[3] = {};
        uint8_t drawn = 1;
        PnImageParam param;
        KsVolumeData volume;
        KsPalette palette;
        KsImageData image = {};
        KsBlendImage blend = {};
        TestLabels labels = MakeLabels(1, 1, 1, [](int, int, int) { return 1; });
        const KsSliceParam slice = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 6};
        EXPECT_FALSE(engine.GetVolumeData(volume));
        EXPECT_FALSE(engine.SetGPUEnabled(true));
        EXPECT_FALSE(engine.SupportGPU() || engine.IsGPUEnabled());
        EXPECT_FALSE(engine.GetBoundingBox(box, box + 3) || engine.GetVisibleBox(box, box + 3));
        EXPECT_FALSE(engine.CutAppend(labels.mark) || engine.CutSubtract(labels.mark));
        EXPECT_FALSE(engine.CutFill({&drawn, {1, 1, 1, 1, {1, 0, 0}, {0, 1, 0}, {}}}, labels.mark, 1));
        EXPECT_EQ(engine.AttachVolumeData(bone.data), 0);
        EXPECT_FALSE(engine.ImagingVR(1, 1, &pixel, false, nullptr, 0));
        EXPECT_FALSE(engine.ImagingMIP(1, 1, &value, false, nullptr));
        EXPECT_FALSE(engine.ImagingAIP({1, 1, 1, 1, {1, 0, 0}, {0, 1, 0}, {}}, 3, &image));
        EXPECT_FALSE(engine.ImagingMinIP(slice, 3, &image));
        EXPECT_EQ(image.values, nullptr);
        engine.ImagingVE(1, 1, &pixel, 90, false, nullptr);
        engine.SetRenderType(KsRenderPerspective);
        engine.GetRenderType();
        engine.SetOrigin(point);
        engine.GetOrigin(point);
        engine.Step(1);
        engine.StepOrigin(1);
        engine.UpdateMarkData();
        engine.SetVisibleBox(box, box + 3);
        engine.SetPalette(palette);
        engine.GetPalette(palette);
        if (palette.ownsPoints)
            delete[] palette.points;
        engine.AdjustColor(3);
        engine.SetShading(1, 1, 1, 0);
        engine.SetOpacity(1, 0);
        engine.SetVisible(false, 0);
        engine.RotateScreen(1);
        engine.RotateH(1);
        engine.RotateV(1);
        engine.RotateToSagittal();
        engine.RotateToCoronal();
        engine.RotateToAxial();
        engine.RotateToX();
        engine.RotateToY();
        engine.RotateToZ();
        engine.RotateToBack();
        engine.Zoom(2);
        engine.SetViewAngle(50);
        engine.GetParamsOfVR(2, 2, param);
        engine.GetImageParams(2, 2, param);
        engine.ClearAttachVolume();
        engine.SetBlendImage(&blend, 1);
        engine.CutClear();
        engine.Clear();
        KsVolumeMark* const mark = engine.GetMarkData();
        EXPECT_TRUE(!mark || !mark->slices);
        EXPECT_TRUE(engine.InitData(bone.data)); // now there is memory
        EXPECT_EQ(Picture(engine), expected);
    }
    EXPECT_GE(failures, 3); // its own state, the GPU renderer, the CPU renderer
}
} // namespace corvane::tests
