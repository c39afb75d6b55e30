#include "plain_projection.h"
#include "scenes.h"
#include "tests/core/failing_allocator.h"
#include "tests/ends_by_itself.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

// Input that makes no sense, or next to none, or is larger than a number: every projection ends, reads nothing outside
// what it is given, and what cannot be sampled is background.
namespace corvane::tests
{
namespace
{
constexpr float kNan = NAN, kInfinity = INFINITY;
constexpr PnImageParam kFront = {12, 12, 1.5, 1.5, {1, 0, 0}, {0, 1, 0}, {0, 0, -10}};

TestVolume RampVolume(int sizeX, int sizeY, int sizeZ)
{
    return MakeVolume(sizeX, sizeY, sizeZ, [](int i, int j, int k) { return 100 + 7 * i + 3 * j + k; });
}

// Everything is shown, so that labels are looked at and leave nothing out.
TestPalette Showing(int label = 0)
{
    TestPalette palette;
    palette.AddOpaqueFrom(label, -32768, {200, 150, 100});
    return palette;
}

TestValues Projected(Render3D& render, ProjectionKind kind, const PnImageParam& param = kFront)
{
    TestValues image(param);
    EXPECT_TRUE(Imaging(render, kind, &image.image));
    return image;
}

// Compares all kinds, labels honoured, with the plain version; returns the images.
std::vector<TestValues> ExpectPlain(const KsVolumeData& volume, const KsVolumeMark& mark, const VolumePalette& palette,
                                    const PnImageParam& param)
{
    Render3D render;
    EXPECT_TRUE(render.InitData(volume, mark, palette));
    const PlainProjector plain(volume, mark, &palette);
    std::vector<TestValues> images;
    for (const ProjectionKind kind : kAllKinds)
    {
        SCOPED_TRACE(int(kind));
        TestValues expected(param);
        plain.Project(kind, kWholeVolume, expected.image);
        images.push_back(Projected(render, kind, param));
        ExpectSameValues(images.back(), expected);
    }
    return images;
}

// No kind, with or without labels, shows anything of a volume.
void ExpectBackground(const KsVolumeData& volume)
{
    const TestPalette palette = Showing();
    Render3D render;
    ASSERT_TRUE(render.InitData(volume, {}, palette.palette));
    for (const ProjectionKind kind : kAllKinds)
    {
        TestValues slab(kFront);
        EXPECT_TRUE(ImagingSlab(render, kind, 50, &slab.image));
        EXPECT_TRUE(slab.AreAll(kBackground)) << int(kind);
        EXPECT_TRUE(Projected(render, kind).AreAll(kBackground)) << int(kind);
    }
}
} // namespace

// Along x a skip lands within rounding of the face that it left by.
TEST(ProjectionHazards, ASkipThatDoesNotAdvanceBecomesAStep)
{
    TestVolume volume = MakeVolume(140, 16, 16, [](int i, int, int) { return i <= 5 || i == 120 ? 1000 : 0; });
    volume.data.spacing[0] = 300;
    const TestPalette palette = Showing();
    // Four views along -x: from behind the last voxel and from just behind voxel 120, which show voxel 120; from 9000,
    // which shows the low end, and from 20000, which is out of its reach of 10000 mm. The fifth looks along +x.
    const double starts[5] = {42000, 36450, 9000, 20000, -10};
    const int brightest[5] = {1000, 1000, 1000, 0, 1000};
    for (int view = 0; view < 5; ++view)
    {
        const double sign = view < 4 ? 1 : -1;
        const PnImageParam param = {6, 6, 1, 1, {0, sign, 0}, {0, 0, -1}, {starts[view], 8 - 3 * sign, 11}};
        ExpectToEnd(
            [&]
            {
                const std::vector<TestValues> images = ExpectPlain(volume.data, {}, palette.palette, param);
                EXPECT_EQ(images[0].At(3, 3), brightest[view]) << view;
                EXPECT_EQ(images[2].At(3, 3), 0) << view;
            });
    }
}

// The nearest voxels of a ray at y = 8.4003 hold 500 at most, so the coarse pass knows no more. Behind blocks of zeros,
// whose faces a skip cannot get past, lies what is interpolated to 500 + 0.4013 * 500 = 700.65: a skip moves a ray by a
// thousandth of a voxel along y, too.
TEST(ProjectionHazards, ARayGoesOnBehindAFaceThatItCannotSkip)
{
    const TestPalette palette = Showing();
    const auto bump = [](int i, int j) {
        return i >= 130 && i <= 134 && j == 8 ? 500 : i < 108 || i > 109 ? 0 : j == 8 ? 500 : j == 9 ? 1000 : 0;
    };
    TestVolume bright = MakeVolume(140, 16, 16, [&](int i, int j, int) { return bump(i, j); });
    TestVolume dark = MakeVolume(140, 16, 16, [&](int i, int j, int) { return 2000 - bump(i, j); });
    bright.data.spacing[0] = dark.data.spacing[0] = 300;
    const PnImageParam param = {1, 1, 1, 1, {0, 1, 0}, {0, 0, -1}, {42000, 8.4003, 8}};
    ExpectToEnd(
        [&]
        {
            EXPECT_EQ(ExpectPlain(bright.data, {}, palette.palette, param)[0].At(0, 0), 701);
            EXPECT_EQ(ExpectPlain(dark.data, {}, palette.palette, param)[2].At(0, 0), 1299);
        });
}

// A step along x is so short that adding it changes nothing any more.
TEST(ProjectionHazards, AStepBelowTheParametersResolutionEnds)
{
    const TestPalette palette = Showing();
    for (const float thin : {1e-7f, 1e-9f, 1e-20f, 1e-38f, 1e-44f})
    {
        TestVolume volume = MakeVolume(12, 12, 12, [](int i, int j, int k) { return (i + j + k) % 2 * 1000; });
        volume.data.spacing[1] = thin;
        Render3D render;
        ASSERT_TRUE(render.InitData(volume.data, {}, palette.palette));
        const double s = double(thin);
        // From outside, and from the middle of the volume, where the parameter starts at 0 and takes many steps to get
        // where it cannot go on: one thickness of that is enough.
        const PnImageParam views[5] = {{2, 2, 1, 1, {0, 0, 1}, {0, 1, 0}, {20, 5 * s, 5}},
                                       {2, 2, 1, s, {0, 1, 0}, {0, 0, 1}, {-1, 5 * s, 5.5}},
                                       {2, 2, 1, s, {0, 1, 0}, {1, 0, 0}, {5.3, 5 * s, 20}},
                                       {1, 1, 1, 1, {0, 0, 1}, {0, 1, 0}, {6, 5 * s, 5}},
                                       {1, 1, s, s, {0, 1, 0}, {0, 0, 1}, {3.5, 5 * s, 5.5}}};
        const int viewCount = thin == 1e-20f ? 5 : 3;
        for (int view = 0; view < viewCount; ++view)
            ExpectToEnd(
                [&]
                {
                    for (const ProjectionKind kind : kAllKinds)
                        Projected(render, kind, views[view]);
                });
        if (HasFailure())
            return; // one minute is enough
    }
}

TEST(ProjectionHazards, AnImagePlaneMayBe9000VoxelsAway)
{
    const TestVolume volume = MakeBall(32, 32, 32, 16, 16, 16, 9);
    const TestPalette palette = Showing();
    for (const double away : {1000.0, 9000.0, 9990.0, 20000.0, 1e6, 1e20, 1e38})
    {
        SCOPED_TRACE(away);
        const PnImageParam param = {20, 20, 1.5, 1.5, {1, 0, 0}, {0, 1, 0}, {2, 2, -away}};
        for (const TestValues& image : ExpectPlain(volume.data, {}, palette.palette, param))
            EXPECT_EQ(image.AreAll(kBackground), away > 9990); // a ray ends after 10000 voxels
    }
    const double s = std::sqrt(0.5);
    const PnImageParam oblique = {20, 20, 1.5, 1.5, {s, 0, -s}, {0, 1, 0}, {16 - 9000 * s - 15 * s, 2, 16 - 9000 * s}};
    ExpectPlain(volume.data, {}, palette.palette, oblique);
}

// Steps of 0.1 mm along 29.8 voxels of 300 mm: 89,400 samples.
TEST(ProjectionHazards, AnAverageOfSumsBeyond32BitsIsRight)
{
    ASSERT_GT(89400 * 32765.0, 2147483647.0);
    TestVolume volume = MakeVolume(33, 5, 5, [](int i, int, int) { return i < 8 ? 32767 : 32765; });
    volume.data.spacing[0] = 300;
    volume.data.spacing[2] = 0.1f;
    const TestPalette palette = Showing();
    const PnImageParam param = {1, 1, 1, 1, {0, 1, 0}, {0, 0, 1}, {0, 2, 0.2}};
    const std::vector<TestValues> images = ExpectPlain(volume.data, {}, palette.palette, param);
    // From 1.1 to 30.9 with the change at 7.5: 0.43 above the lower value.
    EXPECT_EQ(images[1].At(0, 0), 32765);
    for (std::vector<int16_t>& slice : volume.voxels)
        std::fill(slice.begin(), slice.end(), int16_t(32767));
    EXPECT_EQ(ExpectPlain(volume.data, {}, palette.palette, param)[1].At(0, 0), 32767);
}

TEST(ProjectionHazards, LabelsThatAreNotThereAreLabel0)
{
    const TestVolume volume = RampVolume(20, 20, 20);
    const TestPalette showing0 = Showing(0), showing7 = Showing(7);
    const TestLabels smaller = MakeLabels(10, 11, 9, [](int, int, int) { return 7; });
    const TestLabels larger = MakeLabels(40, 40, 40, [](int, int, int) { return 7; });
    TestLabels gaps = MakeLabels(20, 20, 20, [](int, int, int) { return 7; });
    for (int k = 0; k < 20; k += 3)
        gaps.slices[size_t(k)] = nullptr;
    const PnImageParam param = {20, 20, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, -5}};

