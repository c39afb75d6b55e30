#include "engine3d/slab_planes.h"
#include "imaging_forms.h"
#include "imaging_twin.h"
#include "tests/mpr/engine_images.h"

#include <algorithm>
#include <cmath>
#include <cstring>

// Projections of slabs by plane and by slice.
namespace corvane::tests
{
namespace
{
// Stored values tell the height: 100 per mm.
TestVolume MakeHeights()
{
    return MakeVolume(24, 24, 24, [](int, int, int k) { return 100 * k; });
}

// A slab of 4.6 mm centred at z = 10.6 starts at 8.3 and has samples at 8.3, 9.3, 10.3, 11.3 and 12.3. The highest
// value lies between voxels, the others are those of the nearest ones: 8 to 12.
constexpr double kHeight = 10.6;
constexpr float kThickness = 4.6f;
constexpr int kExpected[3] = {1230, 1000, 800};

// The renderer's own image of a slab by plane.
TestValues SlabByHand(Render3D& render, ProjectionKind kind, const PnImageParam& plane, float thickness)
{
    PnImageParam start = plane;
    const core::Vec3d row = core::VecOf(plane.rowDirection), column = core::VecOf(plane.columnDirection);
    const core::Vec3d cross = core::Cross(row, column);
    const double length = std::sqrt(cross.x * cross.x + cross.y * cross.y + cross.z * cross.z) + 1e-6;
    const double normal[3] = {cross.x / length, cross.y / length, cross.z / length};
    for (int axis = 0; axis < 3; ++axis)
        start.position[axis] = plane.position[axis] - double(thickness) / 2 * normal[axis];
    TestValues image(start);
    EXPECT_TRUE(ImagingSlab(render, kind, thickness, &image.image));
    return image;
}

KsSliceParam RandomSlice(Random& random, const KsVolumeData& volume)
{
    const PnImageParam plane = RandomImagePlane(random, volume);
    KsSliceParam slice = {{}, {}, {}, random.Real(5, 40)};
    std::copy_n(plane.position, 3, slice.position);
    std::copy_n(plane.rowDirection, 3, slice.rowDirection);
    std::copy_n(plane.columnDirection, 3, slice.columnDirection);
    return slice;
}

double SmallestSpacing(const KsVolumeData& volume)
{
    return double(*std::min_element(volume.spacing, volume.spacing + 3));
}
} // namespace

TEST(EngineSlabs, AreCentredOnTheirPlane)
{
    const TestVolume volume = MakeHeights();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    const PnImageParam plane = {8, 6, 1, 1.5, {1, 0, 0}, {0, 1, 0}, {7, 7, kHeight}};
    for (const ProjectionKind kind : kAllKinds)
    {
        OwnedImage image;
        ASSERT_TRUE(ProjectPlane(engine, kind, plane, kThickness, &image));
        ExpectSized(image, 8, 6);
        EXPECT_TRUE(IsSame(image.param, plane)); // the plane itself, not where rays start
        EXPECT_EQ(image.Values(), std::vector<int16_t>(48, int16_t(kExpected[int(kind)])));
    }
}

TEST(EngineSlabs, BySliceAreSquareAndCentredOnTheirPlane)
{
    const TestVolume volume = MakeHeights();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    const KsSliceParam slice = SliceAt(6, 6, kHeight, 9.2);
    for (const ProjectionKind kind : kAllKinds)
    {
        OwnedImage image;
        ASSERT_TRUE(ProjectSlice(engine, kind, slice, kThickness, &image));
        ExpectSized(image, 10, 10); // 9.2 pixels of 1 mm, rounded up
        EXPECT_EQ(image.Values(), std::vector<int16_t>(100, int16_t(kExpected[int(kind)])));
        EXPECT_EQ(image.param.rowSpacing, 1);
        EXPECT_EQ(image.param.columnSpacing, 1);
        EXPECT_EQ(std::memcmp(image.param.position, slice.position, sizeof slice.position), 0);
        EXPECT_EQ(std::memcmp(image.param.rowDirection, slice.rowDirection, sizeof slice.position), 0);
        EXPECT_EQ(std::memcmp(image.param.columnDirection, slice.columnDirection, sizeof slice.position), 0);
    }
}

// A bright plane at z = 15 is seen from planes up to half a thickness away, on both sides.
TEST(EngineSlabs, ReachAsFarBehindThePlaneAsBeforeIt)
{
    const TestVolume volume = MakeVolume(24, 24, 24, [](int, int, int k) { return k == 15 ? 1000 : 0; });
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const bool upsideDown : {false, true})
        for (const double offset : {-7.0, -4.0, 4.0, 7.0})
        {
            PnImageParam plane = {3, 3, 1, 1, {1, 0, 0}, {0, upsideDown ? -1.0 : 1.0, 0}, {12, 12, 15 + offset}};
            OwnedImage image;
            ASSERT_TRUE(engine.ImagingMIP(plane, 11, &image));
            EXPECT_EQ(image.Values()[4] > 0, std::abs(offset) < 5.5) << offset;
        }
}

