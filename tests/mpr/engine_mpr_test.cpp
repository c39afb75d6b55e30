#include "corvane/EngineMPR.h"

#include "engine_images.h"
#include "owned_image.h"
#include "plain_planes.h"
#include "random_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

// The images of the engine.
namespace corvane::tests
{
namespace
{
constexpr KsMPRType kTypes[] = {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal};

TestVolume MakeRamp(int sizeX, int sizeY, int sizeZ)
{
    return MakeVolume(sizeX, sizeY, sizeZ, [](int i, int j, int k) { return 3 * i + 50 * j + 400 * k; });
}
} // namespace

TEST(EngineMPR, ImagesEachPlaneOfATurnedEngineAsThePlainVersionDoes)
{
    Random random(51);
    for (int round = 0; round < 60; ++round)
    {
        TestVolume volume = MakeVolume(random.Between(4, 30), random.Between(4, 30), random.Between(4, 30),
                                       [&](int, int, int) { return random.Between(-2000, 3000); });
        PlaceAtRandom(random, volume.data);
        EngineMPR engine;
        ASSERT_TRUE(engine.InitData(volume.data));
        OwnedImage image; // sized anew by every call
        for (const KsMPRType type : kTypes)
        {
            ASSERT_TRUE(engine.Rotate(type, float(random.Real(-3, 3))));
            PnImageParam param;
            ASSERT_TRUE(engine.GetImageParam(type, param));
            ASSERT_TRUE(engine.Imaging(type, &image));
            ExpectSized(image, param.rows, param.columns);
            EXPECT_EQ(std::memcmp(&image.param, &param, sizeof param), 0);
            ASSERT_EQ(image.Values(), PlainImage(volume.data, param)) << round;
        }
    }
}

TEST(EngineMPR, ImagesAGivenPlaneAndASliceAsThePlainVersionDoes)
{
    Random random(52);
    for (int round = 0; round < 100; ++round)
    {
        TestVolume volume = MakeVolume(random.Between(4, 30), random.Between(4, 30), random.Between(4, 30),
                                       [&](int, int, int) { return random.Between(-2000, 3000); });
        PlaceAtRandom(random, volume.data);
        EngineMPR engine;
        ASSERT_TRUE(engine.InitData(volume.data));
        OwnedImage image;
        const PnImageParam plane = MakeRandomPlane(random, volume.data);
        ASSERT_TRUE(engine.Imaging(plane, &image));
        ExpectSized(image, plane.rows, plane.columns);
        EXPECT_EQ(std::memcmp(&image.param, &plane, sizeof plane), 0);
        ASSERT_EQ(image.Values(), PlainImage(volume.data, plane)) << round;

        KsSliceParam slice;
        std::copy_n(plane.position, 3, slice.position);
        std::copy_n(plane.rowDirection, 3, slice.rowDirection);
        std::copy_n(plane.columnDirection, 3, slice.columnDirection);
        slice.sideLength = random.Real(1, 40);
        ASSERT_TRUE(engine.Imaging(slice, &image));
        const float* spacing = volume.data.spacing;
        const double smallest = double(std::min({spacing[0], spacing[1], spacing[2]}));
        const uint32_t side = uint32_t(std::ceil(slice.sideLength / smallest));
        ExpectSized(image, side, side);
        PnImageParam expected = plane;
        expected.rows = expected.columns = side;
        expected.rowSpacing = expected.columnSpacing = smallest;
        EXPECT_EQ(std::memcmp(&image.param, &expected, sizeof expected), 0);
        ASSERT_EQ(image.Values(), PlainImage(volume.data, expected)) << round;
    }
}

TEST(EngineMPR, CountsASlicesPixelsByHand)
{
    TestVolume volume = MakeRamp(24, 20, 16);
    volume.data.spacing[0] = 0.7f;
    volume.data.spacing[1] = 0.5f;
    volume.data.spacing[2] = 2.0f;
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    OwnedImage image;
    ASSERT_TRUE(engine.Imaging(SliceAt(1, 1, 10, 10.1), &image));
    ExpectSized(image, 21, 21); // 20.2
    ASSERT_TRUE(engine.Imaging(SliceAt(1, 1, 10, 10.0), &image));
    ExpectSized(image, 20, 20);
    ASSERT_TRUE(engine.Imaging(SliceAt(1, 1, 10, 0.001), &image));
    ExpectSized(image, 1, 1);
    EXPECT_EQ(image.param.rowSpacing, 0.5);
    EXPECT_EQ(image.param.columnSpacing, 0.5);
}

TEST(EngineMPR, ImagesAnotherVolumeOfTheSameSizes)
{
    const TestVolume stored = MakeRamp(24, 20, 16);
    const TestVolume other = MakeVolume(24, 20, 16, [](int, int, int) { return 77; });
    const TestVolume larger = MakeRamp(25, 20, 16);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(stored.data));
    OwnedImage image;
    for (const KsMPRType type : kTypes)
    {
        ASSERT_TRUE(engine.Imaging(type, other.data, &image));
        std::vector<int16_t> values = image.Values();
        EXPECT_GT(std::count(values.begin(), values.end(), 77), 100);
        EXPECT_EQ(std::count(values.begin(), values.end(), 77) + std::count(values.begin(), values.end(), -1024),
                  int64_t(values.size()));
        EXPECT_FALSE(engine.Imaging(type, larger.data, &image));
        values = image.Values(); // sized before the renderer refused
        EXPECT_EQ(std::count(values.begin(), values.end(), 0), int64_t(values.size()));
        EXPECT_FALSE(engine.Imaging(type, KsVolumeData{}, &image));
    }
}

