#include "render3d/projection.h"

#include "plain_projection.h"
#include "scenes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

// Whole images of intensity projections.
namespace corvane::tests
{
namespace
{
TestValues ProjectedPlainly(const Scene& scene, ProjectionKind kind, const VolumePalette* palette, float thickness,
                            const PnImageParam& param)
{
    TestValues image(param);
    PlainProjector(scene.volume.data, scene.labels.mark, palette).Project(kind, thickness, image.image);
    return image;
}

// What is projected with each of the kernels that this machine runs.
void ExpectFromAllKernels(const Scene& scene, ProjectionKind kind, const VolumePalette* palette, float thickness,
                          const TestValues& expected)
{
    render3d::VolumeSlot slot;
    ASSERT_TRUE(render3d::LoadSlot(scene.volume.data, scene.labels.mark, slot));
    render3d::UpdateSlot(slot, scene.palette.palette);
    for (const render3d::KernelTable* kernels : render3d::AvailableKernels())
    {
        SCOPED_TRACE(kernels->instructionSet);
        TestValues image(expected.image.param);
        render3d::Project(kind, slot, palette, thickness, image.image, *kernels);
        ExpectSameValues(image, expected);
    }
}

float RandomThickness(Random& random)
{
    const double choices[5] = {kWholeVolume, 0.1, random.Real(0.1, 1), random.Real(1, 15), random.Real(15, 100)};
    return float(choices[random.Below(5)]);
}

// Of a volume without labels.
TestValues Projected(const KsVolumeData& volume, ProjectionKind kind, const PnImageParam& param, float thickness)
{
    Render3D render;
    EXPECT_TRUE(render.InitData(volume, {}, {}));
    TestValues image(param);
    EXPECT_TRUE(ImagingSlab(render, kind, thickness, &image.image));
    return image;
}

// One pixel that looks along +z or -z through the voxels at x = 8, y = 8.
PnImageParam PixelAt(double z, double sign) { return {1, 1, 1, 1, {sign, 0, 0}, {0, 1, 0}, {8, 8, z}}; }

// Values that depend on z alone.
template <class Value>
int Along(const Value& value, ProjectionKind kind, double z, double sign, float thickness)
{
    const TestVolume volume = MakeVolume(20, 20, 20, [&](int, int, int k) { return value(k); });
    return Projected(volume.data, kind, PixelAt(z, sign), thickness).At(0, 0);
}
} // namespace

TEST(Projection, ImagesOfRandomScenesEqualThePlainVersion)
{
    int64_t seen = 0;
    for (uint32_t seed = 0; seed < 150; ++seed)
    {
        Random random(seed);
        const Scene scene = RandomScene(random, 4, 48);
        const PnImageParam param = RandomImagePlane(random, scene.volume.data);
        const float thickness = RandomThickness(random);
        for (const ProjectionKind kind : kAllKinds)
            for (const VolumePalette* palette : {static_cast<const VolumePalette*>(nullptr), &scene.palette.palette})
            {
                SCOPED_TRACE(testing::Message() << "scene " << seed << ", kind " << int(kind) << ", labels "
                                                << (palette != nullptr) << ", thickness " << thickness);
                const TestValues expected = ProjectedPlainly(scene, kind, palette, thickness, param);
                ExpectFromAllKernels(scene, kind, palette, thickness, expected);
                seen += std::count_if(expected.values.begin(), expected.values.end(),
                                      [](int16_t value) { return value != kBackground; });
            }
    }
    EXPECT_GT(seen, 30000); // there was something to compare
}

TEST(Projection, TheRenderersFormsEqualThePlainVersion)
{
    for (uint32_t seed = 500; seed < 530; ++seed)
    {
        Random random(seed);
        const Scene scene = RandomScene(random, 6, 30);
        const PnImageParam param = RandomImagePlane(random, scene.volume.data);
        const float thickness = RandomThickness(random);
        Render3D render;
        ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
        for (const ProjectionKind kind : kAllKinds)
        {
            SCOPED_TRACE(testing::Message() << seed << ", kind " << int(kind) << ", thickness " << thickness);
            TestValues whole(param), slab(param);
            ASSERT_TRUE(Imaging(render, kind, &whole.image));
            ExpectSameValues(whole, ProjectedPlainly(scene, kind, &scene.palette.palette, kWholeVolume, param));
            ASSERT_TRUE(ImagingSlab(render, kind, thickness, &slab.image));
            ExpectSameValues(slab, ProjectedPlainly(scene, kind, nullptr, thickness, param));
        }
    }
}

TEST(Projection, AVisibleBoxCutsImagesAsInThePlainVersion)
{
    for (uint32_t seed = 1000; seed < 1030; ++seed)
    {
        Random random(seed);
        const Scene scene = RandomScene(random, 10, 30);
        const PnImageParam param = RandomImagePlane(random, scene.volume.data);
        Render3D render;
        ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
        PlainProjector plain(scene.volume.data, scene.labels.mark, nullptr);
        float low[3], high[3];
        ASSERT_TRUE(render.GetBoundingBox(low, high));
        for (int axis = 0; axis < 3; ++axis)
        {
            const float width = high[axis] - low[axis];
            low[axis] += width * float(random.Real(-0.2, 0.5));
            high[axis] -= width * float(random.Real(-0.2, 0.4));
        }
        ASSERT_TRUE(render.SetVisibleBox(high, low));
        plain.geometry.visibleBox = {core::VecOf(low), core::VecOf(high)};
        for (const ProjectionKind kind : kAllKinds)
        {
            SCOPED_TRACE(testing::Message() << seed << ", kind " << int(kind));
            TestValues image(param), expected(param);
            ASSERT_TRUE(ImagingSlab(render, kind, kWholeVolume, &image.image));
            plain.Project(kind, kWholeVolume, expected.image);
            ExpectSameValues(image, expected);
        }
    }
}

TEST(Projection, AVisibleBoxBesideTheRaysIsBackground)
{
    const TestVolume volume = MakeVolume(20, 20, 20, [](int, int, int) { return 500; });
    Render3D render;
    ASSERT_TRUE(render.InitData(volume.data, {}, {}));
    // The half of lower x, then nothing at all.
    const float low[3] = {0, 0, 0}, high[3] = {9.5f, 20, 20}, outside[3] = {-5, -5, -5};
    const PnImageParam param = {20, 20, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, -10}};
    for (const ProjectionKind kind : kAllKinds)
    {
        TestValues half(param), none(param);
        ASSERT_TRUE(render.SetVisibleBox(low, high));
        ASSERT_TRUE(ImagingSlab(render, kind, kWholeVolume, &half.image));
        ASSERT_TRUE(render.SetVisibleBox(low, outside));
        ASSERT_TRUE(ImagingSlab(render, kind, kWholeVolume, &none.image));
        for (int row = 0; row < 20; ++row)
            for (int column = 0; column < 20; ++column)
            {
                // Rays through voxels 2 to 17 lie between the bounds of what can be sampled.
                const bool hit = row >= 2 && row <= 17 && column >= 2 && column <= 9;
                EXPECT_EQ(half.At(row, column), hit ? 500 : kBackground) << row << ", " << column;
            }
        EXPECT_TRUE(none.AreAll(kBackground));
    }
}

