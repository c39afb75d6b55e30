#include "lifecycle_scene.h"
#include "tests/render3d/scratch_folder.h"

#include <algorithm>
#include <climits>

// An engine without a volume: every operation is safe and says that there is nothing.
namespace corvane::tests
{
namespace
{
// An image that the engine must leave alone.
struct UntouchedImage : KsImageData
{
    UntouchedImage() { std::memset(static_cast<void*>(this), 0x5A, sizeof *this); }
    bool IsUntouched() const { return SameBytes<KsImageData>(*this, UntouchedImage()); }
};

void ExpectNoVolume(Engine3D& engine)
{
    KsVolumeData volume;
    std::memset(static_cast<void*>(&volume), 0x5A, sizeof volume);
    const KsVolumeData before = volume;
    EXPECT_FALSE(engine.GetVolumeData(volume));
    EXPECT_TRUE(SameBytes(volume, before));
    float box[6] = {1, 2, 3, 4, 5, 6};
    EXPECT_FALSE(engine.GetBoundingBox(box, box + 3));
    EXPECT_FALSE(engine.GetVisibleBox(box, box + 3));
    EXPECT_EQ(box[0] + 10 * box[5], 61);
    EXPECT_TRUE(engine.SetVisibleBox(box, box + 3));
    EXPECT_FALSE(engine.SetVisibleBox(nullptr, box));
    EXPECT_FALSE(engine.SetVisibleBox(box, nullptr));
    EXPECT_FALSE(engine.GetVisibleBox(box, box + 3));
    EXPECT_EQ(engine.AttachVolumeData(BoneVolume().data), 0);
    engine.ClearAttachVolume();
    engine.SetBlendImage(nullptr, 3);
}

void ExpectNoLabels(Engine3D& engine)
{
    ASSERT_NE(engine.GetMarkData(), nullptr);
    EXPECT_EQ(engine.GetMarkData()->slices, nullptr);
    engine.UpdateMarkData();
    TestLabels selection = MakeLabels(20, 18, 16, [](int, int, int) { return 3; });
    EXPECT_FALSE(engine.CutAppend(selection.mark));
    EXPECT_FALSE(engine.CutAppend({}));
    KsVolumeMark sizesOfNothing = *engine.GetMarkData(); // the very sizes that the engine remembers
    sizesOfNothing.slices = selection.slices.data();
    EXPECT_FALSE(engine.CutAppend(sizesOfNothing));
    EXPECT_FALSE(engine.CutSubtract(selection.mark));
    engine.CutClear();
    uint8_t drawn = 1;
    const KsImageMark region = {&drawn, {1, 1, 1000, 1000, {1, 0, 0}, {0, 0, 1}, {-500, 0, -500}}};
    EXPECT_FALSE(engine.CutFill(region, selection.mark, 9));
    EXPECT_FALSE(engine.CutFill(region, sizesOfNothing, 9));
    for (const std::vector<uint8_t>& slice : selection.labels)
        EXPECT_EQ(std::count(slice.begin(), slice.end(), 3), 360);
}

void ExpectAppearanceCanBeSet(Engine3D& engine)
{
    KsPalettePoint points[] = {{100, 0x0000FF, 0.5f}, {300, 0xFF0000, 0.25f}};
    KsPalette palette;
    palette.points = points;
    palette.pointCount = 2;
    EXPECT_TRUE(engine.SetPalette(palette));
    EXPECT_TRUE(engine.AdjustColor(10));
    EXPECT_TRUE(engine.SetShading(0.1f, 0.2f, 0.3f, 0));
    EXPECT_TRUE(engine.SetOpacity(0.4f, 70));
    EXPECT_TRUE(engine.SetVisible(true, 1));
    KsPalette kept;
    EXPECT_TRUE(engine.GetPalette(kept));
    ASSERT_EQ(kept.pointCount, 2);
    EXPECT_EQ(kept.points[0].value, 110);
    EXPECT_EQ(kept.shading[2], 0.3f);
    EXPECT_EQ(kept.opacity, 0.4f);
    EXPECT_TRUE(kept.ownsPoints);
    delete[] kept.points;
}

void ExpectNoPictures(Engine3D& engine)
{
    PnImageParam param;
    ASSERT_TRUE(engine.GetParamsOfVR(kWidth, kHeight, param));
    Pixels pixels(size_t(kWidth) * kHeight, kGarbage);
    const Pixels black(pixels.size(), 0), untouched = pixels;
    PnImageRGB image = {};
    EXPECT_FALSE(engine.ImagingVR(kWidth, kHeight, pixels.data(), false, &image, 0));
    EXPECT_EQ(pixels, black);
    EXPECT_EQ(image.pixels, pixels.data());
    EXPECT_TRUE(SameBytes(image.param, param));
    pixels = untouched;
    image = {};
    EXPECT_TRUE(engine.ImagingVE(kWidth, kHeight, pixels.data(), 90, false, &image));
    EXPECT_EQ(pixels, untouched);
    EXPECT_EQ(image.pixels, pixels.data());
    EXPECT_EQ(image.param.rows, uint32_t(kWidth));
    EXPECT_EQ(image.param.columns, uint32_t(kHeight));

    using BySize = bool (Engine3D::*)(int, int, int16_t*, bool, KsImageVAL*);
    for (const BySize form :
         {BySize(&Engine3D::ImagingMIP), BySize(&Engine3D::ImagingAIP), BySize(&Engine3D::ImagingMinIP)})
    {
        std::vector<int16_t> values(pixels.size() + 1, 77);
        KsImageVAL projection = {};
        EXPECT_FALSE((engine.*form)(kWidth, kHeight, values.data(), false, &projection));
        EXPECT_EQ(std::count(values.begin(), values.end() - 1, -1024), kWidth * kHeight);
        EXPECT_EQ(values.back(), 77);
        EXPECT_EQ(projection.values, values.data());
        EXPECT_TRUE(SameBytes(projection.param, param));
    }
    const PnImageParam plane = {6, 5, 1, 1, {1, 0, 0}, {0, 1, 0}, {-25, 5, 8}};
    const KsSliceParam slice = {{-25, 5, 8}, {1, 0, 0}, {0, 1, 0}, 6};
    UntouchedImage sized;
    EXPECT_FALSE(engine.ImagingMIP(plane, 3, &sized));
    EXPECT_FALSE(engine.ImagingAIP(plane, 3, &sized));
    EXPECT_FALSE(engine.ImagingMinIP(plane, 3, &sized));
    EXPECT_FALSE(engine.ImagingMIP(slice, 3, &sized));
    EXPECT_FALSE(engine.ImagingAIP(slice, 3, &sized));
    EXPECT_FALSE(engine.ImagingMinIP(slice, 3, &sized));
    EXPECT_TRUE(sized.IsUntouched());
}

void ExpectEmpty(Engine3D& engine)
{
    ExpectNoVolume(engine);
    ExpectNoLabels(engine);
    ExpectAppearanceCanBeSet(engine);
    ExpectNoPictures(engine);
}

// A picture of what an engine makes of a volume, for comparison.
Pixels PictureOf(const KsVolumeData& volume)
{
    Engine3D engine;
    EXPECT_TRUE(engine.InitData(volume));
    return Picture(engine);
}
} // namespace

TEST(EngineLifecycle, ANewEngineIsEmpty)
{
    const ScratchFolder folder;
    Engine3D engine;
    ExpectEmpty(engine);
    engine.Clear();
    ExpectEmpty(engine);
}

TEST(EngineLifecycle, ClearEmptiesAnEngineWhichCanBeLoadedAgain)
{
    const ScratchFolder folder;
    const TestVolume bone = BoneVolume();
    const Pixels picture = PictureOf(bone.data);
    Engine3D engine;
    for (int round = 0; round < 2; ++round)
    {
        ASSERT_TRUE(engine.InitData(bone.data));
        EXPECT_EQ(Picture(engine), picture);
        engine.Clear();
        ExpectEmpty(engine);
        engine.Clear();
        ExpectEmpty(engine);
    }
}

TEST(EngineLifecycle, ARefusedVolumeLeavesTheEngineEmpty)
{
    const ScratchFolder folder;
    const TestVolume bone = BoneVolume();
    const Pixels picture = PictureOf(bone.data);
    std::vector<const int16_t*> slices = bone.slices;
    slices[15] = nullptr;
    std::vector<KsVolumeData> refused;
    const auto add = [&](auto&& change) { change(refused.emplace_back(bone.data)); };
    add([](KsVolumeData& volume) { volume.slices = nullptr; });
    add([&](KsVolumeData& volume) { volume.slices = slices.data(); });
    for (const int size : {0, -1, INT_MIN, INT_MAX, (1 << 24) + 1}) // too large is found out before anything is read
    {
        add([=](KsVolumeData& volume) { volume.sizeX = size; });
        add([=](KsVolumeData& volume) { volume.sizeY = size; });
        add([=](KsVolumeData& volume) { volume.sizeZ = size; });
    }
    add([](KsVolumeData& volume) { volume.sizeX = volume.sizeY = 65536; });
    Engine3D engine;
    for (const KsVolumeData& volume : refused)
    {
        EXPECT_FALSE(engine.InitData(volume));
        ExpectEmpty(engine);
        ASSERT_TRUE(engine.InitData(bone.data));
        EXPECT_FALSE(engine.InitData(volume)); // takes away what was there
        ExpectEmpty(engine);
        ASSERT_TRUE(engine.InitData(bone.data));
        EXPECT_EQ(Picture(engine), picture);
    }
}

TEST(EngineLifecycle, ThereIsNoGpuToEnable)
{
    Engine3D engine;
    EXPECT_FALSE(engine.SupportGPU());
    EXPECT_FALSE(engine.IsGPUEnabled());
    EXPECT_FALSE(engine.SetGPUEnabled(true));
    EXPECT_FALSE(engine.IsGPUEnabled());
    EXPECT_TRUE(engine.SetGPUEnabled(false));
}
} // namespace corvane::tests
