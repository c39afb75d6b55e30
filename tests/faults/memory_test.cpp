#include "core/block_tree.h"
#include "corvane/Corvane.h"
#include "engine3d/label_volume.h"
#include "plain_build.h"
#include "subjects.h"
#include "tests/core/failing_allocator.h"
#include "tests/mpr/owned_image.h"
#include "tests/render3d/scratch_folder.h"

#include <gtest/gtest.h>

#include <fstream>

// What docs/memory.md says of the library's memory.
namespace corvane::tests
{
namespace
{
constexpr int kX = 128, kY = 112, kZ = 96; // whole blocks
constexpr int64_t kVoxels = int64_t(kX) * kY * kZ;
constexpr int64_t kTree = kVoxels / 4096 * 3714; // bytes
constexpr int64_t kSmall = 32 << 10;             // tables, slots, pages that are not full
constexpr int64_t kThreads = 8 << 10;            // what 48 of them cost the one who starts them
constexpr int64_t kRangeTable = 4 * 65536;       // while masks are brought up to date

// What is allocated during a call.
struct Taken
{
    int64_t stays, most; // bytes
};

template <class Call>
Taken During(const Call& call)
{
    const int64_t before = Held().bytes;
    StartPeak();
    call();
    return {Held().bytes - before, PeakBytes() - before};
}

// At least so much, and not much more.
void ExpectAbout(const Taken& taken, int64_t bytes)
{
    EXPECT_GE(taken.stays, bytes);
    EXPECT_LE(taken.stays, bytes + kSmall);
    EXPECT_LE(taken.most, bytes + kSmall);
}

class Memory : public testing::Test
{
protected:
    const ScratchFolder folder;
    const TestVolume volume = MakeVolume(kX, kY, kZ, [](int i, int j, int k) { return 7 * i + 5 * j - 3 * k; });
    const VolumePalette tables = Tables();
    std::vector<uint32_t> pixels = std::vector<uint32_t>(200 * 200);
    std::vector<int16_t> values = std::vector<int16_t>(200 * 200);
};
} // namespace

TEST_F(Memory, ARendererHoldsTheTreeOfItsVolumeAndNoVoxels)
{
    Render3D render;
    ExpectAbout(During([&] { EXPECT_TRUE(render.InitData(volume.data, {}, tables)); }), kTree);
    ExpectAbout(During([&] { EXPECT_EQ(render.AttachVolumeData(volume.data), 1); }), kTree);
    EXPECT_LE(During([&] { render.Clear(); }).stays, -2 * kTree);
}

TEST_F(Memory, AnEngineHoldsLabelsBesidesAndReleasesAVolumeBeforeItTakesTheNext)
{
    Engine3D engine;
    const auto load = [&] { EXPECT_TRUE(engine.InitData(volume.data)); };
    ExpectAbout(During(load), kTree + kVoxels);
    EXPECT_LE(During(load).most, kSmall);
    EXPECT_LE(During([&] { engine.Clear(); }).stays, -(kTree + kVoxels));
}

TEST_F(Memory, AScenesIsThatOfAnEngine)
{
    const Owned<CorvaneScene> scene(corvane_scene_create(CORVANE_C_INTERFACE));
    const auto load = [&] { EXPECT_EQ(corvane_scene_set_volume(scene.get(), &volume.data), CORVANE_OK); };
    ExpectAbout(During(load), kTree + kVoxels);
    EXPECT_LE(During(load).most, kSmall);
}

TEST_F(Memory, PlanesOfAVolumeHoldNothing)
{
    EngineMPR engine;
    RenderMPR render;
    KsImageVAL image = {values.data(), {200, 200, 0.5, 0.5, {1, 0, 0}, {0, 1, 0}, {0, 0, 48}}};
    const Taken taken = During(
        [&]
        {
            EXPECT_TRUE(engine.InitData(volume.data));
            EXPECT_TRUE(render.InitData(volume.data));
            EXPECT_TRUE(render.Imaging(&image));
        });
    EXPECT_EQ(taken.most, 0);
}

TEST_F(Memory, ImagesThatTheLibrarySizesTakeTwoBytesForAValueAndOneForALabel)
{
    constexpr int64_t kRounding = 32;
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    OwnedImage image;
    const Taken ofImage = During([&] { EXPECT_TRUE(engine.Imaging(KsMPRCoronal, &image)); });
    EXPECT_GE(image.valueCount, 9000u);
    EXPECT_LE(ofImage.most, 2 * int64_t(image.valueCount) + kRounding);

    TestLabels labels = MakeLabels(kX, kY, kZ, [](int i, int, int) { return i % 5; });
    ASSERT_TRUE(engine.SetMarkData(labels.mark));
    OwnedMark mark;
    const Taken ofMark = During([&] { EXPECT_TRUE(engine.Marking(KsMPRCoronal, &mark)); });
    EXPECT_EQ(mark.labelCount, image.valueCount);
    EXPECT_LE(ofMark.most, int64_t(mark.labelCount) + kRounding);
}

TEST_F(Memory, NothingIsKeptBetweenFrames)
{
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    const auto render = [&] { EXPECT_TRUE(engine.ImagingVR(200, 200, pixels.data(), false, nullptr, 0)); };
    for (int frame = 0; frame < 3; ++frame)
    {
        if (frame == 2)
            engine.UpdateMarkData(); // masks are made anew, as before the first frame
        const Taken taken = During(render);
        EXPECT_EQ(taken.stays, 0);
        EXPECT_LE(taken.most, kThreads + (frame == 1 ? 0 : kRangeTable));
    }
    const Taken others = During(
        [&]
        {
            EXPECT_TRUE(engine.ImagingVE(200, 200, pixels.data(), 90, false, nullptr));
            EXPECT_TRUE(engine.ImagingMIP(200, 200, values.data(), false, nullptr));
            EXPECT_TRUE(engine.ImagingAIP(200, 200, values.data(), false, nullptr));
            EXPECT_TRUE(engine.ImagingMinIP(200, 200, values.data(), false, nullptr));
        });
    EXPECT_EQ(others.stays, 0);
    EXPECT_LE(others.most, kThreads);
}

TEST(TreeMemory, OfACtOf300SlicesIs72Megabytes)
{
    const KsVolumeData ct = {nullptr, 512, 512, 300, {1, 1, 1}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    core::BlockTree tree;
    const Taken taken = During([&] { EXPECT_TRUE(core::BuildBlockTree(ct, tree)); });
    EXPECT_NEAR(double(taken.stays), 72e6, 0.5e6);
    EXPECT_EQ(taken.most, taken.stays);
}

#if defined(__linux__)
// Pages of the program that are in memory, in bytes.
int64_t ResidentBytes()
{
    std::ifstream file("/proc/self/statm");
    int64_t all = 0, resident = 0;
    file >> all >> resident;
    return resident * 4096;
}

TEST(LabelMemory, ThatNobodyWritesToTakesNoPages)
{
    if (!kPlainBuild)
        GTEST_SKIP() << "a sanitizer keeps books of every page";
    constexpr int kSlices = 256;
    const int16_t voxel = 0;
    const std::vector<const int16_t*> slices(kSlices, &voxel);
    const KsVolumeData large = {slices.data(), 2048,      2048,      kSlices,  {1, 1, 1},
                                {0, 0, 0},     {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    engine3d::LabelVolume labels;
    const int64_t before = ResidentBytes();
    labels.Build(&large); // 2^30 bytes
    labels.Record().slices[100][77] = 1;
    EXPECT_LE(ResidentBytes() - before, 1 << 20);
}
#endif
} // namespace corvane::tests