TEST(Projection, EveryWidthFillsItsPacksWithTheSamePixels)
{
    Random random(7);
    const Scene scene = RandomScene(random, 20, 24);
    PnImageParam param = RandomImagePlane(random, scene.volume.data);
    param.rows = 3;
    for (param.columns = 1; param.columns <= 19; ++param.columns)
        for (const ProjectionKind kind : kAllKinds)
            ExpectFromAllKernels(scene, kind, &scene.palette.palette, kWholeVolume,
                                 ProjectedPlainly(scene, kind, &scene.palette.palette, kWholeVolume, param));
}

// Pixels lie at whole millimetres, so that a part of the image starts exactly where the whole has that pixel.
TEST(Projection, APartOfAnImageHasThePixelsOfTheWhole)
{
    const TestVolume volume = MakeBall(40, 36, 32, 20, 17, 15, 11);
    const PnImageParam whole = {44, 47, 1, 1, {1, 0, 0}, {0, 1, 0}, {-4, -4, -20}};
    for (const ProjectionKind kind : kAllKinds)
    {
        const TestValues image = Projected(volume.data, kind, whole, kWholeVolume);
        for (const uint32_t rows : {1u, 2u, 7u, 30u})
            for (const uint32_t columns : {1u, 5u, 8u, 29u})
            {
                PnImageParam part = whole;
                part.rows = rows;
                part.columns = columns;
                part.position[0] += 11;
                part.position[1] += 9;
                const TestValues partImage = Projected(volume.data, kind, part, kWholeVolume);
                for (int row = 0; row < int(rows); ++row)
                    for (int column = 0; column < int(columns); ++column)
                        ASSERT_EQ(partImage.At(row, column), image.At(row + 9, column + 11)) << row << ", " << column;
            }
        for (int repeat = 0; repeat < 5; ++repeat)
            ExpectSameValues(Projected(volume.data, kind, whole, kWholeVolume), image);
    }
}

