#include "corvane/EngineMPR.h"

#include "engine_images.h"
#include "owned_image.h"
#include "plain_planes.h"
#include "tests/test_volume.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

// Images that the engine refuses.
namespace corvane::tests
{
namespace
{
constexpr KsMPRType kTypes[] = {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal};

TestVolume MakeBlank(int sizeX, int sizeY, int sizeZ)
{
    return MakeVolume(sizeX, sizeY, sizeZ, [](int, int, int) { return 0; });
}

// An operation that must be refused and leave the record, and the buffer in it, as they were.
void ExpectRefusedUntouched(const ImagingForm& operation)
{
    int16_t host[4] = {1, 2, 3, 4};
    KsImageData image, before;
    std::memset(&image, 0x5A, sizeof image);
    image.values = host;
    image.ownsValues = 0;
    std::memcpy(&before, &image, sizeof image);
    EXPECT_FALSE(operation(&image));
    EXPECT_EQ(std::memcmp(&image, &before, sizeof image), 0);
    EXPECT_TRUE(host[0] == 1 && host[1] == 2 && host[2] == 3 && host[3] == 4);
}
} // namespace

TEST(EngineRefusals, RefusesNullImagesInEveryForm)
{
    const TestVolume volume = MakeBlank(24, 20, 16);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const auto& form : FormsByType(engine, KsMPRCoronal, volume.data))
        EXPECT_FALSE(form(nullptr));
    for (const auto& form : FormsBySlice(engine, SliceAt(2, 2, 5, 6)))
        EXPECT_FALSE(form(nullptr));
    EXPECT_FALSE(engine.Imaging(AxialPlane(2, 2, 5, 4, 4, 1), nullptr));
    EXPECT_FALSE(engine.Marking(KsMPRTransverse, nullptr));
}

TEST(EngineRefusals, LeavesRecordsAloneWithoutAVolumeAndForUnknownPlanes)
{
    const TestVolume volume = MakeBlank(24, 20, 16);
    EngineMPR engine;
    const auto expectRefused = [&](int type)
    {
        for (const auto& form : FormsByType(engine, KsMPRType(type), volume.data))
            ExpectRefusedUntouched(form);
        KsMarkData mark, before;
        std::memset(&mark, 0x5A, sizeof mark);
        mark.ownsLabels = 0;
        std::memcpy(&before, &mark, sizeof mark);
        EXPECT_FALSE(engine.Marking(KsMPRType(type), &mark));
        EXPECT_EQ(std::memcmp(&mark, &before, sizeof mark), 0);
    };
    for (const int type : {1, 2, 3, 0})
        expectRefused(type);
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const int type : {0, 4, -1, 1000000})
        expectRefused(type);
    EXPECT_FALSE(engine.InitData(KsVolumeData{})); // forgets the volume
    for (const int type : {1, 2, 3})
        expectRefused(type);
    ASSERT_TRUE(engine.InitData(volume.data));
    OwnedImage image;
    EXPECT_TRUE(engine.Imaging(KsMPRTransverse, &image));
    engine.Clear();
    for (const int type : {1, 2, 3})
        expectRefused(type);
}

TEST(EngineRefusals, SizesAGivenPlanesImageEvenWithoutAVolume)
{
    EngineMPR engine;
    OwnedImage image;
    const PnImageParam plane = AxialPlane(2, 2, 5, 4, 6, 1);
    EXPECT_FALSE(engine.Imaging(plane, &image));
    ExpectSized(image, 4, 6);
    EXPECT_EQ(std::memcmp(&image.param, &plane, sizeof plane), 0);
    EXPECT_EQ(image.Values(), std::vector<int16_t>(24, int16_t(0)));
}

TEST(EngineRefusals, RefusesSlicesWithoutAVolume)
{
    EngineMPR engine; // there is no spacing to count pixels with
    for (const auto& form : FormsBySlice(engine, SliceAt(2, 2, 5, 6)))
        ExpectRefusedUntouched(form);
    const TestVolume volume = MakeBlank(24, 20, 16);
    ASSERT_TRUE(engine.InitData(volume.data));
    engine.Clear();
    OwnedImage image;
    EXPECT_FALSE(engine.Imaging(SliceAt(2, 2, 5, 6), &image));
}

TEST(EngineRefusals, LeavesNoBufferForAnImageWithoutRowsOrColumns)
{
    const TestVolume volume = MakeBlank(24, 20, 16);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    OwnedImage image;
    ASSERT_TRUE(engine.Imaging(AxialPlane(2, 2, 5, 4, 6, 1), &image));
    EXPECT_FALSE(engine.Imaging(AxialPlane(2, 2, 5, 0, 6, 1), &image));
    EXPECT_EQ(image.values, nullptr);
    EXPECT_EQ(image.valueCount, 0u);
    EXPECT_EQ(image.rows, 0u);
    EXPECT_EQ(image.columns, 6u);
    ASSERT_TRUE(engine.Imaging(AxialPlane(2, 2, 5, 4, 6, 1), &image));
    EXPECT_FALSE(engine.Imaging(SliceAt(2, 2, 5, 0.0), &image));
    EXPECT_EQ(image.values, nullptr);
    EXPECT_EQ(image.valueCount, 0u);
}

TEST(EngineRefusals, RefusesMorePixelsThanThirtyTwoBitsCount)
{
    const TestVolume volume = MakeBlank(24, 20, 16);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    const std::pair<uint32_t, uint32_t> sizes[] = {
        {65536, 65536}, {0x80000000u, 2}, {3, 0x80000000u}, {0xFFFFFFFFu, 0xFFFFFFFFu}, {100000, 100000}};
    for (const auto& [rows, columns] : sizes)
    {
        const PnImageParam plane = AxialPlane(2, 2, 5, rows, columns, 1);
        ExpectRefusedUntouched([&](KsImageData* image) { return engine.Imaging(plane, image); });
    }
}

TEST(EngineRefusals, RefusesSidesThatAreNoLength)
{
    const TestVolume volume = MakeBlank(24, 20, 16);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    const double infinity = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
    for (const double side : {-1.0, -1e300, -infinity, nan, -nan, 65536.0, 1e6, 4294967296.0, 1e18, 1e300, infinity})
        for (const auto& form : FormsBySlice(engine, SliceAt(2, 2, 5, side)))
        {
            SCOPED_TRACE(side);
            ExpectRefusedUntouched(form);
        }
}

TEST(EngineRefusals, ShowsNothingForSpacingsThatAreNotPositive)
{
    for (const float spacing : {0.0f, -1.0f, std::numeric_limits<float>::quiet_NaN()})
        for (int axis = 0; axis < 3; ++axis)
        {
            TestVolume volume = MakeBlank(24, 20, 16);
            volume.data.spacing[axis] = spacing;
            EngineMPR engine;
            EXPECT_TRUE(engine.InitData(volume.data));
            for (const KsMPRType type : kTypes)
            {
                OwnedImage image;
                if (engine.Imaging(type, &image))
                {
                    const std::vector<int16_t> values = image.Values();
                    EXPECT_EQ(std::count(values.begin(), values.end(), -1024), int64_t(values.size()));
                }
                EXPECT_LE(engine.GetImageCount(type, 1.0f, nullptr), 0) << spacing << ", " << axis;
            }
        }
}
} // namespace corvane::tests
