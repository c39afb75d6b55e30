#include "corvane/Render3D.h"

#include "plain_projection.h"
#include "scenes.h"
#include "scratch_folder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <string>

// The twelve forms in which a renderer offers its projections: what they refuse, which labels they show and where a
// camera puts its image.
namespace corvane::tests
{
namespace
{
constexpr PnImageParam kFront = {20, 20, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, -10}};
constexpr KsCamera kCamera = {{9.5f, 9.5f, -10}, {0, 0, 1}, {0, -1, 0}};
constexpr float kFieldSize = 20;

struct Arguments
{
    KsCamera camera = kCamera;
    float fieldSize = kFieldSize, thickness = kWholeVolume;
};

struct Form
{
    const char* name;
    ProjectionKind kind;
    bool usesCamera, takesThickness;
    std::function<bool(Render3D&, const Arguments&, KsImageVAL*)> call;

    bool IgnoresLabels() const { return takesThickness && !usesCamera; }
};

std::vector<Form> AllForms()
{
    using R = Render3D;
    using A = Arguments;
    using I = KsImageVAL;
    const ProjectionKind maximum = ProjectionKind::Maximum, average = ProjectionKind::Average,
                         minimum = ProjectionKind::Minimum;
    return {
        {"MIP", maximum, false, false, [](R& r, const A&, I* i) { return r.ImagingMIP(i); }},
        {"MIP slab", maximum, false, true, [](R& r, const A& a, I* i) { return r.ImagingMIP(i, a.thickness); }},
        {"MIP camera", maximum, true, false,
         [](R& r, const A& a, I* i) { return r.ImagingMIP(a.camera, a.fieldSize, i); }},
        {"MIP camera slab", maximum, true, true,
         [](R& r, const A& a, I* i) { return r.ImagingMIP(a.camera, a.fieldSize, a.thickness, i); }},
        {"AIP", average, false, false, [](R& r, const A&, I* i) { return r.ImagingAIP(i); }},
        {"AIP slab", average, false, true, [](R& r, const A& a, I* i) { return r.ImagingAIP(i, a.thickness); }},
        {"AIP camera", average, true, false,
         [](R& r, const A& a, I* i) { return r.ImagingAIP(a.camera, a.fieldSize, i); }},
        {"AIP camera slab", average, true, true,
         [](R& r, const A& a, I* i) { return r.ImagingAIP(a.camera, a.fieldSize, a.thickness, i); }},
        {"MinIP", minimum, false, false, [](R& r, const A&, I* i) { return r.ImagingMinIP(i); }},
        {"MinIP slab", minimum, false, true, [](R& r, const A& a, I* i) { return r.ImagingMinIP(i, a.thickness); }},
        {"MinIP camera", minimum, true, false,
         [](R& r, const A& a, I* i) { return r.ImagingMinIP(a.camera, a.fieldSize, i); }},
        {"MinIP camera slab", minimum, true, true,
         [](R& r, const A& a, I* i) { return r.ImagingMinIP(a.camera, a.fieldSize, a.thickness, i); }},
    };
}

// Lower x is label 0, higher x label 3, which is hidden. Values grow along the rays.
Scene TwoLabels()
{
    Scene scene;
    scene.volume = MakeVolume(20, 20, 20, [](int i, int, int k) { return 100 * (i >= 10) + 10 * k; });
    scene.labels = MakeLabels(20, 20, 20, [](int i, int, int) { return i >= 10 ? 3 : 0; });
    const auto opaque = [](int) { return 1.0f; };
    const auto colour = [](int) { return Colour{1, 2, 3}; };
    scene.palette.Add(0, 0, 1000, opaque, colour);
    scene.palette.Add(3, 0, 1000, opaque, colour, kFlat, false);
    return scene;
}

template <class Run>
std::string Printed(const Run& run)
{
    testing::internal::CaptureStdout();
    run();
    return testing::internal::GetCapturedStdout();
}

// A call is refused: false, nothing printed, image and geometry as they were.
void ExpectRefused(const Form& form, Render3D& render, const Arguments& arguments, const PnImageParam& param = kFront)
{
    TestValues image(kFront);
    image.image.param = param;
    bool drawn = true;
    EXPECT_EQ(Printed([&] { drawn = form.call(render, arguments, &image.image); }), "") << form.name;
    EXPECT_FALSE(drawn) << form.name;
    EXPECT_TRUE(image.AreAll(kUntouchedValue)) << form.name;
    EXPECT_EQ(std::memcmp(&image.image.param, &param, sizeof param), 0) << form.name;
}

TestValues Drawn(const Form& form, Render3D& render, const Arguments& arguments = {},
                 const PnImageParam& param = kFront)
{
    TestValues image(param);
    EXPECT_TRUE(form.call(render, arguments, &image.image)) << form.name;
    return image;
}
} // namespace

