#include "imaging_forms.h"
#include "imaging_twin.h"
#include "tests/mpr/engine_images.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>

// Images that cannot be, and what is left in the host's records.
namespace corvane::tests
{
namespace
{
constexpr double kInfinity = INFINITY, kNan = NAN;
constexpr PnImageParam kPlane = {4, 6, 1, 1, {1, 0, 0}, {0, 1, 0}, {7, 7, 8}};

TestVolume MakeSmall()
{
    return MakeVolume(20, 18, 16, [](int i, int j, int k) { return 10 * i + j + k; });
}

void ExpectRefusedUntouched(const std::function<bool(KsImageData*)>& operation)
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

void ExpectZeroes(const OwnedImage& image, uint32_t rows, uint32_t columns)
{
    ExpectSized(image, rows, columns);
    EXPECT_EQ(image.Values(), std::vector<int16_t>(size_t(rows) * columns, int16_t(0)));
}

constexpr int kNoSizes[][2] = {{-1, 5},           {5, -1},      {-5, -5},    {INT_MIN, INT_MIN}, {INT_MAX, INT_MAX},
                               {65536, 65536},    {INT_MIN, 3}, {-65536, 1}, {3, INT_MAX},       {-65536, -65536},
                               {INT_MIN, INT_MAX}};
} // namespace

TEST(EngineRefusals3D, SlabsNeedAVolumeAndARecord)
{
    const TestVolume volume = MakeSmall();
    Engine3D engine;
    for (const ProjectionKind kind : kAllKinds)
    {
        const auto byPlane = [&](KsImageData* image) { return ProjectPlane(engine, kind, kPlane, 5, image); };
        const auto bySlice = [&](KsImageData* image)
        { return ProjectSlice(engine, kind, SliceAt(7, 7, 8, 5), 5, image); };
        ExpectRefusedUntouched(byPlane);
        ExpectRefusedUntouched(bySlice);
        EXPECT_FALSE(byPlane(nullptr));
        ASSERT_TRUE(engine.InitData(volume.data));
        OwnedImage image;
        EXPECT_TRUE(byPlane(&image));
        EXPECT_TRUE(bySlice(&image));
        EXPECT_FALSE(byPlane(nullptr));
        EXPECT_FALSE(bySlice(nullptr));
        engine.Clear();
        ExpectRefusedUntouched(byPlane);
        ExpectRefusedUntouched(bySlice);
    }
}

TEST(EngineRefusals3D, SlabsThatAreTooThinLeaveASizedImageOfZeros)
{
    const TestVolume volume = MakeSmall();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const ProjectionKind kind : kAllKinds)
        for (const float thickness : {0.09f, 0.0f, -3.0f, -INFINITY, NAN})
        {
            OwnedImage image;
            EXPECT_FALSE(ProjectPlane(engine, kind, kPlane, thickness, &image));
            ExpectZeroes(image, 4, 6);
            EXPECT_TRUE(IsSame(image.param, kPlane));
            EXPECT_TRUE(ProjectPlane(engine, kind, kPlane, 0.1f, &image));
            EXPECT_FALSE(ProjectSlice(engine, kind, SliceAt(7, 7, 8, 5), thickness, &image));
            ExpectZeroes(image, 5, 5);
            EXPECT_TRUE(ProjectSlice(engine, kind, SliceAt(7, 7, 8, 5), 0.1f, &image));
        }
}

TEST(EngineRefusals3D, SlicesSmallerThanAMillimetreLeaveASizedImageOfZeros)
{
    TestVolume volume = MakeSmall();
    volume.data.spacing[1] = 0.25f;
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const ProjectionKind kind : kAllKinds)
    {
        OwnedImage image;
        EXPECT_FALSE(ProjectSlice(engine, kind, SliceAt(7, 2, 8, 0.99), 3, &image));
        ExpectZeroes(image, 4, 4); // 3.96 pixels of 0.25 mm
        EXPECT_TRUE(ProjectSlice(engine, kind, SliceAt(7, 2, 8, 1.0), 3, &image));
        ExpectSized(image, 4, 4);
        EXPECT_FALSE(ProjectSlice(engine, kind, SliceAt(7, 2, 8, 0.0), 3, &image));
        EXPECT_EQ(image.values, nullptr);
        EXPECT_EQ(image.valueCount, 0u);
    }
}