TEST(EngineSlabs, ByPlaneAreThoseOfTheRendererWithAllLabels)
{
    for (uint32_t seed = 0; seed < 12; ++seed)
    {
        SCOPED_TRACE(seed);
        Random random(seed);
        Twin twin(MakePatient(seed));
        twin.SetLabels(MakeLumps(twin.volume.data));
        const PnImageParam plane = RandomImagePlane(random, twin.volume.data);
        const float thickness = float(random.Real(0.1, 40));
        for (const ProjectionKind kind : kAllKinds)
        {
            OwnedImage image;
            ASSERT_TRUE(ProjectPlane(twin.engine, kind, plane, thickness, &image));
            EXPECT_EQ(image.Values(), SlabByHand(twin.render, kind, plane, thickness).values);
            EXPECT_TRUE(IsSame(image.param, plane));

            // The image's own geometry once more.
            const std::vector<int16_t> before = image.Values();
            ASSERT_TRUE(ProjectPlane(twin.engine, kind, image.param, thickness, &image));
            EXPECT_EQ(image.Values(), before);
            EXPECT_TRUE(IsSame(image.param, plane));
        }
    }
}

TEST(EngineSlabs, BySliceAreThoseOfTheRendererThroughACamera)
{
    for (uint32_t seed = 0; seed < 12; ++seed)
    {
        SCOPED_TRACE(seed);
        Random random(seed);
        Twin twin(MakePatient(seed));
        twin.SetLabels(MakeLumps(twin.volume.data));
        const KsSliceParam slice = RandomSlice(random, twin.volume.data);
        const float thickness = float(random.Real(0.1, 40));
        const double spacing = SmallestSpacing(twin.volume.data);
        const uint32_t side = uint32_t(std::ceil(slice.sideLength / spacing));
        for (const ProjectionKind kind : kAllKinds)
        {
            TestValues expected({side, side, 0, 0, {}, {}, {}});
            ASSERT_TRUE(ProjectCamera(twin.render, kind, engine3d::CameraOfSlice(slice, thickness),
                                      float(slice.sideLength), thickness, &expected.image));
            OwnedImage image;
            ASSERT_TRUE(ProjectSlice(twin.engine, kind, slice, thickness, &image));
            ExpectSized(image, side, side);
            EXPECT_EQ(image.Values(), expected.values);
            EXPECT_EQ(image.param.rowSpacing, spacing);
            EXPECT_EQ(image.param.columnSpacing, spacing);
        }
    }
}

TEST(EngineSlabs, ShowHiddenLabelsByPlaneAndLeaveThemOutBySlice)
{
    const TestVolume volume = MakeHeights();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    EXPECT_TRUE(engine.SetVisible(false, 0));
    for (const ProjectionKind kind : kAllKinds)
    {
        OwnedImage byPlane, bySlice;
        const PnImageParam plane = {4, 4, 1, 1, {1, 0, 0}, {0, 1, 0}, {7, 7, kHeight}};
        ASSERT_TRUE(ProjectPlane(engine, kind, plane, kThickness, &byPlane));
        ASSERT_TRUE(ProjectSlice(engine, kind, SliceAt(7, 7, kHeight, 4), kThickness, &bySlice));
        EXPECT_EQ(byPlane.Values(), std::vector<int16_t>(16, int16_t(kExpected[int(kind)])));
        EXPECT_EQ(bySlice.Values(), std::vector<int16_t>(16, -1024));
    }
}

TEST(EngineSlabs, KeepTheHostsOwnBuffer)
{
    const TestVolume volume = MakeHeights();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    int16_t host[4] = {1, 2, 3, 4};
    OwnedImage image;
    image.values = host;
    ASSERT_TRUE(engine.ImagingAIP(SliceAt(7, 7, kHeight, 4), kThickness, &image));
    EXPECT_NE(image.values, host);
    ExpectSized(image, 4, 4);
    EXPECT_TRUE(host[0] == 1 && host[1] == 2 && host[2] == 3 && host[3] == 4);
}
} // namespace corvane::tests