TEST(ProjectionForms, WithoutAVolumeEveryFormIsRefused)
{
    const Scene scene = TwoLabels();
    for (const Form& form : AllForms())
    {
        Render3D render;
        ExpectRefused(form, render, {});
        ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
        Drawn(form, render);
        render.Clear();
        ExpectRefused(form, render, {});
    }
}

TEST(ProjectionForms, ImagesWithoutRecordBufferRowsOrColumnsAreRefused)
{
    const Scene scene = TwoLabels();
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
    for (const Form& form : AllForms())
    {
        EXPECT_FALSE(form.call(render, {}, nullptr)) << form.name;
        KsImageVAL bufferless = {nullptr, kFront};
        bufferless.param.rowSpacing = 77;
        EXPECT_FALSE(form.call(render, {}, &bufferless)) << form.name;
        EXPECT_EQ(bufferless.param.rowSpacing, 77) << form.name;
        PnImageParam rowless = kFront, columnless = kFront;
        rowless.rows = 0;
        columnless.columns = 0;
        ExpectRefused(form, render, {}, rowless);
        ExpectRefused(form, render, {}, columnless);
    }
}

TEST(ProjectionForms, SlabsThinnerThanATenthOfAMillimetreAreRefused)
{
    const Scene scene = TwoLabels();
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
    for (const Form& form : AllForms())
        for (const float thickness : {0.09f, std::nextafter(0.1f, 0.0f), 0.0f, -5.0f, -INFINITY, NAN})
        {
            if (form.takesThickness)
                ExpectRefused(form, render, {kCamera, kFieldSize, thickness});
            else
                Drawn(form, render, {kCamera, kFieldSize, thickness});
            Drawn(form, render, {kCamera, kFieldSize, 0.1f});
        }
}

TEST(ProjectionForms, FieldsSmallerThanAMillimetreAreRefused)
{
    const Scene scene = TwoLabels();
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
    for (const Form& form : AllForms())
        for (const float fieldSize : {0.5f, std::nextafter(1.0f, 0.0f), 0.0f, -20.0f, NAN})
        {
            if (form.usesCamera)
                ExpectRefused(form, render, {kCamera, fieldSize, 5});
            else
                Drawn(form, render, {kCamera, fieldSize, 5});
            Drawn(form, render, {kCamera, 1.0f, 5});
        }
}

TEST(ProjectionForms, OnlyTheSlabOfAnImageShowsHiddenLabels)
{
    const Scene scene = TwoLabels();
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
    for (const Form& form : AllForms())
    {
        const TestValues image = Drawn(form, render);
        EXPECT_GE(image.At(10, 5), 10) << form.name;
        if (form.IgnoresLabels())
            EXPECT_EQ(image.At(10, 15), image.At(10, 5) + 100) << form.name;
        else
            EXPECT_EQ(image.At(10, 15), kBackground) << form.name;
    }
}

