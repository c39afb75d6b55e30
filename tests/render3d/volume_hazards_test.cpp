#include "hazard_scenes.h"
#include "tests/core/failing_allocator.h"

#include <functional>

// Volumes, and the memory that they need.
namespace corvane::tests
{
using namespace hazards;

TEST(RenderHazards, AVolumeWithoutADistanceBetweenVoxelsIsTakenAndShowsNothing)
{
    const Scene scene = SolidScene(16, 16, 16);
    for (const float number : {0.0f, -0.0f, -1.0f, kNan, kInfinity, -kInfinity})
        for (int axis = 0; axis < 4; ++axis)
        {
            SCOPED_TRACE(testing::Message() << number << ", " << axis);
            KsVolumeData volume = scene.volume.data;
            if (axis < 3)
                volume.spacing[axis] = number;
            else
                std::fill_n(volume.spacing, 3, number);
            ExpectNothing(volume, scene);

            // The box of the volume before stays when the spacing is not above 0.
            Render3D render;
            float low[3], high[3], lowNow[3], highNow[3];
            ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
            ASSERT_TRUE(render.GetBoundingBox(low, high));
            EXPECT_TRUE(ShowsSomething(Drawn(render)));
            ASSERT_TRUE(render.InitData(volume, {}, scene.palette.palette));
            ASSERT_TRUE(render.GetBoundingBox(lowNow, highNow));
            if (!(number > 0))
            {
                EXPECT_TRUE(std::equal(low, low + 3, lowNow));
                EXPECT_TRUE(std::equal(high, high + 3, highNow));
            }
            EXPECT_TRUE(ShowsNothing(Drawn(render)));
            EXPECT_TRUE(ShowsNothing(Perspective(render)));
        }
}

TEST(RenderHazards, ANewRenderersBoxIsEmptyWithoutADistanceBetweenVoxels)
{
    const Scene scene = SolidScene(16, 16, 16);
    KsVolumeData volume = scene.volume.data;
    volume.spacing[1] = 0;
    Render3D render;
    ASSERT_TRUE(render.InitData(volume, {}, scene.palette.palette));
    float low[3] = {1, 1, 1}, high[3] = {1, 1, 1};
    ASSERT_TRUE(render.GetBoundingBox(low, high));
    for (int axis = 0; axis < 3; ++axis)
    {
        EXPECT_EQ(low[axis], 0);
        EXPECT_EQ(high[axis], 0);
    }
}

TEST(RenderHazards, AVolumeWithoutDepthInSpaceShowsNothing)
{
    const Scene scene = SolidScene(16, 16, 16);
    const float alongRow[3] = {1, 0, 0}, inPlane[3] = {0.6f, 0.8f, 0}, zero[3] = {}, nan[3] = {kNan, 0, 1};
    const float infinite[3] = {0, kInfinity, 1};
    for (const float* slice : {alongRow, inPlane, zero, nan, infinite})
    {
        SCOPED_TRACE(slice[0]);
        KsVolumeData volume = scene.volume.data;
        std::copy_n(slice, 3, volume.sliceDirection);
        ExpectNothing(volume, scene);
        if (slice == alongRow || slice == inPlane)
            continue;
        volume = scene.volume.data;
        std::copy_n(slice, 3, volume.rowDirection);
        ExpectNothing(volume, scene);
    }
}

TEST(RenderHazards, OriginsFarAwayOrNowhereShowNothing)
{
    const Scene scene = SolidScene(16, 16, 16);
    for (const float number : {kNan, kInfinity, -kInfinity, 3e38f, -1e30f})
        for (int axis = 0; axis < 3; ++axis)
        {
            KsVolumeData volume = scene.volume.data;
            volume.origin[axis] = number;
            ExpectNothing(volume, scene);
        }
}

// Samples need one voxel more on the lower side and two on the upper one: four voxels are the fewest to see.
TEST(RenderHazards, VolumesOfOneToThreeVoxelsShowNothing)
{
    for (int sizeX = 1; sizeX <= 4; ++sizeX)
        for (int sizeY = 1; sizeY <= 4; ++sizeY)
            for (int sizeZ = 1; sizeZ <= 4; ++sizeZ)
            {
                const Scene scene = SolidScene(sizeX, sizeY, sizeZ);
                if (std::min({sizeX, sizeY, sizeZ}) < 4)
                    ExpectNothing(scene.volume.data, scene);
            }
    for (const auto& size : {std::array<int, 3>{1, 40, 40}, {40, 2, 40}, {40, 40, 3}})
    {
        const Scene scene = SolidScene(size[0], size[1], size[2]);
        ExpectNothing(scene.volume.data, scene);
    }
    const Scene scene = SolidScene(4, 4, 4);
    const PnImageParam param = {8, 8, 0.25, 0.25, {1, 0, 0}, {0, 1, 0}, {1, 1, -2}};
    const TestImage image = Drawn(scene, param);
    ExpectSamePixels(image, DrawnPlainly(scene, param));
    EXPECT_TRUE(ShowsSomething(image));
}

TEST(RenderHazards, AVolumeThatIsTooLargeToNumberCountsAsNotLoaded)
{
    const Scene scene = SolidScene(16, 16, 16);
    const int16_t* slice = scene.volume.slices[0];
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, {}, scene.palette.palette));
    KsVolumeData volume = scene.volume.data;
    volume.slices = &slice;
    volume.sizeX = volume.sizeY = INT32_MAX;
    volume.sizeZ = 1;
    EXPECT_FALSE(render.InitData(volume, {}, scene.palette.palette));
    float low[3], high[3];
    EXPECT_FALSE(render.GetBoundingBox(low, high));
    TestImage image(kFront);
    EXPECT_FALSE(render.ImagingVR(&image.image, 0));
}

