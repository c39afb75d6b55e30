#include "seam_engine.h"

#include <cmath>

// Pictures by the GPU.
namespace corvane::tests
{
namespace
{
using SeamImaging = Seam;
}

TEST_F(SeamImaging, AVolumeRenderingIsDrawnIntoTheHostsClearedBuffer)
{
    LoadOnGpu();
    engine.RotateH(0.3f);
    engine.Zoom(0.5f);
    PnImageParam param;
    ASSERT_TRUE(engine.GetParamsOfVR(kWidth, kHeight, param));
    EXPECT_EQ(param.rows, uint32_t(kWidth));
    EXPECT_EQ(param.columns, uint32_t(kHeight));
    Pixels pixels(size_t(kWidth) * kHeight + 1, kGarbage);
    bool cleared = false;
    gpu.during = [&](const gpu::Call&)
    { cleared = std::count(pixels.begin(), pixels.end() - 1, 0u) == kWidth * kHeight; };
    PnImageRGB image = {};
    EXPECT_TRUE(engine.ImagingVR(kWidth, kHeight, pixels.data(), true, &image, 0));
    EXPECT_TRUE(cleared);
    ASSERT_EQ(Asked(), Names{"ImagingVR"});
    EXPECT_EQ(last[0].image.pixels, pixels.data());
    EXPECT_TRUE(SameBytes(last[0].image.param, param));
    EXPECT_EQ(pixels.back(), kGarbage);
    pixels.pop_back();
    EXPECT_EQ(pixels, Painted(gpu::kVolumePaint));

    // What the GPU wrote to the record comes back.
    EXPECT_EQ(image.pixels, pixels.data());
    param.position[2] = gpu::kWrittenPosition;
    EXPECT_TRUE(SameBytes(image.param, param));
}

TEST_F(SeamImaging, TheVolumesNumberIsPassedThrough)
{
    LoadOnGpu();
    Pixels pixels(size_t(kWidth) * kHeight);
    for (const int index : {0, 1, 7, -3, INT32_MIN, INT32_MAX})
    {
        VolumeRendering(index);
        ASSERT_EQ(Asked(), Names{"ImagingVR"});
        EXPECT_EQ(last[0].volumeIndex, index);
        EXPECT_TRUE(engine.Imaging(kWidth, kHeight, pixels.data(), true, nullptr, index));
        ASSERT_EQ(Asked(), Names{"ImagingVR"});
        EXPECT_EQ(last[0].volumeIndex, index);
    }
}

TEST_F(SeamImaging, AFailedVolumeRenderingIsFalseAndItsRecordComesBack)
{
    LoadOnGpu();
    gpu.drawsVolumes = false;
    PnImageRGB image = {};
    Pixels pixels(size_t(kWidth) * kHeight, kGarbage);
    EXPECT_FALSE(engine.ImagingVR(kWidth, kHeight, pixels.data(), false, &image, 0));
    EXPECT_EQ(image.pixels, pixels.data());
    EXPECT_EQ(image.param.rows, uint32_t(kWidth));
    EXPECT_EQ(image.param.position[2], gpu::kWrittenPosition);
    EXPECT_EQ(Asked(), Names{"ImagingVR"}); // the CPU does not step in
    EXPECT_EQ(pixels, Painted(gpu::kVolumePaint));
    EXPECT_FALSE(engine.Imaging(kWidth, kHeight, pixels.data(), false, nullptr, 0));
}

TEST_F(SeamImaging, AnEndoscopyIsGivenItsViewAndTheBufferAsItIs)
{
    LoadOnGpu();
    engine.SetRenderType(KsRenderPerspective);
    engine.RotateToSagittal(); // looks along -x, with +z up
    const double eye[3] = {-21.25, 9.5, 11.75};
    ASSERT_TRUE(engine.SetOrigin(eye));
    Pixels pixels(size_t(kWidth) * kHeight, kGarbage);
    bool untouched = false;
    gpu.during = [&](const gpu::Call&) { untouched = pixels == Pixels(size_t(kWidth) * kHeight, kGarbage); };
    PnImageRGB image = {};
    EXPECT_TRUE(engine.ImagingVE(kWidth, kHeight, pixels.data(), 77.5f, true, &image));
    EXPECT_TRUE(untouched);
    ASSERT_EQ(Asked(), Names{"ImagingVE"});
    const gpu::Call& call = last[0];
    for (int axis = 0; axis < 3; ++axis)
    {
        EXPECT_EQ(call.view.eye[axis], float(eye[axis]));
        EXPECT_NEAR(call.view.direction[axis], axis == 0 ? -1 : 0, 1e-6);
        EXPECT_NEAR(call.view.up[axis], axis == 2 ? 1 : 0, 1e-6);
    }
    EXPECT_EQ(call.viewAngle, 77.5f);
    EXPECT_EQ(call.image.pixels, pixels.data());
    EXPECT_EQ(call.image.param.rows, uint32_t(kWidth));
    EXPECT_EQ(call.image.param.columns, uint32_t(kHeight));
    EXPECT_EQ(pixels, Painted(gpu::kEndoscopyPaint));
    EXPECT_EQ(image.pixels, pixels.data());
    PnImageParam param = call.image.param;
    param.position[2] = gpu::kWrittenPosition;
    EXPECT_TRUE(SameBytes(image.param, param));
}

TEST_F(SeamImaging, TheViewAngleOfAnEndoscopyIsTheCallers)
{
    LoadOnGpu();
    Pixels pixels(size_t(kWidth) * kHeight);
    for (const float angle : {90.0f, 0.0f, -20.0f, 400.0f, INFINITY}) // not limited here
    {
        EXPECT_TRUE(engine.ImagingVE(kWidth, kHeight, pixels.data(), angle, false, nullptr));
        ASSERT_EQ(Asked(), Names{"ImagingVE"});
        EXPECT_EQ(last[0].viewAngle, angle);
    }
}

TEST_F(SeamImaging, ImagingFollowsTheRenderTypeAndUsesTheStoredViewAngle)
{
    LoadOnGpu();
    Pixels pixels(size_t(kWidth) * kHeight);
    EXPECT_TRUE(engine.Imaging(kWidth, kHeight, pixels.data(), false, nullptr, 0));
    EXPECT_EQ(Asked(), Names{"ImagingVR"});
    engine.SetRenderType(KsRenderPerspective);
    EXPECT_TRUE(engine.Imaging(kWidth, kHeight, pixels.data(), false, nullptr, 5));
    ASSERT_EQ(Asked(), Names{"ImagingVE"});
    EXPECT_EQ(last[0].viewAngle, 45.0f);
    const float stored[][2] = {{60, 60}, {5, 5}, {4.5f, 5}, {175, 175}, {180, 175}, {-INFINITY, 5}, {INFINITY, 175}};
    for (const auto& [given, kept] : stored)
    {
        engine.SetViewAngle(given);
        EXPECT_TRUE(engine.ImagingVE(kWidth, kHeight, pixels.data(), 33.0f, false, nullptr)); // leaves it alone
        PnImageRGB image = {};
        EXPECT_TRUE(engine.Imaging(kWidth, kHeight, pixels.data(), false, &image, 0));
        ASSERT_EQ(Asked(), (Names{"ImagingVE", "ImagingVE"}));
        EXPECT_EQ(last[1].viewAngle, kept);
        EXPECT_EQ(image.pixels, pixels.data());
    }
}

TEST_F(SeamImaging, AFailedEndoscopyIsTrueAndItsRecordComesBack)
{
    LoadOnGpu();
    gpu.drawsEndoscopies = false;
    engine.SetRenderType(KsRenderPerspective);
    Pixels pixels(size_t(kWidth) * kHeight, kGarbage);
    PnImageRGB image = {};
    EXPECT_TRUE(engine.ImagingVE(kWidth, kHeight, pixels.data(), 90, false, &image));
    EXPECT_EQ(image.pixels, pixels.data());
    EXPECT_EQ(image.param.position[2], gpu::kWrittenPosition);
    EXPECT_TRUE(engine.Imaging(kWidth, kHeight, pixels.data(), false, nullptr, 0));
    EXPECT_EQ(Asked(), (Names{"ImagingVE", "ImagingVE"}));
}

TEST_F(SeamImaging, ProjectionsAreTheCpusAndUploadNothing)
{
    LoadOnGpu();
    const PnImageParam plane = {6, 5, 1, 1, {1, 0, 0}, {0, 1, 0}, {-25, 5, 8}};
    const KsSliceParam slice = {{-25, 5, 8}, {1, 0, 0}, {0, 1, 0}, 6};
    for (const bool held : {true, false})
    {
        if (!held)
        {
            EXPECT_TRUE(engine.SetGPUEnabled(false));
            Load();
            EXPECT_TRUE(engine.SetGPUEnabled(true));
            Asked();
        }
        std::vector<int16_t> values(size_t(kWidth) * kHeight);
        KsImageVAL projected;
        KsImageData image = {};
        EXPECT_TRUE(engine.ImagingMIP(plane, 3, &image));
        EXPECT_TRUE(engine.ImagingAIP(plane, 3, &image));
        EXPECT_TRUE(engine.ImagingMinIP(plane, 3, &image));
        EXPECT_TRUE(engine.ImagingMIP(slice, 3, &image));
        EXPECT_TRUE(engine.ImagingAIP(slice, 3, &image));
        EXPECT_TRUE(engine.ImagingMinIP(slice, 3, &image));
        EXPECT_TRUE(engine.ImagingMIP(kWidth, kHeight, values.data(), false, &projected));
        EXPECT_TRUE(engine.ImagingAIP(kWidth, kHeight, values.data(), false, &projected));
        EXPECT_TRUE(engine.ImagingMinIP(kWidth, kHeight, values.data(), false, &projected));
        delete[] image.values;
        EXPECT_EQ(Asked(), Names{});
    }
}

TEST_F(SeamImaging, OnlyTheCpuPrintsHowLongItTook)
{
    testing::internal::CaptureStdout();
    VolumeRendering();
    Endoscopy();
    std::fflush(stdout);
    const std::string printedByCpu = testing::internal::GetCapturedStdout();
    EXPECT_EQ(printedByCpu.substr(0, 23), "Render3D::VR take time ");
    EXPECT_NE(printedByCpu.find("\nRender3D::VE take time "), std::string::npos);
    LoadOnGpu();
    testing::internal::CaptureStdout();
    VolumeRendering();
    Endoscopy();
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(SeamImaging, AVolumeRenderingWithoutABufferReachesNoRenderer)
{
    LoadOnGpu();
    PnImageRGB image;
    std::memset(static_cast<void*>(&image), 0x5A, sizeof image);
    const PnImageRGB before = image;
    EXPECT_FALSE(engine.ImagingVR(kWidth, kHeight, nullptr, false, &image, 0));
    EXPECT_FALSE(engine.Imaging(kWidth, kHeight, nullptr, false, &image, 0));
    EXPECT_TRUE(SameBytes(image, before));
    EXPECT_EQ(Asked(), Names{});
}
} // namespace corvane::tests
