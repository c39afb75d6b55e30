#include "lifecycle_scene.h"
#include "tests/render3d/scratch_folder.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <numeric>

// Whose memory is read, and until when. A sanitizer sees what is read too late, freed twice or not at all.
namespace corvane::tests
{
namespace
{
constexpr int kSpan = 40; // control points

// A transfer function of `count` points from `first` on, `step` apart, with memory that goes when the call is over.
void SetPaletteOf(Engine3D& engine, int count, int first, int step, float opacity)
{
    const auto points = std::make_unique<KsPalettePoint[]>(size_t(count));
    for (int n = 0; n < count; ++n)
        points[size_t(n)] = {int16_t(first + n * step), uint32_t(n * 0x050301), opacity};
    KsPalette palette;
    palette.points = points.get();
    palette.pointCount = count;
    EXPECT_TRUE(engine.SetPalette(palette));
}

Pixels FreshPicture(const KsVolumeData& volume, const std::function<void(Engine3D&)>& prepare)
{
    Engine3D engine;
    EXPECT_TRUE(engine.InitData(volume));
    prepare(engine);
    return Picture(engine);
}
} // namespace

// The renderer's tables go with every change; each picture must be that of an engine that never had others.
TEST(EngineOwnership, PalettesMayChangeBetweenAnyTwoFrames)
{
    const ScratchFolder folder;
    const TestVolume bone = BoneVolume();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(bone.data));
    for (int frame = 0; frame < 24; ++frame)
    {
        const int count = 2 + frame * 7 % kSpan, step = 1 + frame * 37 % 400;
        const auto change = [&](Engine3D& each)
        {
            SetPaletteOf(each, count, -500 + 30 * frame, step, 0.02f * float(1 + frame));
            if (frame % 3 == 1)
                each.AdjustColor(frame % 2 ? 250 : -250);
            if (frame % 4 == 2)
                each.SetShading(0.5f, 0.5f, 0.1f, 0);
            each.SetVisible(frame % 5 != 3, 0);
        };
        change(engine);
        EXPECT_EQ(Picture(engine), FreshPicture(bone.data, change)) << frame;
    }
}

TEST(EngineOwnership, GetPaletteHandsOutCopies)
{
    const ScratchFolder folder;
    KsPalette first, second;
    {
        const TestVolume bone = BoneVolume();
        Engine3D engine;
        ASSERT_TRUE(engine.InitData(bone.data));
        ASSERT_TRUE(engine.GetPalette(first));
        ASSERT_TRUE(engine.GetPalette(second));
        EXPECT_NE(first.points, second.points);
        first.points[0].value = 999;            // not the engine's
        ASSERT_TRUE(engine.GetPalette(second)); // frees what the record owned
        EXPECT_EQ(second.points[0].value, 145);
        KsPalettePoint notOwned = {1, 2, 3};
        KsPalette borrowed;
        borrowed.points = &notOwned;
        borrowed.pointCount = 1;
        ASSERT_TRUE(engine.GetPalette(borrowed)); // leaves what it did not own
        EXPECT_EQ(notOwned.value, 1);
        EXPECT_EQ(borrowed.pointCount, 4);
        // What it handed out can come back, points and all.
        ASSERT_TRUE(engine.SetPalette(borrowed));
        delete[] borrowed.points;
    }
    EXPECT_EQ(second.points[3].value, 1448); // they live on
    delete[] first.points;
    delete[] second.points;
}

TEST(EngineOwnership, WhatTheEngineHasLetGoIsNotReadAgain)
{
    const ScratchFolder folder;
    const TestVolume bone = BoneVolume(), other = BoneVolume(3, 5);
    const Pixels picture = FreshPicture(bone.data, [](Engine3D&) {});
    const std::function<void(Engine3D&)> releases[] = {
        [](Engine3D& engine) { engine.Clear(); },
        [](Engine3D& engine) { EXPECT_FALSE(engine.InitData({})); },
        [&](Engine3D& engine) { EXPECT_TRUE(engine.InitData(other.data)); },
    };
    for (const auto& release : releases)
    {
        Engine3D engine;
        {
            const TestVolume main = BoneVolume(), attached = BoneVolume(1, 2);
            Pixels pixels(size_t(kWidth) * kHeight, 0x77777700);
            KsBlendImage blend = BlendImageOf(pixels, 3);
            ASSERT_TRUE(engine.InitData(main.data));
            ASSERT_EQ(engine.AttachVolumeData(attached.data), 1);
            engine.SetBlendImage(&blend, 1);
            Picture(engine);
            Picture(engine, 1);
            release(engine);
        }
        engine.UpdateMarkData();
        EXPECT_TRUE(engine.AdjustColor(1));
        EXPECT_TRUE(engine.SetVisible(true, 0));
        Pixels pixels(size_t(kWidth) * kHeight);
        engine.ImagingVR(kWidth, kHeight, pixels.data(), false, nullptr, 1);
        EndoscopyPicture(engine);
        ASSERT_TRUE(engine.InitData(bone.data));
        EXPECT_EQ(Picture(engine), picture);
        EXPECT_EQ(Picture(engine, 1), picture);
    }
}

