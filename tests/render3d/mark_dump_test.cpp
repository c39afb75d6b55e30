#include "corvane/Render3D.h"

#include "scenes.h"
#include "scratch_folder.h"

#include <gtest/gtest.h>

#include <array>

// The diagnostic file that new labels leave in the working folder, on Windows on drive D:.
namespace corvane::tests
{
namespace
{
constexpr PnImageParam kFront = {20, 20, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, -10}};

// All of it is opaque.
Scene SolidScene()
{
    Scene scene;
    scene.volume = MakeVolume(20, 20, 20, [](int, int, int) { return 1000; });
    scene.palette.AddOpaqueFrom(0, 500, {200, 0, 0});
    return scene;
}

class MarkDump : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!ScratchFolder::CanDump())
            GTEST_SKIP() << "there is no drive D:";
    }

private:
    const ScratchFolder folder_;
};
} // namespace

TEST_F(MarkDump, HoldsTheFirstFourLabelsOfEverySlice)
{
    TestLabels labels = MakeLabels(5, 3, 6, [](int i, int j, int k) { return 40 * k + 8 * j + i + 1; });
    Render3D render; // without a volume, too
    render.SetVolumeMark(labels.mark);
    std::string expected;
    for (int k = 0; k < 6; ++k)
        for (int i = 0; i < 4; ++i)
            expected += char(40 * k + i + 1);
    EXPECT_EQ(ScratchFolder::Dump(), expected);

    // Every call starts the file anew.
    labels.mark.sizeZ = 2;
    render.SetVolumeMark(labels.mark);
    EXPECT_EQ(ScratchFolder::Dump(), expected.substr(0, 8));
}

TEST_F(MarkDump, PadsSlicesOfFewerThanFourLabelsWithZeros)
{
    Render3D render;
    for (const auto& size : {std::array<int, 2>{1, 1}, {3, 1}, {1, 2}})
    {
        TestLabels labels = MakeLabels(size[0], size[1], 3, [](int i, int j, int k) { return 10 * k + i + j + 1; });
        render.SetVolumeMark(labels.mark);
        std::string expected;
        for (int k = 0; k < 3; ++k)
            for (int i = 0; i < 4; ++i)
                expected += i < size[0] * size[1] ? char(10 * k + i + 1) : char(0);
        EXPECT_EQ(ScratchFolder::Dump(), expected);
    }
}

TEST_F(MarkDump, IsEmptyWithoutSlices)
{
    TestLabels labels = MakeLabels(5, 3, 6, [](int, int, int) { return 1; });
    labels.mark.sizeZ = 0;
    Render3D render;
    render.SetVolumeMark(labels.mark);
    EXPECT_TRUE(std::filesystem::exists(ScratchFolder::kDumpName));
    EXPECT_EQ(ScratchFolder::Dump(), "");
}

TEST_F(MarkDump, SaysNothingWhereTheFileCannotBeWritten)
{
    std::filesystem::create_directory(ScratchFolder::kDumpName);
    const Scene scene = SolidScene();
    TestLabels cut = MakeLabels(20, 20, 20, [](int, int, int) { return 64; });
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    render.SetVolumeMark(cut.mark);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    TestImage image(kFront);
    ASSERT_TRUE(render.ImagingVR(&image.image, 0));
    EXPECT_EQ(image.At(10, 10), 0u); // the labels were taken
}

TEST_F(MarkDump, SaysNothingWhereTheDiskIsFull)
{
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "there is no device that is always full";
    std::filesystem::create_symlink("/dev/full", ScratchFolder::kDumpName);
    const Scene scene = SolidScene();
    TestLabels cut = MakeLabels(20, 20, 20, [](int, int, int) { return 64; });
    TestLabels thousands = MakeLabels(2, 2, 5000, [](int, int, int) { return 1; }); // more than a file keeps in memory
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    render.SetVolumeMark(thousands.mark);
    render.SetVolumeMark(cut.mark);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    TestImage image(kFront);
    ASSERT_TRUE(render.ImagingVR(&image.image, 0));
    EXPECT_EQ(image.At(10, 10), 0u); // the labels were taken
}

TEST_F(MarkDump, ComesFromSetVolumeMarkOnly)
{
    const Scene scene = SolidScene();
    TestLabels labels = MakeLabels(20, 20, 20, [](int, int, int) { return 0; });
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, labels.mark, scene.palette.palette));
    ASSERT_EQ(render.AttachVolumeData(scene.volume.data), 1);
    TestImage image(kFront);
    EXPECT_TRUE(render.ImagingVR(&image.image, 0));
    EXPECT_FALSE(std::filesystem::exists(ScratchFolder::kDumpName));
}
} // namespace corvane::tests