// Steps are 1 mm: from z = 8 the samples of a slab of 3.5 mm lie at 8, 9, 10 and 11, or at 8, 7, 6 and 5.
TEST(Projection, ASlabReachesAsFarAsItsThicknessFromTheImage)
{
    const auto ramp = [](int k) { return 10 * k; };
    EXPECT_EQ(Along(ramp, ProjectionKind::Maximum, 8, 1, 3.5f), 110);
    EXPECT_EQ(Along(ramp, ProjectionKind::Minimum, 8, 1, 3.5f), 80);
    EXPECT_EQ(Along(ramp, ProjectionKind::Average, 8, 1, 3.5f), 95);
    EXPECT_EQ(Along(ramp, ProjectionKind::Maximum, 8, -1, 3.5f), 80);
    EXPECT_EQ(Along(ramp, ProjectionKind::Minimum, 8, -1, 3.5f), 50);
    EXPECT_EQ(Along(ramp, ProjectionKind::Average, 8, -1, 3.5f), 65);
    for (const ProjectionKind kind : kAllKinds)
    {
        EXPECT_EQ(Along(ramp, kind, 8.3, 1, 0.1f), 80) << "thinner than a voxel: the nearest one";
        EXPECT_EQ(Along(ramp, kind, -20, 1, 20.5f), kBackground) << "the slab ends before the volume";
        EXPECT_EQ(Along(ramp, kind, 25, 1, 1000.0f), kBackground) << "the volume lies behind the image";
    }
}

// The distance of the third sample as it adds up, and a thickness that makes a slab of exactly that length.
TEST(Projection, ASampleExactlyAtTheEndOfASlabIsTakenForExtremesAndNotForAverages)
{
    const core::Vec3f view = core::UnitOrZero({0, 0, 1}), direction = core::UnitOrZero(view);
    const float step = 1.0f / core::Length(direction), third = step + step + step;
    float thickness = 3;
    while (core::Length(thickness * view) < third)
        thickness = std::nextafter(thickness, 4.0f);
    ASSERT_EQ(core::Length(thickness * view), third);
    const float shorter = thickness - 1e-5f;
    const auto ramp = [](int k) { return 10 * k; };
    EXPECT_EQ(Along(ramp, ProjectionKind::Maximum, 8, 1, thickness), 110);
    EXPECT_EQ(Along(ramp, ProjectionKind::Maximum, 8, 1, shorter), 100);
    EXPECT_EQ(Along(ramp, ProjectionKind::Minimum, 8, -1, thickness), 50);
    EXPECT_EQ(Along(ramp, ProjectionKind::Minimum, 8, -1, shorter), 60);
    EXPECT_EQ(Along(ramp, ProjectionKind::Average, 8, 1, thickness), 90);
    EXPECT_EQ(Along(ramp, ProjectionKind::Average, 8, 1, thickness + 1e-5f), 95);
}

// A whole ray through 20 slices has samples at 1.01, 2.01, ... 17.01.
TEST(Projection, AnAverageIsTruncatedTowardsZero)
{
    const auto average = [](const auto& value) { return Along(value, ProjectionKind::Average, -20, 1, kWholeVolume); };
    EXPECT_EQ(average([](int k) { return 10 * k; }), 90);            // (1 + ... + 17) / 17 = 9
    EXPECT_EQ(average([](int k) { return k == 5 ? -20 : 0; }), -1);  // -20 / 17 = -1.18
    EXPECT_EQ(average([](int k) { return k == 5 ? 33 : 0; }), 1);    // 33 / 17 = 1.94
    EXPECT_EQ(average([](int k) { return k == 0 ? 30000 : 7; }), 7); // the outermost voxels are not sampled
}