TEST(EngineMPR, SizesAndZeroesASlabsImageAndReturnsFalse)
{
    const TestVolume volume = MakeRamp(24, 20, 16);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const KsMPRType type : kTypes)
    {
        PnImageParam param;
        ASSERT_TRUE(engine.GetImageParam(type, param));
        const auto forms = FormsByType(engine, type, volume.data);
        for (size_t form = 2; form < forms.size(); ++form)
        {
            OwnedImage image;
            EXPECT_FALSE(forms[form](&image));
            ExpectSized(image, param.rows, param.columns);
            EXPECT_EQ(std::memcmp(&image.param, &param, sizeof param), 0);
            EXPECT_EQ(image.Values(), std::vector<int16_t>(size_t(param.rows) * param.columns, int16_t(0)));
        }
    }
    const auto forms = FormsBySlice(engine, SliceAt(2, 2, 5, 6.5));
    for (size_t form = 1; form < forms.size(); ++form)
    {
        OwnedImage image;
        EXPECT_FALSE(forms[form](&image));
        ExpectSized(image, 7, 7);
        EXPECT_EQ(image.param.position[2], 5);
        EXPECT_EQ(image.Values(), std::vector<int16_t>(49, int16_t(0)));
    }
}

TEST(EngineMPR, TakesTheGeometryOfTheImageItself)
{
    const TestVolume volume = MakeRamp(24, 20, 16);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    OwnedImage image;
    image.param = AxialPlane(2, 3, 5, 4, 6, 1);
    const PnImageParam plane = image.param;
    ASSERT_TRUE(engine.Imaging(image.param, &image));
    ExpectSized(image, 4, 6);
    EXPECT_EQ(image.Values(), PlainImage(volume.data, plane));
    ASSERT_TRUE(engine.Imaging(image.param, &image));
    EXPECT_EQ(image.Values(), PlainImage(volume.data, plane));
}

TEST(EngineMPR, ReplacesABufferThatTheRecordDoesNotOwnAndLeavesItAlone)
{
    const TestVolume volume = MakeRamp(24, 20, 16);
    TestLabels labels = MakeLabels(24, 20, 16, [](int, int, int) { return 3; });
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    ASSERT_TRUE(engine.SetMarkData(labels.mark));
    const auto host = std::make_unique<int16_t[]>(2); // too small on purpose
    OwnedImage image;
    image.values = host.get();
    image.valueCount = 2;
    ASSERT_TRUE(engine.Imaging(KsMPRTransverse, &image));
    EXPECT_NE(image.values, host.get());
    EXPECT_EQ(image.ownsValues, 1);
    EXPECT_TRUE(host[0] == 0 && host[1] == 0);

    const auto hostLabels = std::make_unique<uint8_t[]>(2);
    OwnedMark mark;
    mark.labels = hostLabels.get();
    ASSERT_TRUE(engine.Marking(KsMPRTransverse, &mark));
    EXPECT_NE(mark.labels, hostLabels.get());
    EXPECT_EQ(mark.ownsLabels, 1);
    EXPECT_TRUE(hostLabels[0] == 0 && hostLabels[1] == 0);
}