TEST(EngineOwnership, AttachedVolumesAndBlendImagesMayGoOnceTakenAway)
{
    const ScratchFolder folder;
    const TestVolume bone = BoneVolume();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(bone.data));
    const Pixels picture = Picture(engine);
    for (int round = 0; round < 3; ++round)
    {
        const TestVolume attached = BoneVolume(1, 2 + round);
        Pixels pixels(size_t(kWidth) * kHeight, 0x77777700);
        std::vector<KsBlendImage> blends(size_t(round) * 3 + 1, BlendImageOf(pixels, 3));
        ASSERT_EQ(engine.AttachVolumeData(attached.data), 1);
        engine.SetBlendImage(blends.data(), int(blends.size()));
        EXPECT_NE(Picture(engine, 1), picture);
        engine.ClearAttachVolume();
        engine.SetBlendImage(blends.data(), 0);
        EXPECT_EQ(Picture(engine, 1), picture);
    }
    EXPECT_EQ(Picture(engine, 1), picture);
}

// Everything that owns or borrows, in every order, with Clear among it.
TEST(EngineOwnership, ClearMayComeAtAnyPoint)
{
    const ScratchFolder folder;
    const TestVolume bone = BoneVolume(), other = BoneVolume(1, 4);
    Pixels pixels(size_t(kWidth) * kHeight, 0x77777700);
    KsBlendImage blend = BlendImageOf(pixels, 3);
    TestLabels half = MakeLabels(20, 18, 16, [](int i, int, int) { return i < 10; });
    const std::function<void(Engine3D&)> steps[] = {
        [&](Engine3D& engine) { engine.AttachVolumeData(other.data); },
        [&](Engine3D& engine) { engine.SetBlendImage(&blend, 1); },
        [&](Engine3D& engine) { SetPaletteOf(engine, 9, 100, 90, 0.3f); },
        [&](Engine3D& engine)
        {
            engine.CutAppend(half.mark);
            engine.ImagingVR(kWidth, kHeight, pixels.data(), false, nullptr, 1);
        },
        [&](Engine3D& engine) { engine.Clear(); },
    };
    const Pixels expected = FreshPicture(bone.data, [](Engine3D&) {});
    int order[] = {0, 1, 2, 3, 4};
    do
    {
        Engine3D engine;
        ASSERT_TRUE(engine.InitData(bone.data));
        for (const int step : order)
            steps[step](engine);
        ASSERT_TRUE(engine.InitData(bone.data));
        ASSERT_EQ(Picture(engine), expected);
    } while (std::next_permutation(std::begin(order), std::end(order)));
}

TEST(EngineOwnership, AnImagesBufferIsReusedAndReplacedByAnyEngine)
{
    const ScratchFolder folder;
    const TestVolume bone = BoneVolume();
    KsImageData image = {};
    for (int round = 0; round < 6; ++round)
    {
        Engine3D engine;
        ASSERT_TRUE(engine.InitData(bone.data));
        const uint32_t rows = 3 + 5 * uint32_t(round) % 7;
        const PnImageParam plane = {rows, 4, 1, 1, {1, 0, 0}, {0, 1, 0}, {-25, 5, 8}};
        ASSERT_TRUE(engine.ImagingMIP(plane, 3, &image));
        EXPECT_EQ(image.valueCount, rows * 4);
        EXPECT_TRUE(image.ownsValues);
        ASSERT_TRUE(engine.ImagingMinIP(image.param, 2, &image)); // its own record as the plane
    }
    EXPECT_NE(std::accumulate(image.values, image.values + image.valueCount, 0), 0); // it outlives the engine
    delete[] image.values;
}
} // namespace corvane::tests