// A block has 32 words that say how far rays may jump, and 32 bits number those words: 2^26 blocks are too many. They
// are refused before any memory is asked for.
TEST(RenderHazards, AVolumeOfMoreBlocksThanKernelsCanNumberIsRefused)
{
    const Scene scene = SolidScene(16, 16, 16);
    const std::vector<const int16_t*> slices(144, scene.volume.slices[0]);
    KsVolumeData volume = scene.volume.data;
    volume.slices = slices.data();
    volume.sizeX = volume.sizeY = 46336; // 2896 blocks
    volume.sizeZ = 144;                  // 9 blocks: 75,481,344 in all
    static_assert(int64_t(2896) * 2896 * 9 > INT32_MAX / 32 && int64_t(46336) * 46336 <= INT32_MAX);
    Render3D render;
    FailAllocationAfter(0);
    EXPECT_FALSE(render.InitData(volume, {}, scene.palette.palette));
    EXPECT_FALSE(StopFailingAllocations());
}

// Wherever memory runs out, an operation says so, and the renderer is empty or as it was.
TEST(RenderHazards, MemoryThatRunsOutLeavesTheRendererWhole)
{
    const Scene scene = SolidScene(20, 20, 20), other = SolidScene(20, 20, 20, 0.9f);
    Render3D original;
    ASSERT_TRUE(original.InitData(scene.volume.data, {}, scene.palette.palette));
    ASSERT_EQ(original.AttachVolumeData(other.volume.data), 1);
    const TestImage image = Drawn(original);
    float low[3], high[3];
    int failures[4] = {};
    const auto failEverywhere = [&](int operation, const std::function<void()>& run)
    {
        for (int allocation = 0; allocation < 1000; ++allocation)
        {
            FailAllocationAfter(allocation);
            run();
            if (!StopFailingAllocations())
                return;
            ++failures[operation];
        }
        ADD_FAILURE() << "operation " << operation << " never runs through";
    };

    bool loaded = false;
    failEverywhere(0,
                   [&]
                   {
                       Render3D render(original);
                       if (!render.GetBoundingBox(low, high)) // the copy had no memory
                           return;
                       loaded = render.InitData(other.volume.data, {}, other.palette.palette);
                       EXPECT_EQ(render.GetBoundingBox(low, high), loaded);
                   });
    EXPECT_TRUE(loaded);

    int attached = 0;
    failEverywhere(1,
                   [&]
                   {
                       attached = original.AttachVolumeData(other.volume.data);
                       if (attached != 0)
                           original.ClearAttachVolume();
                   });
    EXPECT_GE(attached, 1);
    EXPECT_EQ(original.AttachVolumeData(other.volume.data), 1);
    ExpectSamePixels(Drawn(original), image);

    failEverywhere(2,
                   [&]
                   {
                       Render3D assigned;
                       assigned = original;
                   });
    EXPECT_EQ(original.AttachVolumeData(other.volume.data), 2);

    TestImage drawn(kFront);
    bool complete = false;
    failEverywhere(3,
                   [&]
                   {
                       original.SetPalette(scene.palette.palette);
                       complete = original.ImagingVR(&drawn.image, 0);
                   });
    EXPECT_TRUE(complete);
    ExpectSamePixels(drawn, image);
    EXPECT_GT(failures[0], 0);
    EXPECT_GT(failures[1], 0);
    EXPECT_GT(failures[2], 0);
}
} // namespace corvane::tests
