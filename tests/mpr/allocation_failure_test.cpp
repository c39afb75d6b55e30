#include "corvane/EngineMPR.h"
#include "corvane/RenderMPR.h"
#include "owned_image.h"
#include "plain_planes.h"
#include "tests/core/failing_allocator.h"
#include "tests/test_volume.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

// Memory that runs out in the middle of an operation: it says false, throws nothing and loses nothing.
namespace corvane::tests
{
namespace
{
constexpr KsMPRType kTypes[] = {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal};

TestVolume MakeRamp()
{
    return MakeVolume(24, 20, 16, [](int i, int j, int k) { return 3 * i + 50 * j + 400 * k; });
}

// Runs an operation on a record that holds an image of its own, failing its allocations one after another. Each time
// the operation must be false and leave record and buffer as they were. Returns how many allocations it makes.
template <class Image, class Sample>
int ExpectNothingLost(const std::function<bool(Image*)>& operation, Image& image, Sample* const& samples)
{
    for (int allowed = 0; allowed < 100; ++allowed)
    {
        Image before;
        std::memcpy(static_cast<void*>(&before), &image, sizeof image);
        const std::vector<Sample> samplesBefore(samples, samples + size_t(image.rows) * image.columns);
        bool result = true;
        FailAllocationAfter(allowed);
        EXPECT_NO_THROW(result = operation(&image));
        if (!StopFailingAllocations())
            return allowed;
        EXPECT_FALSE(result) << "allocation " << allowed;
        EXPECT_EQ(std::memcmp(&image, &before, sizeof image), 0) << "allocation " << allowed;
        EXPECT_EQ(std::vector<Sample>(samples, samples + size_t(image.rows) * image.columns), samplesBefore);
    }
    ADD_FAILURE() << "there is no end to its allocations";
    return -1;
}
} // namespace

TEST(AllocationFailure, LeavesARendererThatRefusesEverythingUntilItTakesAVolume)
{
    const TestVolume volume = MakeRamp();
    TestLabels labels = MakeLabels(24, 20, 16, [](int, int, int) { return 3; });
    int failures = 0;
    for (int allowed = 0; allowed < 20; ++allowed)
    {
        FailAllocationAfter(allowed);
        RenderMPR render;
        if (!StopFailingAllocations())
            break;
        ++failures;
        EXPECT_FALSE(render.SetMarkData(labels.mark));
        render.Clear();
        float low[3], high[3], vertexes[8][3];
        EXPECT_FALSE(render.GetBoundingBox(low, high));
        EXPECT_FALSE(render.GetBoundingVertexes(vertexes));
        const double directions[6] = {1, 0, 0, 0, 1, 0}, center[3] = {};
        double origin[3], rowExtent, columnExtent;
        EXPECT_FALSE(render.GetMPRSize(directions, center, origin, rowExtent, columnExtent));
        int16_t values[4] = {1, 2, 3, 4};
        KsImageVAL image = {values, AxialPlane(5, 5, 5, 2, 2, 1)};
        EXPECT_FALSE(render.Imaging(&image));
        EXPECT_FALSE(render.Imaging(volume.data, &image));
        EXPECT_EQ(values[0], 1);
        uint8_t bytes[4] = {1, 2, 3, 4};
        KsImageMark mark = {bytes, AxialPlane(5, 5, 5, 2, 2, 1)};
        EXPECT_FALSE(render.Marking(&mark));
        EXPECT_EQ(bytes[0], 1);
        KsVolumeMark* const record = render.GetMarkData();
        EXPECT_TRUE(!record || !record->slices);
        EXPECT_TRUE(render.InitData(volume.data)); // now there is memory
        EXPECT_TRUE(render.Imaging(&image));
        EXPECT_EQ(values[0], 3 * 5 + 50 * 5 + 400 * 5);
    }
    EXPECT_GT(failures, 0);
}

TEST(AllocationFailure, LeavesAnEngineThatRefusesEveryImageUntilItTakesAVolume)
{
    const TestVolume volume = MakeRamp();
    TestLabels labels = MakeLabels(24, 20, 16, [](int, int, int) { return 3; });
    int failures = 0;
    for (int allowed = 0; allowed < 20; ++allowed)
    {
        FailAllocationAfter(allowed);
        EngineMPR engine;
        if (!StopFailingAllocations())
            break;
        ++failures;
        EXPECT_FALSE(engine.SetMarkData(labels.mark));
        engine.Reset();
        engine.Rotate(KsMPRTransverse, 0.5f);
        double numbers[3] = {};
        engine.SetOrigin(numbers);
        engine.GetOrigin(numbers);
        engine.GetDirect(KsMPRTransverse, numbers);
        KsMPRParam params = {};
        engine.SetParams(params);
        engine.GetParams(params);
        for (const KsMPRType type : kTypes)
        {
            OwnedImage image;
            OwnedMark mark;
            PnImageParam param;
            EXPECT_FALSE(engine.GetImageParam(type, param));
            EXPECT_EQ(engine.GetImageCount(type, 1.0f, &param), 0);
            EXPECT_FALSE(engine.Imaging(type, &image));
            EXPECT_FALSE(engine.Imaging(type, volume.data, &image));
            EXPECT_FALSE(engine.ImagingMIP(type, 5.0f, &image));
            EXPECT_FALSE(engine.ImagingMinIP(type, 5.0f, &image));
            EXPECT_FALSE(engine.ImagingAIP(type, 5.0f, &image));
            EXPECT_FALSE(engine.Marking(type, &mark));
        }
        const KsSliceParam slice = {{5, 5, 5}, {1, 0, 0}, {0, 1, 0}, 4};
        OwnedImage image;
        EXPECT_FALSE(engine.Imaging(AxialPlane(5, 5, 5, 2, 2, 1), &image));
        EXPECT_FALSE(engine.Imaging(slice, &image));
        EXPECT_FALSE(engine.ImagingMIP(slice, 5.0f, &image));
        EXPECT_FALSE(engine.ImagingMinIP(slice, 5.0f, &image));
        EXPECT_FALSE(engine.ImagingAIP(slice, 5.0f, &image));
        engine.Clear();
        EXPECT_TRUE(engine.InitData(volume.data)); // now there is memory
        EXPECT_TRUE(engine.Imaging(AxialPlane(5, 5, 5, 2, 2, 1), &image));
        EXPECT_EQ(image.values[0], 3 * 5 + 50 * 5 + 400 * 5);
    }
    EXPECT_GE(failures, 2); // its own state and its renderer's
}

TEST(AllocationFailure, LosesNothingOfAnImage)
{
    const TestVolume volume = MakeRamp();
    const KsSliceParam slice = {{5, 5, 5}, {1, 0, 0}, {0, 1, 0}, 4};
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    const std::function<bool(KsImageData*)> forms[] = {
        [&](KsImageData* image) { return engine.Imaging(KsMPRSagittal, image); },
        [&](KsImageData* image) { return engine.Imaging(KsMPRCoronal, volume.data, image); },
        [&](KsImageData* image) { return engine.Imaging(AxialPlane(5, 5, 5, 3, 2, 1), image); },
        [&](KsImageData* image) { return engine.Imaging(slice, image); },
        [&](KsImageData* image) { return engine.ImagingMIP(KsMPRSagittal, 5.0f, image); },
        [&](KsImageData* image) { return engine.ImagingMinIP(KsMPRSagittal, 5.0f, image); },
        [&](KsImageData* image) { return engine.ImagingAIP(KsMPRSagittal, 5.0f, image); },
        [&](KsImageData* image) { return engine.ImagingMIP(slice, 5.0f, image); },
        [&](KsImageData* image) { return engine.ImagingMinIP(slice, 5.0f, image); },
        [&](KsImageData* image) { return engine.ImagingAIP(slice, 5.0f, image); }};
    for (const auto& form : forms)
    {
        OwnedImage image;
        ASSERT_TRUE(engine.Imaging(AxialPlane(3, 3, 3, 10, 10, 1), &image));
        EXPECT_GT(ExpectNothingLost<KsImageData>(form, image, image.values), 0);
        ASSERT_TRUE(engine.Imaging(KsMPRTransverse, &image)); // the engine goes on
        EXPECT_EQ(image.Values(), PlainImage(volume.data, image.param));
    }
}

TEST(AllocationFailure, LosesNothingOfALabelImage)
{
    const TestVolume volume = MakeRamp();
    TestLabels labels = MakeLabels(24, 20, 16, [](int, int, int) { return 3; });
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    ASSERT_TRUE(engine.SetMarkData(labels.mark));
    OwnedMark image;
    ASSERT_TRUE(engine.Marking(KsMPRTransverse, &image));
    const std::function<bool(KsMarkData*)> marking = [&](KsMarkData* mark)
    { return engine.Marking(KsMPRSagittal, mark); };
    EXPECT_GT(ExpectNothingLost(marking, static_cast<KsMarkData&>(image), image.labels), 0);
    EXPECT_EQ(image.Labels(), PlainLabels(volume.data, labels.mark, image.param));
}

TEST(AllocationFailure, CannotReachOperationsThatAllocateNothing)
{
    const TestVolume volume = MakeRamp();
    TestLabels labels = MakeLabels(24, 20, 16, [](int, int, int) { return 3; });
    RenderMPR render;
    EngineMPR engine;
    std::vector<int16_t> values(400);
    std::vector<uint8_t> bytes(400);
    KsImageVAL image = {values.data(), AxialPlane(2, 2, 5, 20, 20, 1)};
    KsImageMark mark = {bytes.data(), AxialPlane(2, 2, 5, 20, 20, 1)};
    PnImageParam param;
    FailAllocationAfter(0);
    const bool works = render.InitData(volume.data) && render.SetMarkData(labels.mark) && render.Imaging(&image) &&
                       render.Marking(&mark) && engine.InitData(volume.data) && engine.Reset() &&
                       engine.Rotate(KsMPRCoronal, 0.3f) && engine.GetImageParam(KsMPRSagittal, param) &&
                       engine.GetImageCount(KsMPRSagittal, 1.0f, &param) > 0;
    EXPECT_FALSE(StopFailingAllocations());
    EXPECT_TRUE(works);
}
} // namespace corvane::tests