TEST(EngineMPR, MarksEachPlaneAsThePlainVersionDoes)
{
    Random random(53);
    size_t labelled = 0;
    for (int round = 0; round < 100; ++round)
    {
        const int sizeX = random.Between(4, 50), sizeY = random.Between(4, 50), sizeZ = random.Between(4, 50);
        TestVolume volume = MakeRamp(sizeX, sizeY, sizeZ);
        if (round % 2 == 0)
            PlaceAtRandom(random, volume.data);
        TestLabels labels = MakeLabels(sizeX, sizeY, sizeZ, [&](int, int, int) { return random.Between(1, 255); });
        EngineMPR engine;
        ASSERT_TRUE(engine.InitData(volume.data));
        ASSERT_TRUE(engine.SetMarkData(labels.mark));
        double origin[3];
        const double index[3] = {3, 3, 3};
        PatientPlace(volume.data, index, origin);
        ASSERT_TRUE(engine.SetOrigin(origin));
        OwnedMark image;
        for (const KsMPRType type : kTypes)
        {
            PnImageParam param;
            ASSERT_TRUE(engine.GetImageParam(type, param));
            ASSERT_TRUE(engine.Marking(type, &image));
            EXPECT_EQ(image.rows, param.rows);
            EXPECT_EQ(image.columns, param.columns);
            EXPECT_EQ(image.labelCount, param.rows * param.columns);
            EXPECT_EQ(image.ownsLabels, 1);
            EXPECT_EQ(std::memcmp(&image.param, &param, sizeof param), 0);
            const std::vector<uint8_t> bytes = image.Labels();
            ASSERT_EQ(bytes, PlainLabels(volume.data, labels.mark, param)) << round;
            labelled += bytes.size() - size_t(std::count(bytes.begin(), bytes.end(), 0));
        }
    }
    EXPECT_GT(labelled, 1000u);
}

TEST(EngineMPR, SizesAndZeroesALabelImageWithoutLabels)
{
    const TestVolume volume = MakeRamp(24, 20, 16);
    TestLabels labels = MakeLabels(24, 20, 16, [](int, int, int) { return 3; });
    TestLabels other = MakeLabels(24, 20, 15, [](int, int, int) { return 3; });
    EngineMPR engine;
    EXPECT_FALSE(engine.SetMarkData(labels.mark));
    ASSERT_TRUE(engine.InitData(volume.data));
    OwnedMark image;
    EXPECT_FALSE(engine.Marking(KsMPRTransverse, &image));
    EXPECT_EQ(image.labelCount, 21u * 17u);
    EXPECT_EQ(image.Labels(), std::vector<uint8_t>(21 * 17, uint8_t(0)));
    ASSERT_TRUE(engine.SetMarkData(labels.mark));
    EXPECT_TRUE(engine.Marking(KsMPRTransverse, &image));
    EXPECT_FALSE(engine.SetMarkData(other.mark)); // drops the ones before
    EXPECT_FALSE(engine.Marking(KsMPRTransverse, &image));
    ASSERT_TRUE(engine.SetMarkData(labels.mark));
    engine.Clear();
    ASSERT_TRUE(engine.InitData(volume.data));
    EXPECT_FALSE(engine.Marking(KsMPRTransverse, &image));
}

// Turning the planes about the transverse normal shows what turning the volume the other way shows.
TEST(EngineMPR, ShowsThroughATurnedPlaneWhatATurnedVolumeShows)
{
    const auto smooth = [](int i, int j, int k)
    { return 1000 + 400 * std::sin(0.3 * i) + 300 * std::cos(0.25 * j) + 20 * k; };
    const TestVolume volume = MakeVolume(40, 36, 30, smooth);
    for (const double angle : {0.3, 1.1, -2.0})
    {
        EngineMPR turnedEngine, engine;
        ASSERT_TRUE(turnedEngine.InitData(volume.data));
        ASSERT_TRUE(turnedEngine.Rotate(KsMPRTransverse, float(angle)));

        TestVolume turned = MakeVolume(40, 36, 30, smooth);
        const double c = std::cos(-angle), s = std::sin(-angle);
        const double middle[2] = {19.5, 17.5};
        turned.data.origin[0] = float(middle[0] - c * middle[0] + s * middle[1]);
        turned.data.origin[1] = float(middle[1] - s * middle[0] - c * middle[1]);
        turned.data.rowDirection[0] = float(c);
        turned.data.rowDirection[1] = float(s);
        turned.data.columnDirection[0] = float(-s);
        turned.data.columnDirection[1] = float(c);
        ASSERT_TRUE(engine.InitData(turned.data));

        for (const KsMPRType type : {KsMPRSagittal, KsMPRCoronal})
        {
            OwnedImage image, expected;
            ASSERT_TRUE(turnedEngine.Imaging(type, &image));
            ASSERT_TRUE(engine.Imaging(type, &expected));
            ASSERT_EQ(image.rows, expected.rows);
            ASSERT_EQ(image.columns, expected.columns);
            const std::vector<int16_t> a = image.Values(), b = expected.Values();
            size_t both = 0, border = 0;
            for (size_t pixel = 0; pixel < a.size(); ++pixel)
            {
                if (a[pixel] == -1024 || b[pixel] == -1024)
                {
                    border += a[pixel] != b[pixel];
                    continue;
                }
                ++both;
                ASSERT_NEAR(a[pixel], b[pixel], 1) << pixel;
            }
            EXPECT_GT(both, a.size() / 2);
            EXPECT_LE(border, 2 * image.rows); // a pixel on the volume's border can fall to either side
        }
    }
}
} // namespace corvane::tests