TEST(EngineRefusals3D, SidesThatAreNoLengthAreRefused)
{
    const TestVolume volume = MakeSmall();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const double side : {-1.0, -1e300, -kInfinity, kNan, 65536.0, 1e6, 4294967296.0, 1e18, 1e300, kInfinity})
        for (const ProjectionKind kind : kAllKinds)
        {
            SCOPED_TRACE(side);
            ExpectRefusedUntouched([&](KsImageData* image)
                                   { return ProjectSlice(engine, kind, SliceAt(7, 7, 8, side), 5, image); });
        }
}

TEST(EngineRefusals3D, MorePixelsThanThirtyTwoBitsCountAreRefused)
{
    const TestVolume volume = MakeSmall();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    const uint32_t sizes[][2] = {{65536, 65536}, {0x80000000u, 2}, {3, 0x80000000u}, {0xFFFFFFFFu, 0xFFFFFFFFu}};
    for (const auto& size : sizes)
        for (const ProjectionKind kind : kAllKinds)
        {
            PnImageParam plane = kPlane;
            plane.rows = size[0];
            plane.columns = size[1];
            ExpectRefusedUntouched([&](KsImageData* image) { return ProjectPlane(engine, kind, plane, 5, image); });
        }
}

TEST(EngineRefusals3D, PlanesWithoutRowsOrColumnsHaveNoBuffer)
{
    const TestVolume volume = MakeSmall();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const bool rows : {false, true})
    {
        PnImageParam plane = kPlane;
        (rows ? plane.rows : plane.columns) = 0;
        OwnedImage image;
        ASSERT_TRUE(engine.ImagingMIP(kPlane, 5, &image));
        EXPECT_FALSE(engine.ImagingMIP(plane, 5, &image));
        EXPECT_EQ(image.values, nullptr);
        EXPECT_EQ(image.valueCount, 0u);
        EXPECT_EQ(image.rows, plane.rows);
        EXPECT_EQ(image.columns, plane.columns);
    }
}

// Geometry that is no geometry: the picture is air or refused, and every ray ends.
TEST(EngineRefusals3D, PlanesThatAreNoPlanesEnd)
{
    const TestVolume volume = MakeSmall();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const double bad : {kNan, kInfinity, -kInfinity, 0.0, 1e300, -1e300, 1e-300})
        for (int field = 0; field < 11; ++field)
        {
            PnImageParam plane = kPlane;
            std::memcpy(reinterpret_cast<char*>(&plane.rowSpacing) + 8 * field, &bad, 8);
            KsSliceParam slice = SliceAt(7, 7, 8, 4);
            if (field < 9)
                std::memcpy(reinterpret_cast<char*>(slice.position) + 8 * field, &bad, 8);
            for (const ProjectionKind kind : kAllKinds)
            {
                OwnedImage image;
                ProjectPlane(engine, kind, plane, 5, &image);
                ExpectSized(image, 4, 6);
                ProjectSlice(engine, kind, slice, 5, &image);
                ExpectSized(image, 4, 4);
            }
        }
    for (const float thickness : {INFINITY, 3e38f, 1e30f})
    {
        OwnedImage image;
        engine.ImagingMIP(kPlane, thickness, &image);
        ExpectSized(image, 4, 6);
        engine.ImagingMIP(SliceAt(7, 7, 8, 4), thickness, &image);
        ExpectSized(image, 4, 4);
    }
}