    for (const TestValues& image : ExpectPlain(volume.data, {}, showing0.palette, param))
        EXPECT_NE(image.At(10, 10), kBackground);
    for (const TestValues& image : ExpectPlain(volume.data, {}, showing7.palette, param))
        EXPECT_TRUE(image.AreAll(kBackground));
    for (const TestPalette* palette : {&showing0, &showing7})
        for (const KsVolumeMark& mark : {smaller.mark, larger.mark, gaps.mark})
            for (const TestValues& image : ExpectPlain(volume.data, mark, palette->palette, param))
                EXPECT_EQ(image.AreAll(kBackground), palette == &showing0 && mark.slices == larger.mark.slices);
}

TEST(ProjectionHazards, LabelsOf64AndMoreNeverCount)
{
    const TestVolume volume = RampVolume(12, 12, 12);
    TestPalette palette;
    for (int label = 0; label < 64; ++label)
        palette.AddOpaqueFrom(label, -32768, {1, 2, 3});
    for (const int label : {63, 64, 65, 127, 128, 255})
    {
        const TestLabels labels = MakeLabels(12, 12, 12, [=](int, int, int) { return label; });
        for (const TestValues& image : ExpectPlain(volume.data, labels.mark, palette.palette, kFront))
            EXPECT_EQ(image.AreAll(kBackground), label >= 64) << label; // a minimum is never 32767
    }
}

