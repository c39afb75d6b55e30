#include "lifecycle_scene.h"
#include "tests/render3d/scratch_folder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

// What InitData makes of a volume, and what stays over Clear and a second volume.
namespace corvane::tests
{
namespace
{
// The perspective camera's direction: one step further, and back.
std::array<double, 3> DirectionOf(Engine3D& engine)
{
    double before[3], after[3];
    EXPECT_TRUE(engine.GetOrigin(before));
    engine.Step(1);
    EXPECT_TRUE(engine.GetOrigin(after));
    EXPECT_TRUE(engine.SetOrigin(before));
    return {after[0] - before[0], after[1] - before[1], after[2] - before[2]};
}

void ExpectPoint(const double* point, double x, double y, double z, double tolerance)
{
    EXPECT_NEAR(point[0], x, tolerance);
    EXPECT_NEAR(point[1], y, tolerance);
    EXPECT_NEAR(point[2], z, tolerance);
}

PnImageParam ParamsOf(Engine3D& engine)
{
    PnImageParam param = {};
    EXPECT_TRUE(engine.GetParamsOfVR(kWidth, kHeight, param));
    return param;
}

class EngineLoading : public testing::Test
{
protected:
    EngineLoading() { EXPECT_TRUE(engine.InitData(bone.data)); }