TEST(EngineRefusals3D, SizesThatAreNoSizesDrawNothing)
{
    const TestVolume volume = MakeSmall();
    Engine3D loaded, empty;
    ASSERT_TRUE(loaded.InitData(volume.data));
    for (Engine3D* const engine : {&loaded, &empty})
        for (const auto& [width, height] : kNoSizes)
        {
            SCOPED_TRACE(testing::Message() << width << " x " << height);
            uint32_t pixels[4] = {kUntouched, kUntouched, kUntouched, kUntouched};
            int16_t values[4] = {kUntouchedValue, kUntouchedValue, kUntouchedValue, kUntouchedValue};
            PnImageRGB rgb = {};
            KsImageVAL val = {};
            EXPECT_FALSE(engine->ImagingVR(width, height, pixels, false, &rgb, 0));
            EXPECT_FALSE(engine->Imaging(width, height, pixels, false, &rgb, 0));
            EXPECT_TRUE(engine->ImagingVE(width, height, pixels, 60, false, &rgb));
            for (const ProjectionKind kind : kAllKinds)
                EXPECT_FALSE(ProjectSize(*engine, kind, width, height, values, &val));
            EXPECT_EQ(std::count(pixels, pixels + 4, kUntouched), 4);
            EXPECT_EQ(std::count(values, values + 4, kUntouchedValue), 4);
        }
}

TEST(EngineRefusals3D, GeometryNeedsRowsAndColumns)
{
    Engine3D engine;
    for (const auto& [width, height] : {std::pair{0, 5}, {5, 0}, {-1, 5}, {5, INT_MIN}})
    {
        PnImageParam param = kPlane;
        EXPECT_FALSE(engine.GetParamsOfVR(width, height, param));
        EXPECT_FALSE(engine.GetImageParams(width, height, param));
        EXPECT_TRUE(IsSame(param, kPlane));
    }
}

TEST(EngineRefusals3D, ImagesWithoutPixelsAreNothing)
{
    const TestVolume volume = MakeSmall();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const auto& [width, height] : {std::pair{0, 4}, {4, 0}, {0, 0}})
    {
        uint32_t pixels[4] = {kUntouched, kUntouched, kUntouched, kUntouched};
        int16_t values[4] = {kUntouchedValue, kUntouchedValue, kUntouchedValue, kUntouchedValue};
        EXPECT_TRUE(engine.ImagingVR(width, height, pixels, false, nullptr, 0));
        EXPECT_TRUE(engine.ImagingVE(width, height, pixels, 60, false, nullptr));
        for (const ProjectionKind kind : kAllKinds)
            EXPECT_FALSE(ProjectSize(engine, kind, width, height, values, nullptr));
        EXPECT_EQ(std::count(pixels, pixels + 4, kUntouched), 4);
        EXPECT_EQ(std::count(values, values + 4, kUntouchedValue), 4);
    }
}

TEST(EngineRefusals3D, ImagesNeedABuffer)
{
    const TestVolume volume = MakeSmall();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    PnImageRGB rgb = {};
    KsImageVAL val = {};
    EXPECT_FALSE(engine.ImagingVR(4, 4, nullptr, false, &rgb, 0));
    EXPECT_FALSE(engine.Imaging(4, 4, nullptr, false, &rgb, 0));
    EXPECT_TRUE(engine.ImagingVE(4, 4, nullptr, 60, false, &rgb)); // whatever the renderer says
    for (const ProjectionKind kind : kAllKinds)
        EXPECT_FALSE(ProjectSize(engine, kind, 4, 4, nullptr, &val));
}

TEST(EngineRefusals3D, AnEmptyEngineClearsTheBufferOfARendering)
{
    Engine3D engine;
    std::vector<uint32_t> pixels(21, kUntouched);
    PnImageRGB image = {};
    EXPECT_FALSE(engine.ImagingVR(4, 5, pixels.data(), false, &image, 0));
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 0u), 20);
    EXPECT_EQ(pixels[20], kUntouched);
    EXPECT_EQ(image.pixels, pixels.data());
    EXPECT_TRUE(IsSame(image.param, PlaneOf(engine, 4, 5)));
}

TEST(EngineRefusals3D, EndoscopiesThroughAnyAngleEnd)
{
    const TestVolume volume = MakeSmall();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const float angle : {NAN, INFINITY, -INFINITY, 0.0f, -90.0f, 1e30f})
    {
        std::vector<uint32_t> pixels(20, kUntouched);
        EXPECT_TRUE(engine.ImagingVE(4, 5, pixels.data(), angle, false, nullptr));
    }
}
} // namespace corvane::tests
