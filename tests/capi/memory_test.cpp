#include "c_handles.h"
#include "tests/core/failing_allocator.h"

#include <gtest/gtest.h>

// Memory that runs out in the middle of a call: an error, nothing thrown, nothing lost.

namespace
{
using namespace corvane::tests;

// Makes a call again and again, failing its allocations one after another until it makes no more. What a worker thread
// cannot get its caller makes up for, so a call may be right even then.
//   call    returns a status
//   expect  is told the status after each
//   returns how often the call said that memory is short
template <class Call, class Expect>
int FailEachAllocation(const Call& call, const Expect& expect)
{
    int shortages = 0;
    for (int allowed = 0; allowed < 1000; ++allowed)
    {
        FailAllocationAfter(allowed);
        const CorvaneStatus status = call();
        if (!StopFailingAllocations())
        {
            EXPECT_EQ(status, CORVANE_OK);
            return shortages;
        }
        EXPECT_TRUE(status == CORVANE_OK || status == CORVANE_ERROR_MEMORY) << status;
        shortages += status == CORVANE_ERROR_MEMORY;
        expect(status);
    }
    ADD_FAILURE() << "there is no end to its allocations";
    return shortages;
}

template <class Create, class Load>
void ExpectNullOrUsable(const Create& create, const Load& load)
{
    const int shortages = FailEachAllocation(
        [&]() -> CorvaneStatus
        {
            auto* const handle = create(CORVANE_C_INTERFACE);
            if (!handle)
                return CORVANE_ERROR_MEMORY;
            StopFailingAllocations();
            const CorvaneStatus loaded = load(handle);
            EXPECT_TRUE(loaded == CORVANE_OK || loaded == CORVANE_ERROR_MEMORY);
            Release(handle);
            return CORVANE_OK;
        },
        [](CorvaneStatus) {});
    EXPECT_GT(shortages, 0);
}

TEST(ShortMemory, GivesNullForAHandle)
{
    const TestVolume volume = MakeTiltedVolume();
    const auto withVolume = [&](auto function)
    { return [&volume, function](auto* handle) { return function(handle, &volume.data); }; };
    ExpectNullOrUsable(corvane_engine3d_create, withVolume(corvane_engine3d_init_data));
    ExpectNullOrUsable(corvane_engine_mpr_create, withVolume(corvane_engine_mpr_init_data));
    ExpectNullOrUsable(corvane_render_mpr_create, withVolume(corvane_render_mpr_init_data));
    ExpectNullOrUsable(corvane_scene_create, withVolume(corvane_scene_set_volume));
    const VolumePalette none = {};
    ExpectNullOrUsable(corvane_render3d_create, [&](CorvaneRender3D* render)
                       { return corvane_render3d_init_data(render, &volume.data, nullptr, &none); });
}

TEST(ShortMemory, LeavesASceneWithoutAVolumeEmpty)
{
    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    float low[3], high[3];
    const int shortages = FailEachAllocation([&] { return corvane_scene_set_volume(scene.get(), &volume.data); },
                                             [&](CorvaneStatus status)
                                             {
                                                 EXPECT_EQ(corvane_scene_get_bounding_box(scene.get(), low, high),
                                                           status == CORVANE_OK ? CORVANE_OK : CORVANE_ERROR_NO_VOLUME);
                                             });
    EXPECT_GT(shortages, 5);
}

TEST(ShortMemory, LosesNeitherLabelsNorHistoryNorPalettesOfAScene)
{
    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    const PnImageParam plane = PlaneOf(scene.get(), {CORVANE_FROM_FRONT, 0.3f, 0.2f, 0, 0.7f}, 45, 50);
    const double triangle[] = {5.3, 7.1, 44.2, 11.9, 21.7, 38.4};
    const std::vector<uint8_t> before = LabelsOf(scene.get(), volume.data);
    const auto cut = [&]
    { return corvane_scene_cut_polygon(scene.get(), &plane, triangle, 3, CORVANE_INSIDE, nullptr); };
    int shortages =
        FailEachAllocation(cut,
                           [&](CorvaneStatus status)
                           {
                               size_t undoable = 9;
                               corvane_scene_get_history(scene.get(), &undoable, nullptr, nullptr);
                               EXPECT_EQ(undoable, status == CORVANE_OK ? 1u : 0u);
                               EXPECT_EQ(LabelsOf(scene.get(), volume.data) == before, status != CORVANE_OK);
                               corvane_scene_undo(scene.get());
                           });
    EXPECT_GT(shortages, 3);

    KsPalettePoint points[] = {{-500, 0xFF0000, 0.5f}, {500, 0x00FF00, 0.5f}};
    const KsPalette palette = PaletteOf(points);
    const Owned<CorvaneScene> untouched = MakeScene(volume.data);
    const std::vector<uint32_t> picture = Rendered(untouched.get(), plane);
    KsPalette kept;
    ASSERT_EQ(corvane_scene_get_palette(untouched.get(), 0, &kept), CORVANE_OK);
    shortages = FailEachAllocation([&] { return corvane_scene_set_palette(untouched.get(), 0, &palette); },
                                   [&](CorvaneStatus status)
                                   {
                                       EXPECT_EQ(Rendered(untouched.get(), plane) == picture, status != CORVANE_OK);
                                       corvane_scene_set_palette(untouched.get(), 0, &kept);
                                   });
    EXPECT_GT(shortages, 2);
    corvane_palette_free(&kept);

    shortages = FailEachAllocation([&] { return corvane_scene_get_palette(untouched.get(), 0, &kept); },
                                   [&](CorvaneStatus) { EXPECT_EQ(kept.points, nullptr); });
    EXPECT_EQ(shortages, 1);
    corvane_palette_free(&kept);
}
} // namespace