TEST(Projection, AnAverageLeavesOutWhatLiesBelowItsRange)
{
    const auto average = [](const auto& value) { return Along(value, ProjectionKind::Average, -20, 1, kWholeVolume); };
    EXPECT_EQ(average([](int k) { return k % 2 ? 100 : -1249; }), 100);
    EXPECT_EQ(average([](int k) { return k % 2 ? 100 : -1248; }), (9 * 100 - 8 * 1248) / 17);
    EXPECT_EQ(average([](int) { return -1249; }), -1024);
    EXPECT_EQ(average([](int) { return -32768; }), -1024);
    EXPECT_EQ(average([](int) { return -1248; }), -1024); // a mean below -1024 is raised to it
    EXPECT_EQ(average([](int) { return -1100; }), -1024);
    EXPECT_EQ(average([](int) { return -1023; }), -1023);
}

TEST(Projection, AConstantVolumeIsItsStoredValue)
{
    for (const int constant : {-1024, -1000, -1, 0, 1, 1000, 32766, 32767})
        for (const double sign : {1.0, -1.0})
        {
            const auto value = [=](int) { return constant; };
            const double z = sign > 0 ? -10 : 30;
            EXPECT_EQ(Along(value, ProjectionKind::Maximum, z, sign, kWholeVolume), constant);
            EXPECT_EQ(Along(value, ProjectionKind::Average, z, sign, kWholeVolume), constant);
            // The largest value is where a minimum starts: nothing lies below it.
            EXPECT_EQ(Along(value, ProjectionKind::Minimum, z, sign, kWholeVolume),
                      constant == 32767 ? kBackground : constant);
        }
    EXPECT_EQ(Along([](int) { return -3000; }, ProjectionKind::Maximum, -10, 1, kWholeVolume), -1024);
    EXPECT_EQ(Along([](int) { return -3000; }, ProjectionKind::Minimum, -10, 1, kWholeVolume), -3000);
}

// One bright voxel. Samples lie halfway between the slices, and rays on voxels, halfway between them and beside them.
TEST(Projection, AMaximumInterpolatesBetweenVoxels)
{
    const TestVolume volume =
        MakeVolume(20, 20, 20, [](int i, int j, int k) { return i == 8 && j == 8 && k == 8 ? 1000 : 0; });
    const PnImageParam param = {3, 3, 0.5, 0.5, {1, 0, 0}, {0, 1, 0}, {8, 8, 1.5}};
    const TestValues image = Projected(volume.data, ProjectionKind::Maximum, param, kWholeVolume);
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            EXPECT_EQ(image.At(row, column), int(500 * (1 - 0.5 * row) * (1 - 0.5 * column))) << row << ", " << column;
}

// Bands of eight voxels along x: label 0, 5, 5 but cut, 9 (hidden), 12 (no table), 13 (shown, without any tables).
TEST(Projection, OnlyShownLabelsCountWhereLabelsAreHonoured)
{
    Scene scene;
    scene.volume = MakeVolume(48, 12, 12, [](int i, int, int) { return 100 + i; });
    const uint8_t bands[6] = {0, 5, 64 + 5, 9, 12, 13};
    scene.labels = MakeLabels(48, 12, 12, [&](int i, int, int) { return bands[i / 8]; });
    // Neither opacities nor values decide: projections look at what is shown alone.
    const auto clear = [](int) { return 0.0f; };
    const auto black = [](int) { return Colour{}; };
    scene.palette.Add(0, 5000, 5001, clear, black);
    scene.palette.Add(5, 5000, 5001, clear, black);
    scene.palette.Add(9, 0, 200, clear, black, kFlat, false);
    VolumePaletteEntry bare = {};
    bare.visible = 1;
    scene.palette.palette.entries[13] = &bare;
    const PnImageParam param = {1, 48, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 5, -20}};
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
    for (const ProjectionKind kind : kAllKinds)
    {
        TestValues honoured(param), ignored(param);
        ASSERT_TRUE(Imaging(render, kind, &honoured.image));
        ASSERT_TRUE(ImagingSlab(render, kind, kWholeVolume, &ignored.image));
        for (int column = 2; column <= 45; ++column)
        {
            const bool shown = column < 16 || column >= 40;
            EXPECT_EQ(honoured.At(0, column), shown ? 100 + column : kBackground) << column << ", " << int(kind);
            EXPECT_EQ(ignored.At(0, column), 100 + column) << column << ", " << int(kind);
        }
    }
}
} // namespace corvane::tests