    const ScratchFolder folder;
    const TestVolume bone = BoneVolume();
    Engine3D engine;
};
} // namespace

TEST_F(EngineLoading, TakesTheRecordAsItIs)
{
    KsVolumeData given = bone.data, kept;
    ASSERT_TRUE(engine.InitData(given));
    const KsVolumeData before = given;
    given = {};
    ASSERT_TRUE(engine.GetVolumeData(kept));
    EXPECT_TRUE(SameBytes(kept, before));
}

TEST_F(EngineLoading, MakesLabelsOfZeroForEveryVoxel)
{
    const KsVolumeMark& mark = *engine.GetMarkData();
    EXPECT_EQ(mark.sizeX, 20u);
    EXPECT_EQ(mark.sizeY, 18u);
    EXPECT_EQ(mark.sizeZ, 16u);
    ASSERT_NE(mark.slices, nullptr);
    for (uint32_t k = 0; k < 16; ++k)
        EXPECT_EQ(std::count(mark.slices[k], mark.slices[k] + 360, 0), 360);
    for (uint32_t k = 0; k < 16; ++k)
        std::fill_n(mark.slices[k], 360, uint8_t(k)); // every slice has room of its own
    for (uint32_t k = 0; k < 16; ++k)
        EXPECT_EQ(std::count(mark.slices[k], mark.slices[k] + 360, k), 360);
}

// Voxels 1.1 to n - 2.1 can be sampled: x from -30 + 1.1 to -30 + 17.9, y from 1.1 to 15.9, z from 1.65 to 20.85.
TEST_F(EngineLoading, KnowsTheBoxAndShowsALittleMore)
{
    const float expected[6] = {-28.9f, 1.1f, 1.65f, -12.1f, 15.9f, 20.85f};
    float box[6], visible[6];
    ASSERT_TRUE(engine.GetBoundingBox(box, box + 3));
    ASSERT_TRUE(engine.GetVisibleBox(visible, visible + 3));
    for (int n = 0; n < 6; ++n)
    {
        EXPECT_NEAR(box[n], expected[n], 1e-5);
        EXPECT_NEAR(visible[n], expected[n] + (n < 3 ? -0.1 : 0.1), 1e-5);
    }
    EXPECT_FALSE(engine.GetBoundingBox(nullptr, box));
    EXPECT_FALSE(engine.GetBoundingBox(box, nullptr));
    EXPECT_FALSE(engine.GetVisibleBox(nullptr, box));
    EXPECT_FALSE(engine.GetVisibleBox(box, nullptr));
    const float low[3] = {-25, 3, 4}, high[3] = {-20, 10, 15};
    EXPECT_TRUE(engine.SetVisibleBox(high, low)); // any two opposite corners
    ASSERT_TRUE(engine.GetVisibleBox(visible, visible + 3));
    EXPECT_TRUE(std::equal(low, low + 3, visible) && std::equal(high, high + 3, visible + 3));
}

// The box is 16.8 x 14.8 x 19.2 mm around (-20.5, 8.5, 11.25).
TEST_F(EngineLoading, AimsTheCameras)
{
    const double diagonal = std::sqrt(16.8 * 16.8 + 14.8 * 14.8 + 19.2 * 19.2);
    PnImageParam param;
    ASSERT_TRUE(engine.GetParamsOfVR(10, 10, param));
    EXPECT_NEAR(param.rowSpacing, diagonal / 10, 1e-5);
    EXPECT_NEAR(param.columnSpacing, diagonal / 10, 1e-5);
    ExpectPoint(param.rowDirection, 1, 0, 0, 1e-9); // the patient's left on the right
    ExpectPoint(param.columnDirection, 0, 0, -1, 1e-9);
    ExpectPoint(param.position, -20.5 - diagonal / 2, 8.5 - 1.2 * diagonal, 11.25 + diagonal / 2, 1e-4);

    // What is looked at is the centre: the opposite view lies behind it, as far away.
    engine.RotateToBack();
    ASSERT_TRUE(engine.GetParamsOfVR(10, 10, param));
    ExpectPoint(param.position, -20.5 + diagonal / 2, 8.5 + 1.2 * diagonal, 11.25 + diagonal / 2, 1e-4);

    double eye[3];
    ASSERT_TRUE(engine.GetOrigin(eye));
    ExpectPoint(eye, -20.5, 8.5, 11.25, 1e-5);
    ExpectPoint(DirectionOf(engine).data(), 0, 0, -1, 1e-9); // towards the feet
}

TEST_F(EngineLoading, AnotherVolumeReplacesEverythingOfTheFirst)
{
    Engine3D fresh;
    const TestVolume other = BoneVolume(3, 5);
    ASSERT_TRUE(fresh.InitData(other.data));
    Pixels pixels(size_t(kWidth) * kHeight, 0x01020300);
    KsBlendImage blend = BlendImageOf(pixels, 3);
    const float low[3] = {-25, 3, 4}, high[3] = {-20, 10, 15};
    EXPECT_TRUE(engine.SetVisibleBox(low, high));
    EXPECT_EQ(engine.AttachVolumeData(bone.data), 1);
    engine.SetBlendImage(&blend, 1);
    EXPECT_TRUE(engine.SetVisible(false, 0));
    EXPECT_TRUE(engine.AdjustColor(300));
    std::fill_n(engine.GetMarkData()->slices[5], 360, uint8_t(64));
    engine.UpdateMarkData();
    engine.RotateH(1);
    engine.RotateScreen(1);
    engine.Zoom(0.5f);
    engine.SetRenderType(KsRenderPerspective);
    engine.RotateV(1);
    engine.Step(3);
    engine.SetViewAngle(100);

    ASSERT_TRUE(engine.InitData(other.data));
    EXPECT_EQ(engine.GetRenderType(), KsRenderPerspective);
    EXPECT_EQ(Picture(engine), Picture(fresh));
    EXPECT_EQ(Picture(engine, 1), Picture(fresh));
    EXPECT_EQ(EndoscopyPicture(engine), EndoscopyPicture(fresh));
    EXPECT_TRUE(SameBytes(ParamsOf(engine), ParamsOf(fresh)));
    EXPECT_EQ(engine.GetMarkData()->slices[5][0], 0);
    float visible[6], expected[6];
    ASSERT_TRUE(engine.GetVisibleBox(visible, visible + 3));
    ASSERT_TRUE(fresh.GetVisibleBox(expected, expected + 3));
    EXPECT_TRUE(std::equal(visible, visible + 6, expected));

    // The view angle is the host's and stays.
    ASSERT_TRUE(engine.Imaging(kWidth, kHeight, pixels.data(), false, nullptr, 0));
    Pixels wide(pixels.size());
    ASSERT_TRUE(fresh.ImagingVE(kWidth, kHeight, wide.data(), 100, false, nullptr));
    EXPECT_EQ(pixels, wide);
}

TEST_F(EngineLoading, InstallsTheDefaultTransferFunction)
{
    KsPalettePoint points[] = {{1, 0, 0.5f}, {3, 0, 0.25f}};
    KsPalette palette;
    palette.points = points;
    palette.pointCount = 2;
    EXPECT_TRUE(engine.SetPalette(palette));
    EXPECT_TRUE(engine.SetShading(1, 2, 3, 0));
    EXPECT_TRUE(engine.SetOpacity(0.5f, 0));
    EXPECT_TRUE(engine.SetVisible(false, 0));
    ASSERT_TRUE(engine.InitData(bone.data));
    KsPalette kept;
    ASSERT_TRUE(engine.GetPalette(kept));
    const std::unique_ptr<KsPalettePoint[]> owner(kept.points);
    EXPECT_EQ(kept.visible, 1);
    EXPECT_EQ(kept.shading[0], 0.11f);
    EXPECT_EQ(kept.shading[1], 0.816f);
    EXPECT_EQ(kept.shading[2], 0.0f);
    EXPECT_EQ(kept.opacity, 1.0f);
    ASSERT_EQ(kept.pointCount, 4);
    const KsPalettePoint expected[] = {
        {145, 0xFF1111, 0.05f}, {264, 0xFFFF75, 0.17f}, {336, 0xFFFFFF, 0.28f}, {1448, 0xFFF5F5, 0.62f}};
    for (int n = 0; n < 4; ++n)
    {
        EXPECT_EQ(kept.points[n].value, expected[n].value);
        EXPECT_EQ(kept.points[n].colour, expected[n].colour);
        EXPECT_EQ(kept.points[n].opacity, expected[n].opacity);
    }
}

TEST_F(EngineLoading, ClearKeepsCamerasPaletteRenderTypeAndLabelRecord)
{
    engine.RotateH(0.4f);
    engine.Zoom(0.7f);
    engine.SetRenderType(KsRenderPerspective);
    engine.RotateH(0.2f);
    engine.Step(2);
    EXPECT_TRUE(engine.AdjustColor(5));
    const PnImageParam param = ParamsOf(engine);
    double eye[3], eyeAfter[3];
    ASSERT_TRUE(engine.GetOrigin(eye));
    const std::array<double, 3> direction = DirectionOf(engine);
    KsVolumeMark* const mark = engine.GetMarkData();

    engine.Clear();
    EXPECT_TRUE(SameBytes(ParamsOf(engine), param));
    ASSERT_TRUE(engine.GetOrigin(eyeAfter));
    EXPECT_TRUE(std::equal(eye, eye + 3, eyeAfter));
    EXPECT_EQ(DirectionOf(engine), direction);
    EXPECT_EQ(engine.GetRenderType(), KsRenderPerspective);
    KsPalette kept;
    ASSERT_TRUE(engine.GetPalette(kept));
    ASSERT_EQ(kept.pointCount, 4);
    EXPECT_EQ(kept.points[0].value, 150);
    delete[] kept.points;
    EXPECT_EQ(engine.GetMarkData(), mark);
    EXPECT_EQ(mark->slices, nullptr);
    EXPECT_EQ(mark->sizeX, 20u); // the sizes stay
    EXPECT_EQ(mark->sizeZ, 16u);
    engine.UpdateMarkData(); // labels without slices
    ASSERT_TRUE(engine.InitData(bone.data));
    EXPECT_EQ(engine.GetMarkData(), mark);
}

TEST_F(EngineLoading, ItsOwnRecordCanBeLoadedAgain)
{
    const Pixels picture = Picture(engine);
    KsVolumeData own;
    ASSERT_TRUE(engine.GetVolumeData(own));
    ASSERT_TRUE(engine.InitData(own));
    EXPECT_EQ(Picture(engine), picture);
}

TEST_F(EngineLoading, EditedLabelsAreSeenAfterUpdateMarkData)
{
    const Pixels all = Picture(engine);
    ASSERT_NE(all, Pixels(all.size(), 0));
    KsVolumeMark& mark = *engine.GetMarkData();
    for (uint32_t k = 0; k < mark.sizeZ; ++k)
        std::fill_n(mark.slices[k], 360, uint8_t(64));
    engine.UpdateMarkData();
    EXPECT_EQ(Picture(engine), Pixels(all.size(), 0));
    for (uint32_t k = 0; k < mark.sizeZ; ++k)
        std::fill_n(mark.slices[k], 360, uint8_t(0));
    engine.UpdateMarkData();
    EXPECT_EQ(Picture(engine), all);
}
} // namespace corvane::tests