// From z = 8.2 a slab of 3.5 mm has samples at 8.2, 9.2, 10.2 and 11.2. The maximum lies between voxels, the others at
// the nearest one.
TEST(ProjectionForms, OnlyFormsThatTakeAThicknessHaveASlab)
{
    const Scene scene = TwoLabels();
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
    PnImageParam param = kFront;
    param.position[2] = 8.2;
    KsCamera camera = kCamera;
    camera.center[2] = 8.2f;
    for (const Form& form : AllForms())
    {
        const int value = Drawn(form, render, {camera, kFieldSize, 3.5f}, param).At(10, 5);
        // Over the whole volume samples go on to 17.2.
        const int expected[3][2] = {{172, 112}, {125, 95}, {80, 80}};
        EXPECT_EQ(value, expected[int(form.kind)][form.takesThickness]) << form.name;
    }
}

TEST(ProjectionForms, ACameraPutsItsCentreInTheMiddleOfItsImage)
{
    const TestVolume volume = MakeVolume(20, 20, 20, [](int, int, int) { return 5; });
    Render3D render;
    ASSERT_TRUE(render.InitData(volume.data, {}, {}));
    // Looks to posterior with the head up: rows run to the patient's left, columns down to the feet.
    const KsCamera camera = {{30, -40, 50}, {0, 1, 0}, {0, 0, 1}};
    const uint32_t sizes[3][2] = {{512, 256}, {256, 512}, {256, 257}};
    for (const auto& size : sizes)
        for (const Form& form : AllForms())
        {
            if (!form.usesCamera)
                continue;
            SCOPED_TRACE(testing::Message() << form.name << ", " << size[0] << " x " << size[1]);
            PnImageParam param = {size[0], size[1], 7, 8, {9, 9, 9}, {9, 9, 9}, {9, 9, 9}};
            param = Drawn(form, render, {camera, 256, 5}, param).image.param;
            EXPECT_EQ(param.rows, size[0]);
            EXPECT_EQ(param.columns, size[1]);
            EXPECT_EQ(param.rowSpacing, 1.0); // the shorter side spans the field
            EXPECT_EQ(param.columnSpacing, 1.0);
            const double rowDirection[3] = {1, 0, 0}, columnDirection[3] = {0, 0, -1};
            const double first[3] = {30 - 0.5 * (size[1] - 1.0), -40, 50 + 0.5 * (size[0] - 1.0)};
            for (int axis = 0; axis < 3; ++axis)
            {
                EXPECT_NEAR(param.rowDirection[axis], rowDirection[axis], 2.5e-6) << axis;
                EXPECT_NEAR(param.columnDirection[axis], columnDirection[axis], 2.5e-6) << axis;
                EXPECT_NEAR(param.position[axis], first[axis], 1e-3) << axis;
                EXPECT_NEAR(param.position[axis] + 0.5 * (size[1] - 1.0) * param.rowDirection[axis] +
                                0.5 * (size[0] - 1.0) * param.columnDirection[axis],
                            camera.center[axis], 1e-4)
                    << axis;
            }
        }
}

