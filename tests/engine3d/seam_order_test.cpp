#include "seam_engine.h"

// Which renderer hears of a change first. What the CPU renderer knows is looked up in the middle of the GPU's call.
namespace corvane::tests
{
namespace
{
class SeamOrder : public Seam
{
protected:
    // What `look` finds in the middle of the next GPU call of a name.
    template <class Look>
    void During(const std::string& operation, const Look& look)
    {
        looks = 0;
        gpu.during = [this, operation, look](const gpu::Call& call)
        {
            if (call.operation != operation)
                return;
            gpu.during = nullptr;
            ++looks;
            look();
        };
    }

    const TestVolume other = BoneVolume(2, 4);
    int looks = 0;
};
} // namespace

TEST_F(SeamOrder, ClearReachesTheGpuBeforeTheCpuForgets)
{
    LoadOnGpu();
    During("Clear",
           [&]
           {
               float box[6];
               EXPECT_TRUE(engine.GetBoundingBox(box, box + 3));
               KsVolumeData volume;
               EXPECT_TRUE(engine.GetVolumeData(volume));
               EXPECT_NE(engine.GetMarkData()->slices, nullptr);
               // It counts as empty from the start: what it is told now would be lost.
               gpu.calls.clear();
               engine.UpdateMarkData();
               EXPECT_TRUE(gpu.calls.empty());
           });
    engine.Clear();
    EXPECT_EQ(looks, 1);
    float box[6];
    EXPECT_FALSE(engine.GetBoundingBox(box, box + 3));
}

TEST_F(SeamOrder, AFurtherVolumeReachesTheGpuFirst)
{
    const Pixels mainPicture = VolumeRendering();
    LoadOnGpu();
    During("AttachVolumeData", [&] { EXPECT_EQ(PictureWithoutGpu(1), mainPicture); }); // the CPU knows no volume 1
    EXPECT_EQ(engine.AttachVolumeData(other.data), 1);
    EXPECT_EQ(looks, 1);
    const Pixels otherPicture = PictureWithoutGpu(1);
    EXPECT_NE(otherPicture, mainPicture);
    During("ClearAttachVolume", [&] { EXPECT_EQ(PictureWithoutGpu(1), otherPicture); });
    engine.ClearAttachVolume();
    EXPECT_EQ(looks, 1);
    EXPECT_EQ(PictureWithoutGpu(1), mainPicture);
}

TEST_F(SeamOrder, AVolumeReachesTheCpuFirstAndTheCamerasLookAtIt)
{
    EXPECT_TRUE(engine.SetGPUEnabled(true));
    TestVolume far = BoneVolume();
    far.data.origin[1] = 500;
    During("InitData",
           [&]
           {
               float low[3], high[3];
               EXPECT_TRUE(engine.GetBoundingBox(low, high));
               EXPECT_GT(low[1], 490);
               double eye[3];
               EXPECT_TRUE(engine.GetOrigin(eye));
               EXPECT_EQ(eye[1], 0.5 * (double(low[1]) + double(high[1])));
           });
    EXPECT_TRUE(engine.InitData(far.data));
    EXPECT_EQ(looks, 1);
}

TEST_F(SeamOrder, AppearanceReachesTheCpuFirst)
{
    KsPalettePoint points[] = {{-1000, 0x00FF00, 0.0f}, {1000, 0x00FF00, 0.5f}};
    KsPalette palette;
    palette.points = points;
    palette.pointCount = 2;
    const std::function<bool()> changes[] = {
        [&] { return engine.SetPalette(palette); },
        [&] { return engine.AdjustColor(500); },
        [&] { return engine.SetShading(0.9f, 0.0f, 0.0f, 0); },
        [&] { return engine.SetVisible(false, 0); },
    };
    LoadOnGpu();
    Pixels before = PictureWithoutGpu();
    for (const auto& change : changes)
    {
        Pixels during;
        During("SetPalette", [&] { during = PictureWithoutGpu(); });
        EXPECT_TRUE(change());
        EXPECT_EQ(looks, 1);
        EXPECT_NE(during, before);
        before = PictureWithoutGpu();
        EXPECT_EQ(during, before);
    }
}

TEST_F(SeamOrder, LabelsReachTheCpuFirst)
{
    LoadOnGpu();
    TestLabels half = MakeLabels(20, 18, 16, [](int i, int, int) { return i < 10; });
    const Pixels before = PictureWithoutGpu();
    Pixels during;
    During("SetVolumeMark", [&] { during = PictureWithoutGpu(); });
    EXPECT_TRUE(engine.CutAppend(half.mark));
    EXPECT_EQ(looks, 1);
    EXPECT_NE(during, before);
    std::fill_n(engine.GetMarkData()->slices[0], 16 * 360, uint8_t(64));
    During("SetVolumeMark", [&] { EXPECT_EQ(PictureWithoutGpu(), Pixels(size_t(kWidth) * kHeight, 0)); });
    engine.UpdateMarkData();
    EXPECT_EQ(looks, 1);
}

TEST_F(SeamOrder, TheVisibleBoxAndImagesReachTheCpuFirst)
{
    LoadOnGpu();
    const float low[3] = {-25, 2, 3}, high[3] = {-15, 12, 20};
    During("SetVisibleBox",
           [&]
           {
               float box[6];
               EXPECT_TRUE(engine.GetVisibleBox(box, box + 3));
               EXPECT_EQ(box[0], -25);
               EXPECT_EQ(box[5], 20);
           });
    EXPECT_TRUE(engine.SetVisibleBox(low, high));
    EXPECT_EQ(looks, 1);

    Pixels pixels(size_t(kWidth) * kHeight, 0x33221100);
    KsBlendImage blend = BlendImageOf(pixels, 0);
    const Pixels before = PictureWithoutGpu();
    During("SetBlendImage", [&] { EXPECT_NE(PictureWithoutGpu(), before); });
    engine.SetBlendImage(&blend, 1);
    EXPECT_EQ(looks, 1);
    During("SetBlendImage", [&] { EXPECT_EQ(PictureWithoutGpu(), before); });
    engine.SetBlendImage(nullptr, 0);
    EXPECT_EQ(looks, 1);
}
} // namespace corvane::tests
