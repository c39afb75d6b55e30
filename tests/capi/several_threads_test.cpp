#include "c_handles.h"

#include <gtest/gtest.h>

#include <thread>

// Calls from several threads on one handle queue up.

namespace
{
using namespace corvane::tests;

template <class Body>
void RunOnThreads(int count, const Body& body)
{
    std::vector<std::thread> threads;
    for (int n = 0; n < count; ++n)
        threads.emplace_back([&body, n] { body(n); });
    for (std::thread& thread : threads)
        thread.join();
}

TEST(SeveralThreads, DrawTheirOwnViewsOfOneScene)
{
    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    const CorvaneView views[] = {{CORVANE_FROM_FRONT, 0.3f, 0, 0, 0.7f},
                                 {CORVANE_FROM_LEFT, 0, 0.8f, 0.4f, 0.5f},
                                 {CORVANE_FROM_FEET, -0.5f, 0.2f, 0, 0.9f}};
    std::vector<uint32_t> expected[3];
    for (int n = 0; n < 3; ++n)
        expected[n] = Rendered(scene.get(), PlaneOf(scene.get(), views[n], 40, 30));
    ASSERT_NE(expected[0], expected[1]);
    ASSERT_NE(expected[0], expected[2]);
    RunOnThreads(3,
                 [&](int n)
                 {
                     for (int turn = 0; turn < 25; ++turn)
                         EXPECT_EQ(Rendered(scene.get(), PlaneOf(scene.get(), views[n], 40, 30)), expected[n]);
                 });
}

TEST(SeveralThreads, CutAndUndoInOneSceneWithoutLosingAVoxel)
{
    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    const size_t count = LabelsOf(scene.get(), volume.data).size();
    RunOnThreads(3,
                 [&](int thread)
                 {
                     for (int turn = 0; turn < 20; ++turn)
                     {
                         std::vector<uint8_t> selection(count);
                         for (size_t n = size_t(3 * turn + thread); n < count; n += 60)
                             selection[n] = 1;
                         EXPECT_EQ(corvane_scene_cut_selection(scene.get(), selection.data(), count, nullptr),
                                   CORVANE_OK);
                     }
                 });
    EXPECT_EQ(LabelsOf(scene.get(), volume.data), std::vector<uint8_t>(count, 64));
    RunOnThreads(3,
                 [&](int)
                 {
                     while (corvane_scene_undo(scene.get()) == CORVANE_OK)
                         ;
                 });
    EXPECT_EQ(LabelsOf(scene.get(), volume.data), std::vector<uint8_t>(count, 0));
}

TEST(SeveralThreads, ProjectAndDrawWithOneEngine)
{
    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneEngine3D> engine(corvane_engine3d_create(CORVANE_C_INTERFACE));
    ASSERT_EQ(corvane_engine3d_init_data(engine.get(), &volume.data), CORVANE_OK);
    std::vector<uint32_t> expectedPixels(40 * 30);
    std::vector<int16_t> expectedValues(50 * 20);
    corvane_engine3d_imaging_vr(engine.get(), 40, 30, expectedPixels.data(), expectedPixels.size(), nullptr, 0);
    corvane_engine3d_imaging_mip_by_size(engine.get(), 50, 20, expectedValues.data(), expectedValues.size(), nullptr);
    RunOnThreads(4,
                 [&](int n)
                 {
                     for (int turn = 0; turn < 15; ++turn)
                         if (n % 2)
                         {
                             std::vector<uint32_t> pixels(40 * 30);
                             EXPECT_EQ(corvane_engine3d_imaging_vr(engine.get(), 40, 30, pixels.data(), pixels.size(),
                                                                   nullptr, 0),
                                       CORVANE_OK);
                             EXPECT_EQ(pixels, expectedPixels);
                         }
                         else
                         {
                             std::vector<int16_t> values(50 * 20);
                             EXPECT_EQ(corvane_engine3d_imaging_mip_by_size(engine.get(), 50, 20, values.data(),
                                                                            values.size(), nullptr),
                                       CORVANE_OK);
                             EXPECT_EQ(values, expectedValues);
                         }
                 });
}
} // namespace
