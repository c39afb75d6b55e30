#include "lifecycle_scene.h"
#include "tests/core/failing_allocator.h"
#include "tests/render3d/scratch_folder.h"

#include <algorithm>
#include <functional>
#include <memory>

// Memory that runs out in the middle of an operation: it says false, throws nothing, and leaves nothing half done.
namespace corvane::tests
{
namespace
{
// What is done to an engine, and how it must look after it was refused or done: a failed allocation that only makes an
// operation slower (room for sorting, a thread) refuses nothing.
struct Attempt
{
    std::function<void()> prepare;
    std::function<bool()> operation;
    std::function<void()> expectRefused, expectDone;
};

// Lets the allocations of an operation fail one after another until it makes no more. Returns how often it was refused.
int FailEach(const Attempt& attempt)
{
    int refusals = 0;
    for (int allowed = 0; allowed < 200; ++allowed)
    {
        attempt.prepare();
        bool result = false;
        FailAllocationAfter(allowed);
        EXPECT_NO_THROW(result = attempt.operation());
        const bool failed = StopFailingAllocations();
        EXPECT_TRUE(failed || result) << "there was memory";
        refusals += !result;
        (result ? attempt.expectDone : attempt.expectRefused)();
        if (testing::Test::HasFailure())
            ADD_FAILURE() << "allocation " << allowed;
        if (!failed || testing::Test::HasFailure())
            return refusals;
    }
    ADD_FAILURE() << "there is no end to its allocations";
    return -1;
}

bool HoldsNothing(Engine3D& engine)
{
    KsVolumeData volume;
    float box[6];
    return !engine.GetVolumeData(volume) && !engine.GetBoundingBox(box, box + 3) && engine.GetMarkData() &&
           !engine.GetMarkData()->slices && engine.AttachVolumeData(BoneVolume().data) == 0;
}

class EngineMemory : public testing::Test
{
protected:
    EngineMemory() { EXPECT_TRUE(engine.InitData(bone.data)); }

