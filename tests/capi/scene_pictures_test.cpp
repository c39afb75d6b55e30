#include "c_handles.h"
#include "corvane/Engine3D.h"
#include "corvane/EngineMPR.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

// Planes and pictures of a scene against those of the classes that it is made from.

namespace
{
using namespace corvane::tests;

std::vector<int16_t> ValuesFor(const PnImageParam& plane)
{
    return std::vector<int16_t>(size_t(plane.rows) * plane.columns);
}

TEST(ScenePictures, ViewsLieAsTheCamerasOfEngine3DSay)
{
    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    const CorvaneView view = {CORVANE_FROM_RIGHT, 0.3f, -0.2f, 0.9f, 0.75f};
    PlaneOf(scene.get(), {CORVANE_FROM_HEAD, 1, 2, 3, 4}, 20, 20); // what was asked before plays no part
    const PnImageParam plane = PlaneOf(scene.get(), view, 31, 47);
    Engine3D engine;
    PnImageParam expected;
    ASSERT_TRUE(engine.InitData(volume.data));
    engine.RotateToSagittal();
    engine.RotateToBack();
    engine.RotateH(0.3f);
    engine.RotateV(-0.2f);
    engine.RotateScreen(0.9f);
    engine.Zoom(0.75f);
    ASSERT_TRUE(engine.GetParamsOfVR(31, 47, expected));
    EXPECT_EQ(plane.rows, 31u);
    EXPECT_EQ(plane.columns, 47u);
    EXPECT_EQ(plane.rowSpacing, expected.rowSpacing);
    EXPECT_EQ(plane.columnSpacing, expected.columnSpacing);
    for (int axis = 0; axis < 3; ++axis)
    {
        EXPECT_NEAR(plane.rowDirection[axis], expected.rowDirection[axis], 1e-12);
        EXPECT_NEAR(plane.columnDirection[axis], expected.columnDirection[axis], 1e-12);
        EXPECT_NEAR(plane.position[axis], expected.position[axis], 1e-9);
    }
}

TEST(ScenePictures, EverySideOfThePatientHasItsAxes)
{
    const TestVolume volume = MakeVolume(20, 24, 28, [](int, int, int) { return 0; });
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    const struct
    {
        int32_t from;
        double right[3], down[3]; // patient axes: x to the left, y to the back, z to the head
    } sides[] = {
        {CORVANE_FROM_FRONT, {1, 0, 0}, {0, 0, -1}}, {CORVANE_FROM_BACK, {-1, 0, 0}, {0, 0, -1}},
        {CORVANE_FROM_LEFT, {0, 1, 0}, {0, 0, -1}},  {CORVANE_FROM_RIGHT, {0, -1, 0}, {0, 0, -1}},
        {CORVANE_FROM_HEAD, {-1, 0, 0}, {0, 1, 0}},  {CORVANE_FROM_FEET, {1, 0, 0}, {0, 1, 0}},
    };
    for (const auto& side : sides)
    {
        const PnImageParam plane = PlaneOf(scene.get(), {side.from, 0, 0, 0, 1}, 10, 10);
        for (int axis = 0; axis < 3; ++axis)
        {
            EXPECT_NEAR(plane.rowDirection[axis], side.right[axis], 1e-12) << "side " << side.from;
            EXPECT_NEAR(plane.columnDirection[axis], side.down[axis], 1e-12) << "side " << side.from;
        }
    }
}

TEST(ScenePictures, ProjectionsAreThoseOfEngine3D)
{
    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    engine.RotateV(0.4f);
    bool (Engine3D::*const operations[])(int, int, int16_t*, bool, KsImageVAL*) = {
        &Engine3D::ImagingMIP, &Engine3D::ImagingAIP, &Engine3D::ImagingMinIP};
    for (const int32_t kind : {CORVANE_MAXIMUM, CORVANE_MEAN, CORVANE_MINIMUM})
    {
        std::vector<int16_t> expected(40 * 50), values(40 * 50);
        KsImageVAL image = {};
        ASSERT_TRUE((engine.*operations[kind])(40, 50, expected.data(), false, &image));
        ASSERT_EQ(corvane_scene_project(scene.get(), kind, &image.param, values.data(), values.size()), CORVANE_OK);
        EXPECT_EQ(values, expected);
    }
}

TEST(ScenePictures, SlabsOnReconstructionPlanesAreThoseOfEngine3DOnTheGeometryOfEngineMPR)
{
    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    Engine3D engine;
    EngineMPR planes;
    ASSERT_TRUE(engine.InitData(volume.data) && planes.InitData(volume.data) && planes.Rotate(KsMPRTransverse, 0.7f) &&
                planes.Rotate(KsMPRCoronal, -0.3f));
    ASSERT_EQ(corvane_scene_rotate_mpr(scene.get(), KsMPRTransverse, 0.7f), CORVANE_OK);
    ASSERT_EQ(corvane_scene_rotate_mpr(scene.get(), KsMPRCoronal, -0.3f), CORVANE_OK);
    // What a rendering leaves out is no matter of a slab.
    const float low[3] = {0, 0, 0}, high[3] = {1, 1, 1};
    ASSERT_EQ(corvane_scene_set_visible_box(scene.get(), low, high), CORVANE_OK);
    bool (Engine3D::*const operations[])(const PnImageParam&, float, KsImageData*) = {
        &Engine3D::ImagingMIP, &Engine3D::ImagingAIP, &Engine3D::ImagingMinIP};
    for (const KsMPRType type : {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal})
    {
        PnImageParam plane, expectedPlane;
        ASSERT_EQ(corvane_scene_mpr_plane(scene.get(), type, &plane), CORVANE_OK);
        ASSERT_TRUE(planes.GetImageParam(type, expectedPlane));
        EXPECT_EQ(std::memcmp(&plane, &expectedPlane, sizeof plane), 0);
        for (const int32_t kind : {CORVANE_MAXIMUM, CORVANE_MEAN, CORVANE_MINIMUM})
            for (const float thickness : {0.1f, 3.7f, 500.0f})
            {
                ImageData expected;
                std::vector<int16_t> values = ValuesFor(plane);
                ASSERT_TRUE((engine.*operations[kind])(plane, thickness, &expected));
                ASSERT_EQ(corvane_scene_slab(scene.get(), kind, &plane, thickness, values.data(), values.size()),
                          CORVANE_OK);
                EXPECT_TRUE(std::equal(values.begin(), values.end(), expected.values));
                EXPECT_TRUE(std::any_of(values.begin(), values.end(), [](int16_t value) { return value != -1024; }));
            }
    }
    float lowKept[3], highKept[3];
    ASSERT_EQ(corvane_scene_get_visible_box(scene.get(), lowKept, highKept), CORVANE_OK);
    EXPECT_EQ(highKept[2], 1.0f);
}

// In a volume whose values grow by 20 per mm along the normal, the highest value of a slab of 12 mm lies 6 mm before
// its middle, the lowest 6 mm behind, the mean in it. Rays take samples a voxel apart.
TEST(ScenePictures, ASlabIsAsThickAsItSays)
{
    TestVolume volume = MakeVolume(30, 30, 60, [](int, int, int k) { return 20 * k; });
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    PnImageParam plane;
    ASSERT_EQ(corvane_scene_mpr_plane(scene.get(), KsMPRTransverse, &plane), CORVANE_OK);
    const double middle = 20 * 29.5, step = 20;
    ASSERT_NEAR(plane.position[2], 29.5, 1e-4);
    std::vector<int16_t> values = ValuesFor(plane);
    const size_t pixel = plane.rows / 2 * plane.columns + plane.columns / 2;
    ASSERT_EQ(corvane_scene_slab(scene.get(), CORVANE_MAXIMUM, &plane, 12, values.data(), values.size()), CORVANE_OK);
    EXPECT_NEAR(values[pixel], middle + 120, step + 1);
    ASSERT_EQ(corvane_scene_slab(scene.get(), CORVANE_MINIMUM, &plane, 12, values.data(), values.size()), CORVANE_OK);
    EXPECT_NEAR(values[pixel], middle - 120, step + 1);
    ASSERT_EQ(corvane_scene_slab(scene.get(), CORVANE_MEAN, &plane, 12, values.data(), values.size()), CORVANE_OK);
    EXPECT_NEAR(values[pixel], middle, step / 2 + 1);
}

TEST(ScenePictures, PlanesShowTheStoredValuesOfEngineMPR)
{
    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    EngineMPR planes;
    ASSERT_TRUE(planes.InitData(volume.data));
    KsMPRParam param;
    ASSERT_EQ(corvane_scene_get_mpr(scene.get(), &param), CORVANE_OK);
    param.origin[0] += 2;
    ASSERT_EQ(corvane_scene_set_mpr(scene.get(), &param), CORVANE_OK);
    ASSERT_TRUE(planes.SetParams(param));
    for (const KsMPRType type : {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal})
    {
        ImageData expected;
        PnImageParam plane;
        ASSERT_TRUE(planes.Imaging(type, &expected));
        ASSERT_EQ(corvane_scene_mpr_plane(scene.get(), type, &plane), CORVANE_OK);
        std::vector<int16_t> values = ValuesFor(plane);
        ASSERT_EQ(corvane_scene_reslice(scene.get(), &plane, values.data(), values.size()), CORVANE_OK);
        ASSERT_EQ(values.size(), expected.valueCount);
        EXPECT_TRUE(std::equal(values.begin(), values.end(), expected.values));
    }
    ASSERT_EQ(corvane_scene_reset_mpr(scene.get()), CORVANE_OK);
    KsMPRParam reset;
    ASSERT_EQ(corvane_scene_get_mpr(scene.get(), &reset), CORVANE_OK);
    EXPECT_NEAR(reset.origin[0], param.origin[0] - 2, 1e-9);
}

// Pixels on voxel centres, from one voxel outside the volume to one on the other side, in a tilted stack.
TEST(ScenePictures, LabelsOfAPlaneAreThoseOfTheVoxelsUnderItsPixels)
{
    const TestVolume volume = MakeTiltedVolume();
    const KsVolumeData& v = volume.data;
    const Owned<CorvaneScene> scene = MakeScene(v);
    const auto labelOf = [](int i, int j, int k) { return uint8_t((7 * i + 5 * j + 11 * k) % 63 + 1); };
    std::vector<uint8_t> labels;
    for (int k = 0; k < v.sizeZ; ++k)
        for (int j = 0; j < v.sizeY; ++j)
            for (int i = 0; i < v.sizeX; ++i)
                labels.push_back(labelOf(i, j, k));
    ASSERT_EQ(corvane_scene_set_labels(scene.get(), labels.data(), labels.size()), CORVANE_OK);
    for (const int k : {-1, 0, 13, 21, 22})
    {
        PnImageParam plane = {
            uint32_t(v.sizeY) + 2, uint32_t(v.sizeX) + 2, double(v.spacing[1]), double(v.spacing[0]), {}, {}, {}};
        for (int axis = 0; axis < 3; ++axis)
        {
            plane.rowDirection[axis] = double(v.rowDirection[axis]);
            plane.columnDirection[axis] = double(v.columnDirection[axis]);
            plane.position[axis] = double(v.origin[axis]) - plane.columnSpacing * plane.rowDirection[axis] -
                                   plane.rowSpacing * plane.columnDirection[axis] +
                                   k * double(v.spacing[2]) * double(v.sliceDirection[axis]);
        }
        std::vector<uint8_t> image(size_t(plane.rows) * plane.columns, 99);
        ASSERT_EQ(corvane_scene_reslice_labels(scene.get(), &plane, image.data(), image.size()), CORVANE_OK);
        for (int r = 0; r < int(plane.rows); ++r)
            for (int c = 0; c < int(plane.columns); ++c)
            {
                const int i = c - 1, j = r - 1;
                const bool isInside = i >= 0 && i < v.sizeX && j >= 0 && j < v.sizeY && k >= 0 && k < v.sizeZ;
                ASSERT_EQ(image[size_t(r) * plane.columns + size_t(c)], isInside ? labelOf(i, j, k) : 0)
                    << i << " " << j << " " << k;
            }
    }
}

// From the middle of a hollow ball the wall is all around.
TEST(ScenePictures, AnEndoscopySeesTheWallAroundItsEye)
{
    const TestVolume volume = MakeVolume(48, 48, 48,
                                         [](int i, int j, int k)
                                         {
                                             const double x = i - 23.5, y = j - 23.5, z = k - 23.5;
                                             return x * x + y * y + z * z < 12 * 12 ? -1000 : 400;
                                         });
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    KsPalettePoint points[] = {{0, 0xC08060, 1}, {500, 0xC08060, 1}};
    const KsPalette palette = PaletteOf(points);
    ASSERT_EQ(corvane_scene_set_palette(scene.get(), 0, &palette), CORVANE_OK);
    const KsViewPoint view = {{23.5f, 23.5f, 23.5f}, {0, 0, 1}, {0, 1, 0}};
    std::vector<uint32_t> pixels(30 * 40, 7);
    PnImageParam plane = {};
    ASSERT_EQ(corvane_scene_endoscopy(scene.get(), &view, 90, 30, 40, pixels.data(), pixels.size(), &plane),
              CORVANE_OK);
    EXPECT_TRUE(std::all_of(pixels.begin(), pixels.end(), [](uint32_t pixel) { return (pixel >> 8 & 255) > 20; }));
    EXPECT_EQ(plane.rows, 30u);
    EXPECT_EQ(plane.columns, 40u);
    ASSERT_EQ(corvane_scene_remove_palette(scene.get(), 0), CORVANE_OK);
    ASSERT_EQ(corvane_scene_endoscopy(scene.get(), &view, 90, 30, 40, pixels.data(), pixels.size(), nullptr),
              CORVANE_OK);
    EXPECT_EQ(pixels, std::vector<uint32_t>(30 * 40));
}

TEST(ScenePictures, VoxelsInOnePieceAreDrawnAsSlicesAre)
{
    const TestVolume volume = MakeTiltedVolume();
    std::vector<int16_t> voxels;
    for (const std::vector<int16_t>& slice : volume.voxels)
        voxels.insert(voxels.end(), slice.begin(), slice.end());
    KsVolumeData geometry = volume.data;
    geometry.slices = nullptr;
    const Owned<CorvaneScene> pieces = MakeScene(volume.data);
    const Owned<CorvaneScene> whole(corvane_scene_create(CORVANE_C_INTERFACE));
    ASSERT_EQ(corvane_scene_set_voxels(whole.get(), &geometry, voxels.data(), voxels.size()), CORVANE_OK);
    const PnImageParam plane = PlaneOf(whole.get(), {CORVANE_FROM_FEET, 0.2f, 0.3f, 0, 0.7f}, 40, 50);
    EXPECT_EQ(Rendered(whole.get(), plane), Rendered(pieces.get(), plane));

    const std::vector<uint32_t> before = Rendered(whole.get(), plane);
    for (const size_t count : {voxels.size() - 1, voxels.size() + 1, size_t(0), voxels.size() / 2})
        EXPECT_EQ(corvane_scene_set_voxels(whole.get(), &geometry, voxels.data(), count), CORVANE_ERROR_ARGUMENT);
    EXPECT_EQ(Rendered(whole.get(), plane), before); // a volume that is refused changes nothing
    ASSERT_EQ(corvane_scene_clear(whole.get()), CORVANE_OK);
    std::vector<uint32_t> pixels(before.size());
    EXPECT_EQ(corvane_scene_render(whole.get(), &plane, pixels.data(), pixels.size()), CORVANE_ERROR_NO_VOLUME);
}

TEST(ScenePictures, TheVisibleBoxLimitsRenderings)
{
    const TestVolume volume = MakeVolume(40, 40, 40, [](int, int, int) { return 500; });
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    const PnImageParam plane = PlaneOf(scene.get(), {CORVANE_FROM_FRONT, 0, 0, 0, 1}, 60, 60);
    const auto covered = [&]
    {
        const std::vector<uint32_t> pixels = Rendered(scene.get(), plane);
        return double(std::count_if(pixels.begin(), pixels.end(), [](uint32_t pixel) { return pixel != 0; }));
    };
    const double all = covered();
    float low[3], high[3];
    ASSERT_EQ(corvane_scene_get_bounding_box(scene.get(), low, high), CORVANE_OK);
    high[0] = (low[0] + high[0]) / 2;
    ASSERT_EQ(corvane_scene_set_visible_box(scene.get(), low, high), CORVANE_OK);
    EXPECT_NEAR(covered() / all, 0.5, 0.06);
}
} // namespace
