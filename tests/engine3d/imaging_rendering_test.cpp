#include "imaging_twin.h"

#include <algorithm>
#include <set>

// Volume renderings and endoscopies of the engine beside those of a renderer driven by hand.
namespace corvane::tests
{
namespace
{
// What a picture must have for a comparison of two to mean anything.
void ExpectLively(const TestImage& image)
{
    EXPECT_GT(std::set<uint32_t>(image.pixels.begin(), image.pixels.end()).size(), 20u);
}

KsViewPoint ViewOf(const double* eye, const PnImageParam& axes)
{
    KsViewPoint view = {};
    const core::Vec3d row = core::VecOf(axes.rowDirection), column = core::VecOf(axes.columnDirection);
    for (int axis = 0; axis < 3; ++axis)
        view.eye[axis] = float(eye[axis]);
    core::Store(core::ToFloat(core::Cross(row, column)), view.direction);
    core::Store(core::ToFloat(-1.0 * column), view.up);
    return view;
}

// Towards the feet from a point, with the view at the start of an engine: right is the patient's right.
KsViewPoint StartingView(const float* eye) { return {{eye[0], eye[1], eye[2]}, {0, 0, -1}, {0, -1, 0}}; }
} // namespace

TEST(EngineRendering, IsThatOfTheRendererWithTheSameTablesAndGeometry)
{
    for (const uint32_t seed : {1u, 2u, 3u, 4u})
    {
        SCOPED_TRACE(seed);
        Twin twin(MakePatient(seed));
        const int sizes[][2] = {{71, 83}, {64, 20}, {1, 1}};
        twin.engine.Zoom(0.45f);
        const auto compare = [&]
        {
            for (const auto& [width, height] : sizes)
            {
                const TestImage image = RenderingOf(twin.engine, width, height);
                ExpectSamePixels(image, RenderingOf(twin.render, PlaneOf(twin.engine, width, height)));
                if (width > 64)
                    ExpectLively(image);
            }
        };
        compare(); // the default transfer function
        twin.SetPalette(TissueTransfer().palette, 0);
        compare();
        twin.engine.RotateH(0.7f);
        twin.engine.RotateV(-0.4f);
        compare();
        twin.SetLabels(MakeLumps(twin.volume.data));
        compare();
        twin.SetPalette(DefaultTransfer().palette, 1);
        twin.SetPalette(TissueTransfer().palette, 3);
        compare();
    }
}

TEST(EngineRendering, GivesBackBufferAndGeometry)
{
    Twin twin(MakePatient());
    std::vector<uint32_t> pixels(30 * 50, kUntouched);
    PnImageRGB image = {};
    ASSERT_TRUE(twin.engine.ImagingVR(30, 50, pixels.data(), true, &image, 0));
    EXPECT_EQ(image.pixels, pixels.data());
    EXPECT_EQ(image.param.rows, 30u);
    EXPECT_EQ(image.param.columns, 50u);
    EXPECT_TRUE(IsSame(image.param, PlaneOf(twin.engine, 30, 50)));
    PnImageParam same = {};
    ASSERT_TRUE(twin.engine.GetImageParams(30, 50, same));
    EXPECT_TRUE(IsSame(image.param, same));

    // The same without a record, and with the record whose buffer is drawn into.
    std::vector<uint32_t> again(30 * 50, kUntouched);
    ASSERT_TRUE(twin.engine.ImagingVR(30, 50, again.data(), false, nullptr, 0));
    EXPECT_EQ(again, pixels);
    std::fill(again.begin(), again.end(), kUntouched);
    image = {again.data(), {}};
    ASSERT_TRUE(twin.engine.ImagingVR(30, 50, image.pixels, false, &image, 0));
    EXPECT_EQ(again, pixels);
    EXPECT_TRUE(IsSame(image.param, same));
}

TEST(EngineRendering, ClearsEveryPixelFirst)
{
    Twin twin(MakePatient());
    const TestImage image = RenderingOf(twin.engine, 90, 90); // a small picture in the middle of the buffer
    EXPECT_EQ(std::count(image.pixels.begin(), image.pixels.end(), kUntouched), 0);
    EXPECT_EQ(image.At(0, 0), 0u);
    ExpectLively(image);
}

TEST(EngineRendering, ShowsTheAttachedVolumeThatIsAskedFor)
{
    Twin twin(MakePatient());
    TestVolume ball = MakeBall(42, 36, 28, 20, 17, 13, 9), other = MakeBall(42, 36, 28, 10, 10, 13, 6);
    for (TestVolume* attached : {&ball, &other})
    {
        const TestVolume plain = MakePatient();
        const auto* const slices = attached->data.slices;
        attached->data = plain.data;
        attached->data.slices = slices;
    }
    EXPECT_EQ(twin.engine.AttachVolumeData(ball.data), 1);
    EXPECT_EQ(twin.engine.AttachVolumeData(other.data), 2);
    EXPECT_EQ(twin.render.AttachVolumeData(ball.data), 1);
    EXPECT_EQ(twin.render.AttachVolumeData(other.data), 2);
    std::set<std::vector<uint32_t>> pictures;
    for (const int index : {0, 1, 2})
    {
        const TestImage image = RenderingOf(twin.engine, 40, 40, index);
        ExpectSamePixels(image, RenderingOf(twin.render, PlaneOf(twin.engine, 40, 40), index));
        pictures.insert(image.pixels);
        TestImage dispatched(image.image.param);
        ASSERT_TRUE(twin.engine.Imaging(40, 40, dispatched.pixels.data(), false, nullptr, index));
        ExpectSamePixels(dispatched, image);
    }
    EXPECT_EQ(pictures.size(), 3u);
    twin.engine.ClearAttachVolume();
    ExpectSamePixels(RenderingOf(twin.engine, 40, 40, 2), RenderingOf(twin.engine, 40, 40, 0));
    EXPECT_EQ(twin.engine.AttachVolumeData(other.data), 1);
}

TEST(EngineRendering, ShowsBlendImagesUntilTheyAreTakenAway)
{
    Twin twin(MakePatient());
    const PnImageParam plane = PlaneOf(twin.engine, 40, 40);
    std::vector<uint32_t> colours(40 * 40, 0x30C09000);
    KsBlendImage blend = {{{5, 5}, {35, 5}, {35, 35}, {5, 35}}, colours.data(), {}, {}, {}, {}};
    std::copy_n(plane.rowDirection, 3, blend.rowDirection);
    std::copy_n(plane.columnDirection, 3, blend.columnDirection);
    const core::Vec3d forwards = core::Cross(core::VecOf(plane.rowDirection), core::VecOf(plane.columnDirection));
    core::Store(core::VecOf(plane.position) + 60.0 * forwards, blend.position);

    const TestImage before = RenderingOf(twin.engine, 40, 40);
    const KsBlendImage kept = blend;
    twin.engine.SetBlendImage(&blend, 1);
    blend = {}; // the engine has its own copy
    KsBlendImage copy = kept;
    twin.render.SetBlendImage(&copy, 1);
    const TestImage blended = RenderingOf(twin.engine, 40, 40);
    ExpectSamePixels(blended, RenderingOf(twin.render, plane));
    EXPECT_NE(blended.pixels, before.pixels);
    twin.engine.SetBlendImage(nullptr, 3);
    ExpectSamePixels(RenderingOf(twin.engine, 40, 40), before);
    for (const int count : {0, -1, -2000000000})
    {
        twin.engine.SetBlendImage(&copy, 1);
        ExpectSamePixels(RenderingOf(twin.engine, 40, 40), blended);
        twin.engine.SetBlendImage(&copy, count);
        ExpectSamePixels(RenderingOf(twin.engine, 40, 40), before);
    }
}

TEST(EngineEndoscopy, IsThatOfTheRendererFromTheMiddleTowardsTheFeet)
{
    for (const uint32_t seed : {1u, 2u, 3u})
    {
        SCOPED_TRACE(seed);
        Twin twin(MakePatient(seed));
        twin.SetPalette(TissueTransfer().palette, 0);
        double eye[3];
        ASSERT_TRUE(twin.engine.GetOrigin(eye));
        float low[3], high[3], middle[3];
        ASSERT_TRUE(twin.engine.GetBoundingBox(low, high));
        for (int axis = 0; axis < 3; ++axis)
        {
            EXPECT_EQ(eye[axis], 0.5 * (double(low[axis]) + double(high[axis])));
            middle[axis] = float(eye[axis]);
        }
        PnImageParam size = {};
        size.rows = 33;
        size.columns = 47;
        TestImage image(size), expected(size);
        PnImageRGB record = {};
        EXPECT_TRUE(twin.engine.ImagingVE(33, 47, image.pixels.data(), 75, false, &record));
        ASSERT_TRUE(twin.render.ImagingVE(StartingView(middle), 75, &expected.image));
        ExpectSamePixels(image, expected);
        ExpectLively(image);
        EXPECT_EQ(record.pixels, image.pixels.data());
        EXPECT_TRUE(IsSame(record.param, expected.image.param));

        // The same without a record.
        TestImage again(size);
        EXPECT_TRUE(twin.engine.ImagingVE(33, 47, again.pixels.data(), 75, true, nullptr));
        ExpectSamePixels(again, image);
    }
}

TEST(EngineEndoscopy, FollowsThePerspectiveCamera)
{
    Twin twin(MakePatient());
    twin.SetPalette(TissueTransfer().palette, 0);
    twin.engine.SetRenderType(KsRenderPerspective);
    twin.engine.RotateToSagittal();
    twin.engine.Step(-4.25f);
    double eye[3];
    ASSERT_TRUE(twin.engine.GetOrigin(eye));
    PnImageParam axes = {};
    const double row[3] = {0, 1, 0}, column[3] = {0, 0, -1}; // looking to the patient's right, head up
    std::copy_n(row, 3, axes.rowDirection);
    std::copy_n(column, 3, axes.columnDirection);
    axes.rows = axes.columns = 40;
    TestImage image(axes), expected(axes);
    ASSERT_TRUE(twin.engine.Imaging(40, 40, image.pixels.data(), false, nullptr, 0)); // 45 degrees at first
    ASSERT_TRUE(twin.render.ImagingVE(ViewOf(eye, axes), 45, &expected.image));
    ExpectSamePixels(image, expected);
    ExpectLively(image);
}

// Pixels that no ray writes keep what they held.
TEST(EngineEndoscopy, DoesNotClearTheBuffer)
{
    Twin twin(MakePatient());
    std::vector<uint32_t> refused(30, kUntouched);
    Engine3D empty;
    PnImageRGB record = {};
    EXPECT_TRUE(empty.ImagingVE(5, 6, refused.data(), 60, false, &record)); // although the renderer refuses
    EXPECT_EQ(refused, std::vector<uint32_t>(30, kUntouched));
    EXPECT_EQ(record.pixels, refused.data());
    EXPECT_EQ(record.param.rows, 5u);
    EXPECT_EQ(record.param.columns, 6u);

    PnImageParam size = {};
    size.rows = size.columns = 30;
    double eye[3];
    ASSERT_TRUE(twin.engine.GetOrigin(eye));
    const float middle[3] = {float(eye[0]), float(eye[1]), float(eye[2])};
    for (const uint32_t filling : {0u, 0xFFFFFFFFu, kUntouched})
    {
        TestImage image(size), expected(size);
        std::fill(image.pixels.begin(), image.pixels.end(), filling);
        std::fill(expected.pixels.begin(), expected.pixels.end(), filling);
        EXPECT_TRUE(twin.engine.ImagingVE(30, 30, image.pixels.data(), 60, false, nullptr));
        ASSERT_TRUE(twin.render.ImagingVE(StartingView(middle), 60, &expected.image));
        ExpectSamePixels(image, expected);
    }
}

TEST(EngineEndoscopy, OfImagingUsesTheStoredViewAngle)
{
    Twin twin(MakePatient());
    twin.SetPalette(TissueTransfer().palette, 0);
    twin.engine.SetRenderType(KsRenderPerspective);
    double eye[3];
    ASSERT_TRUE(twin.engine.GetOrigin(eye));
    const float middle[3] = {float(eye[0]), float(eye[1]), float(eye[2])};
    PnImageParam size = {};
    size.rows = size.columns = 24;
    const auto expectAngle = [&](float used)
    {
        SCOPED_TRACE(used);
        TestImage image(size), expected(size);
        PnImageRGB record = {};
        ASSERT_TRUE(twin.engine.Imaging(24, 24, image.pixels.data(), false, &record, 0));
        ASSERT_TRUE(twin.render.ImagingVE(StartingView(middle), used, &expected.image));
        ExpectSamePixels(image, expected);
        EXPECT_TRUE(IsSame(record.param, expected.image.param));
    };
    expectAngle(45);
    const float angles[][2] = {{90, 90}, {1, 5},           {5, 5},     {4.999f, 5},
                               {-60, 5}, {174.5f, 174.5f}, {175, 175}, {180, 175}};
    for (const auto& [given, used] : angles)
    {
        twin.engine.SetViewAngle(given);
        expectAngle(used);
        // The angle of one endoscopy is its own.
        TestImage image(size);
        EXPECT_TRUE(twin.engine.ImagingVE(24, 24, image.pixels.data(), 33, false, nullptr));
        expectAngle(used);
    }
    twin.engine.SetViewAngle(70);
    twin.engine.SetViewAngle(NAN); // no angle
    expectAngle(70);
    twin.engine.SetViewAngle(INFINITY);
    expectAngle(175);
    twin.engine.SetViewAngle(-INFINITY);
    expectAngle(5);
}
} // namespace corvane::tests