    const ScratchFolder folder;
    const TestVolume bone = BoneVolume(), other = BoneVolume(2, 4);
    Engine3D engine;
};

// Asks the allocator for more than the machine has addresses for: every slice is the same one.
constexpr int kManySlices = 1 << 20;
} // namespace

TEST_F(EngineMemory, InitDataLeavesTheEngineEmptyAndUsable)
{
    const Pixels before = Picture(engine);
    const auto load = [&] { return engine.InitData(bone.data); };
    const auto expectDone = [&] { EXPECT_EQ(Picture(engine), before); };
    const auto expectRefused = [&]
    {
        EXPECT_TRUE(HoldsNothing(engine));
        EXPECT_EQ(Picture(engine, 0, false), Pixels(before.size(), 0));
        EXPECT_TRUE(engine.InitData(bone.data)); // the next time there is memory
        EXPECT_EQ(Picture(engine), before);
    };
    EXPECT_GE(FailEach({[] {}, load, expectRefused, expectDone}), 8); // labels, points, tables, sums, block tree
}

TEST_F(EngineMemory, LabelsThatDoNotFitLeaveTheEngineEmptyAndUsable)
{
    const Pixels before = Picture(engine);
    const std::vector<const int16_t*> slices(kManySlices, bone.slices[0]);
    KsVolumeData huge = bone.data;
    huge.slices = slices.data();
    huge.sizeX = 65535;
    huge.sizeY = 32767;
    huge.sizeZ = kManySlices;
    EXPECT_FALSE(engine.InitData(huge));
    EXPECT_TRUE(HoldsNothing(engine));
    EXPECT_TRUE(engine.InitData(bone.data));
    EXPECT_EQ(Picture(engine), before);
}

TEST_F(EngineMemory, SetPaletteChangesNothing)
{
    KsPalettePoint points[] = {{-1000, 0x00FF00, 0.1f}, {0, 0x00FF00, 0.2f}, {1000, 0x00FF00, 0.5f}};
    KsPalette palette;
    palette.points = points;
    palette.pointCount = 3;
    palette.opacity = 0.5f;
    const Pixels before = Picture(engine);
    ASSERT_TRUE(engine.SetPalette(palette));
    const Pixels after = Picture(engine);
    ASSERT_NE(after, before);
    const auto expect = [&](const Pixels& picture, int pointCount, float opacity)
    {
        EXPECT_EQ(Picture(engine), picture);
        KsPalette kept;
        EXPECT_TRUE(engine.GetPalette(kept));
        EXPECT_EQ(kept.pointCount, pointCount);
        EXPECT_EQ(kept.opacity, opacity);
        delete[] kept.points;
    };
    EXPECT_GE(FailEach({[&] { EXPECT_TRUE(engine.InitData(bone.data)); }, [&] { return engine.SetPalette(palette); },
                        [&] { expect(before, 4, 1.0f); }, [&] { expect(after, 3, 0.5f); }}),
              4);
}

TEST_F(EngineMemory, AdjustColorChangesNothing)
{
    const Pixels before = Picture(engine);
    ASSERT_TRUE(engine.AdjustColor(400));
    const Pixels after = Picture(engine);
    ASSERT_NE(after, before);
    const auto expect = [&](const Pixels& picture, int firstValue)
    {
        EXPECT_EQ(Picture(engine), picture);
        KsPalette kept;
        EXPECT_TRUE(engine.GetPalette(kept));
        EXPECT_EQ(kept.points[0].value, firstValue);
        delete[] kept.points;
    };
    EXPECT_GE(FailEach({[&] { EXPECT_TRUE(engine.InitData(bone.data)); }, [&] { return engine.AdjustColor(400); },
                        [&] { expect(before, 145); }, [&] { expect(after, 545); }}),
              1);
}

TEST_F(EngineMemory, GetPaletteLeavesTheHostsRecordAlone)
{
    KsPalette mine;
    ASSERT_TRUE(engine.GetPalette(mine));
    const KsPalette before = mine;
    ASSERT_TRUE(engine.AdjustColor(1));
    const auto expectRefused = [&]
    {
        EXPECT_TRUE(SameBytes(mine, before));
        EXPECT_EQ(mine.points[0].value, 145);
    };
    EXPECT_EQ(FailEach({[] {}, [&] { return engine.GetPalette(mine); }, expectRefused,
                        [&] { EXPECT_EQ(mine.points[0].value, 146); }}),
              1);
    delete[] mine.points;
}

TEST_F(EngineMemory, AVolumeThatCannotBeAttachedIsNotThere)
{
    const Pixels before = Picture(engine);
    ASSERT_EQ(engine.AttachVolumeData(other.data), 1);
    const Pixels after = Picture(engine, 1);
    ASSERT_NE(after, before);
    EXPECT_GE(FailEach({[&] { engine.ClearAttachVolume(); }, [&] { return engine.AttachVolumeData(other.data) == 1; },
                        [&] { EXPECT_EQ(Picture(engine, 1), before); }, [&] { EXPECT_EQ(Picture(engine, 1), after); }}),
              2);
}

TEST_F(EngineMemory, BlendImagesThatCannotBeKeptLeaveThoseThatThereWere)
{
    Pixels first(size_t(kWidth) * kHeight, 0x10203000), second(first.size(), 0x40506000);
    KsBlendImage one = BlendImageOf(first, 1), two = BlendImageOf(second, 1);
    engine.SetBlendImage(&one, 1);
    const Pixels before = Picture(engine);
    FailAllocationAfter(0);
    engine.SetBlendImage(&two, 1);
    EXPECT_TRUE(StopFailingAllocations());
    EXPECT_EQ(Picture(engine), before);
    engine.SetBlendImage(&two, 1);
    EXPECT_NE(Picture(engine), before);
}

TEST_F(EngineMemory, AnImageThatCannotBeSizedIsLeftAlone)
{
    const PnImageParam small = {2, 2, 1, 1, {1, 0, 0}, {0, 1, 0}, {-20, 8, 8}};
    const PnImageParam plane = {6, 5, 1, 1, {1, 0, 0}, {0, 1, 0}, {-25, 5, 8}};
    const KsSliceParam slice = {{-25, 5, 8}, {1, 0, 0}, {0, 1, 0}, 6};
    const std::function<bool(KsImageData*)> forms[] = {
        [&](KsImageData* image) { return engine.ImagingMIP(plane, 3, image); },
        [&](KsImageData* image) { return engine.ImagingAIP(plane, 3, image); },
        [&](KsImageData* image) { return engine.ImagingMinIP(plane, 3, image); },
        [&](KsImageData* image) { return engine.ImagingMIP(slice, 3, image); },
        [&](KsImageData* image) { return engine.ImagingAIP(slice, 3, image); },
        [&](KsImageData* image) { return engine.ImagingMinIP(slice, 3, image); }};
    for (const auto& form : forms)
    {
        KsImageData image = {};
        ASSERT_TRUE(engine.ImagingMIP(small, 3, &image));
        const KsImageData before = image;
        const std::vector<int16_t> values(image.values, image.values + 4);
        FailAllocationAfter(0);
        EXPECT_FALSE(form(&image));
        EXPECT_TRUE(StopFailingAllocations());
        EXPECT_TRUE(SameBytes(image, before));
        EXPECT_EQ(std::vector<int16_t>(image.values, image.values + 4), values);
        EXPECT_TRUE(form(&image));
        EXPECT_GE(image.rows, 6u);
        delete[] image.values;
    }
}

TEST_F(EngineMemory, PicturesAreWholeOrRefused)
{
    const Pixels volume = Picture(engine), endoscopy = EndoscopyPicture(engine);
    for (int allowed = 0; allowed < 50; ++allowed)
    {
        engine.UpdateMarkData(); // the masks are made anew
        Pixels pixels(volume.size(), kGarbage);
        FailAllocationAfter(allowed);
        const bool drawn = engine.ImagingVR(kWidth, kHeight, pixels.data(), false, nullptr, 0);
        const bool failed = StopFailingAllocations();
        EXPECT_EQ(pixels, drawn ? volume : Pixels(volume.size(), 0)) << "allocation " << allowed;
        engine.UpdateMarkData();
        pixels.assign(volume.size(), kGarbage);
        FailAllocationAfter(allowed);
        EXPECT_TRUE(engine.ImagingVE(kWidth, kHeight, pixels.data(), 90, false, nullptr));
        StopFailingAllocations();
        EXPECT_TRUE(pixels == endoscopy || pixels == Pixels(volume.size(), kGarbage)) << "allocation " << allowed;
        if (!failed)
            break;
    }
    EXPECT_EQ(Picture(engine), volume);
    EXPECT_EQ(EndoscopyPicture(engine), endoscopy);
}

TEST_F(EngineMemory, CutFillWritesNothingThatItCannotFinish)
{
    TestLabels selection = MakeLabels(20, 18, 16, [](int, int, int) { return 7; });
    std::vector<uint8_t> drawn(400, 1);
    const KsImageMark region = {drawn.data(), {20, 20, 5, 5, {1, 0, 0}, {0, 0, 1}, {-50, 0, -20}}};
    const auto count = [&](uint8_t value)
    {
        ptrdiff_t sum = 0;
        for (const std::vector<uint8_t>& slice : selection.labels)
            sum += std::count(slice.begin(), slice.end(), value);
        return sum;
    };
    const auto fill = [&](uint8_t value)
    {
        for (std::vector<uint8_t>& slice : selection.labels)
            std::fill(slice.begin(), slice.end(), value);
    };
    EXPECT_EQ(FailEach({[&] { fill(7); }, [&] { return engine.CutFill(region, selection.mark, 9); },
                        [&] { EXPECT_EQ(count(7), 20 * 18 * 16); }, [&] { EXPECT_EQ(count(9), 20 * 18 * 16); }}),
              1);
}
} // namespace corvane::tests

#if !defined(_WIN32)
// A sanitizer's allocator is to answer as any other when it is asked for too much.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}

extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options()
{
    return "allocator_may_return_null=1";
}
#endif