// Samples need one voxel more on the lower side and two on the upper one: four voxels are the fewest to see.
TEST(ProjectionHazards, VolumesOfOneToThreeVoxelsAreBackground)
{
    for (int sizeX = 1; sizeX <= 4; ++sizeX)
        for (int sizeY = 1; sizeY <= 4; ++sizeY)
            for (int sizeZ = 1; sizeZ <= 4; ++sizeZ)
                if (std::min({sizeX, sizeY, sizeZ}) < 4)
                    ExpectBackground(RampVolume(sizeX, sizeY, sizeZ).data);
    ExpectBackground(RampVolume(1, 40, 40).data);
    ExpectBackground(RampVolume(40, 2, 40).data);
    ExpectBackground(RampVolume(40, 40, 3).data);
    const TestVolume volume = RampVolume(4, 4, 4);
    const PnImageParam param = {8, 8, 0.25, 0.25, {1, 0, 0}, {0, 1, 0}, {1, 1, -2}};
    for (const TestValues& image : ExpectPlain(volume.data, {}, Showing().palette, param))
        EXPECT_FALSE(image.AreAll(kBackground));
}

TEST(ProjectionHazards, AVolumeWithoutDistancesDepthOrPlaceIsBackground)
{
    const TestVolume volume = RampVolume(16, 16, 16);
    for (const float number : {0.0f, -0.0f, -1.0f, kNan, kInfinity, -kInfinity})
        for (int axis = 0; axis < 3; ++axis)
        {
            SCOPED_TRACE(testing::Message() << number << ", " << axis);
            KsVolumeData spaced = volume.data, placed = volume.data;
            spaced.spacing[axis] = number;
            ExpectBackground(spaced);
            if (!std::isfinite(number))
            {
                placed.origin[axis] = number;
                ExpectBackground(placed);
            }
        }
    const float alongRow[3] = {1, 0, 0}, inPlane[3] = {0.6f, 0.8f, 0}, zero[3] = {}, nan[3] = {kNan, 0, 1};
    for (const float* slice : {alongRow, inPlane, zero, nan})
    {
        KsVolumeData flat = volume.data;
        std::copy_n(slice, 3, flat.sliceDirection);
        ExpectBackground(flat);
    }
}