// A camera that is not at right angles, not of unit length, and a field that is no whole number of pixels.
TEST(ProjectionForms, ACamerasImageIsThatOfItsGeometry)
{
    for (uint32_t seed = 0; seed < 10; ++seed)
    {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Scene scene = RandomScene(random, 12, 30);
        Render3D render;
        ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
        float low[3], high[3];
        ASSERT_TRUE(render.GetBoundingBox(low, high));
        Arguments arguments = {{}, float(random.Real(5, 60)), float(random.Real(2, 60))};
        const core::Vec3d direction = random.UnitVector();
        core::Store(core::ToFloat(1.5 * direction), arguments.camera.direction);
        core::Store(core::ToFloat(random.UnitVector() + 0.2 * direction), arguments.camera.up);
        for (int axis = 0; axis < 3; ++axis)
            arguments.camera.center[axis] = 0.5f * (low[axis] + high[axis]);
        const PnImageParam size = {uint32_t(random.Between(1, 30)), uint32_t(random.Between(1, 30)), 0, 0, {}, {}, {}};
        const PlainProjector plain(scene.volume.data, scene.labels.mark, &scene.palette.palette);
        for (const Form& form : AllForms())
        {
            if (!form.usesCamera)
                continue;
            const TestValues image = Drawn(form, render, arguments, size);
            EXPECT_NEAR(image.image.param.rowSpacing, arguments.fieldSize / std::min(size.rows, size.columns), 1e-4);
            TestValues expected(image.image.param);
            plain.Project(form.kind, form.takesThickness ? arguments.thickness : kWholeVolume, expected.image);
            ExpectSameValues(image, expected);
        }
    }
}

TEST(ProjectionForms, AnImagesOwnGeometryStaysAsItIs)
{
    const Scene scene = TwoLabels();
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
    for (const Form& form : AllForms())
        if (!form.usesCamera)
        {
            const PnImageParam after = Drawn(form, render).image.param;
            EXPECT_EQ(std::memcmp(&after, &kFront, sizeof after), 0) << form.name;
        }
}

TEST(ProjectionForms, EveryProjectionSaysHowLongItTook)
{
    const Scene scene = TwoLabels();
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
    const std::string start = "RenderIP::IP take time ";
    for (const Form& form : AllForms())
    {
        const std::string printed = Printed([&] { Drawn(form, render); });
        ASSERT_GT(printed.size(), start.size() + 1) << form.name;
        EXPECT_EQ(printed.substr(0, start.size()), start) << form.name;
        EXPECT_EQ(printed.find_first_not_of("0123456789", start.size()), printed.size() - 1) << form.name;
        EXPECT_EQ(printed.back(), '\n') << form.name;
    }
}

TEST(ProjectionForms, NewTablesAndLabelsAreSeenByProjectionsAndByTheRenderingAfterThem)
{
    const ScratchFolder folder;
    const Scene scene = TwoLabels();
    const TestLabels swapped = MakeLabels(20, 20, 20, [](int i, int, int) { return i >= 10 ? 0 : 3; });
    TestPalette showing3;
    showing3.AddOpaqueFrom(3, 0, {0, 99, 0});
    const auto rendered = [](Render3D& render)
    {
        TestImage image(kFront);
        EXPECT_TRUE(render.ImagingVR(&image.image, 0));
        return image;
    };
    for (const Form& form : AllForms())
    {
        if (form.IgnoresLabels())
            continue;
        Render3D render, without;
        ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
        ASSERT_TRUE(without.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
        Drawn(form, render);

        render.SetPalette(showing3.palette);
        without.SetPalette(showing3.palette);
        TestValues image = Drawn(form, render);
        EXPECT_EQ(image.At(10, 5), kBackground) << form.name;
        EXPECT_NE(image.At(10, 15), kBackground) << form.name;
        ExpectSamePixels(rendered(render), rendered(without));

        render.SetVolumeMark(swapped.mark);
        without.SetVolumeMark(swapped.mark);
        EXPECT_EQ(Drawn(form, render).At(10, 15), kBackground) << form.name;
        ExpectSamePixels(rendered(render), rendered(without));
    }
}

TEST(ProjectionForms, AttachedVolumesAreNotProjected)
{
    const Scene scene = TwoLabels();
    const TestVolume bright = MakeVolume(20, 20, 20, [](int, int, int) { return 5000; });
    Render3D render;
    ASSERT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
    for (const Form& form : AllForms())
    {
        const TestValues before = Drawn(form, render);
        ASSERT_EQ(render.AttachVolumeData(bright.data), 1);
        ExpectSameValues(Drawn(form, render), before);
        render.ClearAttachVolume();
    }
}
} // namespace corvane::tests