TEST(ProjectionHazards, ImagePlanesOfStrangeNumbersEndAndThoseWithoutAPlaceAreBackground)
{
    const TestVolume volume = RampVolume(16, 16, 16);
    const TestPalette palette = Showing();
    Render3D render;
    ASSERT_TRUE(render.InitData(volume.data, {}, palette.palette));
    for (const double number :
         {double(NAN), double(INFINITY), -double(INFINITY), 1e300, -1e300, 1e38, 1e-300, 0.0, -0.0, -1.0, 5e-324})
        for (int field = 0; field < 11; ++field)
            for (const ProjectionKind kind : kAllKinds)
            {
                PnImageParam param = kFront;
                double* fields[11] = {&param.rowSpacing,         &param.columnSpacing,      &param.rowDirection[0],
                                      &param.rowDirection[1],    &param.rowDirection[2],    &param.columnDirection[0],
                                      &param.columnDirection[1], &param.columnDirection[2], &param.position[0],
                                      &param.position[1],        &param.position[2]};
                *fields[field] = number;
                const TestValues image = Projected(render, kind, param);
                EXPECT_EQ(std::count(image.values.begin(), image.values.end(), kUntouchedValue), 0);
                if (!std::isfinite(float(number)))
                {
                    EXPECT_TRUE(image.AreAll(kBackground)) << number << ", " << field << ", " << int(kind);
                }
            }
}

TEST(ProjectionHazards, ASlabBeyondAllNumbersIsTheWholeVolumeOrNothing)
{
    const TestVolume volume = RampVolume(16, 16, 16);
    Render3D render;
    ASSERT_TRUE(render.InitData(volume.data, {}, {}));
    for (const ProjectionKind kind : kAllKinds)
    {
        TestValues whole(kFront), huge(kFront), endless(kFront);
        ASSERT_TRUE(ImagingSlab(render, kind, kWholeVolume, &whole.image));
        ASSERT_TRUE(ImagingSlab(render, kind, std::numeric_limits<float>::max(), &huge.image));
        ASSERT_TRUE(ImagingSlab(render, kind, kInfinity, &endless.image));
        EXPECT_FALSE(whole.AreAll(kBackground));
        ExpectSameValues(huge, whole);
        if (!endless.AreAll(kBackground))
            ExpectSameValues(endless, whole);
    }
}

TEST(ProjectionHazards, VisibleBoxesOfStrangeNumbersCutOrHideTheVolume)
{
    const TestVolume volume = RampVolume(16, 16, 16);
    const TestPalette palette = Showing();
    Render3D render;
    ASSERT_TRUE(render.InitData(volume.data, {}, palette.palette));
    for (const ProjectionKind kind : kAllKinds)
    {
        const auto projectedIn = [&](float low, float high, int axis)
        {
            float a[3] = {-1000, -1000, -1000}, b[3] = {1000, 1000, 1000};
            a[axis] = low;
            b[axis] = high;
            EXPECT_TRUE(render.SetVisibleBox(a, b));
            return Projected(render, kind);
        };
        const TestValues whole = projectedIn(-1000, 1000, 0);
        EXPECT_FALSE(whole.AreAll(kBackground));
        for (int axis = 0; axis < 3; ++axis)
        {
            ExpectSameValues(projectedIn(-kInfinity, kInfinity, axis), whole);
            ExpectSameValues(projectedIn(3e38f, -3e38f, axis), whole);
            EXPECT_TRUE(projectedIn(kNan, kNan, axis).AreAll(kBackground)) << axis;
            projectedIn(kNan, 5, axis);
            projectedIn(5, kNan, axis);
            EXPECT_TRUE(projectedIn(kInfinity, kInfinity, axis).AreAll(kBackground)) << axis;
            EXPECT_TRUE(projectedIn(100, 200, axis).AreAll(kBackground)) << axis;
        }
        // A box without any thickness across the view leaves no way between entry and exit.
        EXPECT_TRUE(projectedIn(8, 8, 2).AreAll(kBackground));
    }
}

TEST(ProjectionHazards, CamerasOfStrangeNumbersEnd)
{
    const TestVolume volume = RampVolume(16, 16, 16);
    const TestPalette palette = Showing();
    Render3D render;
    ASSERT_TRUE(render.InitData(volume.data, {}, palette.palette));
    const KsCamera sound = {{8, 8, -5}, {0, 0, 1}, {0, -1, 0}};
    const auto projected = [&](const KsCamera& camera, float fieldSize)
    {
        TestValues image({9, 11, 0, 0, {}, {}, {}});
        EXPECT_TRUE(render.ImagingMIP(camera, fieldSize, &image.image));
        EXPECT_EQ(std::count(image.values.begin(), image.values.end(), kUntouchedValue), 0);
        return image;
    };
    EXPECT_FALSE(projected(sound, 16).AreAll(kBackground));
    for (const float number : {kNan, kInfinity, -kInfinity, 3e38f, 1e20f, 1e-38f, 0.0f, 1e-45f})
        for (int field = 0; field < 9; ++field)
        {
            KsCamera camera = sound;
            float* const fields[3] = {camera.center, camera.direction, camera.up};
            fields[field / 3][field % 3] = number;
            const TestValues image = projected(camera, 16);
            if (!std::isfinite(number))
            {
                EXPECT_TRUE(image.AreAll(kBackground)) << number << ", " << field;
            }
        }
    projected({{8, 8, -5}, {0, 0, 1}, {0, 0, 1}}, 16); // up along the view: no row direction
    EXPECT_TRUE(projected(sound, kInfinity).AreAll(kBackground));
    projected(sound, 3e38f);
}

// Wherever memory runs out, a projection is refused with its pixels as they were, or is complete.
TEST(ProjectionHazards, MemoryThatRunsOutLeavesAnImageUntouchedOrComplete)
{
    const TestVolume volume = RampVolume(20, 20, 20);
    const TestPalette palette = Showing();
    const KsCamera camera = {{10, 10, -5}, {0, 0, 1}, {0, -1, 0}};
    Render3D render;
    ASSERT_TRUE(render.InitData(volume.data, {}, palette.palette));
    const TestValues whole = Projected(render, ProjectionKind::Maximum);
    TestValues view(kFront);
    ASSERT_TRUE(render.ImagingMIP(camera, 18, &view.image));
    int failures = 0;
    for (const bool usesCamera : {false, true})
    {
        bool failed = true;
        for (int allocation = 0; failed && allocation < 1000; ++allocation)
        {
            TestValues image(kFront);
            render.SetPalette(palette.palette); // so that there is something to bring up to date
            FailAllocationAfter(allocation);
            const bool drawn = usesCamera ? render.ImagingMIP(camera, 18, &image.image)
                                          : Imaging(render, ProjectionKind::Maximum, &image.image);
            failed = StopFailingAllocations();
            failures += failed;
            if (drawn)
                ExpectSameValues(image, usesCamera ? view : whole);
            else
                EXPECT_TRUE(image.AreAll(kUntouchedValue)) << allocation;
            EXPECT_TRUE(drawn || failed) << allocation;
        }
        EXPECT_FALSE(failed) << "never runs through";
    }
    EXPECT_GT(failures, 0);
}

TEST(ProjectionHazards, ImagesOfMorePixelsThanCanBeCountedAreRefused)
{
    const TestVolume volume = RampVolume(16, 16, 16);
    Render3D render;
    ASSERT_TRUE(render.InitData(volume.data, {}, {}));
    int16_t value = kUntouchedValue;
    PnImageParam param = kFront;
    param.rows = param.columns = UINT32_MAX;
    for (const ProjectionKind kind : kAllKinds)
    {
        KsImageVAL image = {&value, param};
        EXPECT_FALSE(Imaging(render, kind, &image));
        EXPECT_FALSE(ImagingSlab(render, kind, 5, &image));
        EXPECT_FALSE(render.ImagingMIP(KsCamera{{8, 8, -5}, {0, 0, 1}, {0, -1, 0}}, 16, &image));
        EXPECT_EQ(value, kUntouchedValue);
        EXPECT_EQ(image.param.position[2], kFront.position[2]);
        EXPECT_EQ(image.param.rowSpacing, kFront.rowSpacing);
    }
}
} // namespace corvane::tests
