#include "corvane/Engine3D.h"
#include "same_bits.h"

// The handle gives the bits that its class gives.

namespace
{
using namespace corvane::tests;

constexpr int kWidth = 37, kHeight = 53;
constexpr size_t kPixels = size_t(kWidth) * kHeight;

class Engine3DHandle : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(corvane_engine3d_init_data(handle.get(), &volume.data), CORVANE_OK);
        ASSERT_TRUE(object.InitData(volume.data));
        corvane_engine3d_rotate_h(handle.get(), 0.4f);
        object.RotateH(0.4f);
        corvane_engine3d_rotate_v(handle.get(), -0.3f);
        object.RotateV(-0.3f);
        corvane_engine3d_rotate_screen(handle.get(), 0.2f);
        object.RotateScreen(0.2f);
        corvane_engine3d_zoom(handle.get(), 0.8f);
        object.Zoom(0.8f);
    }

    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneEngine3D> handle{corvane_engine3d_create(CORVANE_C_INTERFACE)};
    Engine3D object;
};

TEST_F(Engine3DHandle, GivesThePicturesOfItsClass)
{
    std::vector<uint32_t> a(kPixels), b(kPixels);
    PnImageRGB imageA = {}, imageB = {};
    ASSERT_EQ(corvane_engine3d_imaging_vr(handle.get(), kWidth, kHeight, a.data(), kPixels, &imageA, 0), CORVANE_OK);
    ASSERT_TRUE(object.ImagingVR(kWidth, kHeight, b.data(), false, &imageB, 0));
    EXPECT_EQ(a, b);
    EXPECT_TRUE(HasContent(a));
    ExpectSame(imageA.param, imageB.param);

    PnImageParam param;
    ASSERT_EQ(corvane_engine3d_get_params_of_vr(handle.get(), kWidth, kHeight, &param), CORVANE_OK);
    ExpectSame(param, imageB.param);

    ASSERT_EQ(corvane_engine3d_imaging_ve(handle.get(), kWidth, kHeight, a.data(), kPixels, 80, &imageA), CORVANE_OK);
    ASSERT_TRUE(object.ImagingVE(kWidth, kHeight, b.data(), 80, false, &imageB));
    EXPECT_EQ(a, b);
    ExpectSame(imageA.param, imageB.param);

    ASSERT_EQ(corvane_engine3d_set_render_type(handle.get(), KsRenderPerspective), CORVANE_OK);
    ASSERT_EQ(corvane_engine3d_set_view_angle(handle.get(), 100), CORVANE_OK);
    ASSERT_EQ(corvane_engine3d_step(handle.get(), -4), CORVANE_OK);
    ASSERT_EQ(corvane_engine3d_imaging(handle.get(), kWidth, kHeight, a.data(), kPixels, nullptr, 0), CORVANE_OK);
    object.SetRenderType(KsRenderPerspective);
    object.SetViewAngle(100);
    object.Step(-4);
    ASSERT_TRUE(object.Imaging(kWidth, kHeight, b.data(), false, nullptr, 0));
    EXPECT_EQ(a, b);
}

TEST_F(Engine3DHandle, GivesTheProjectionsOfItsClass)
{
    const auto expectBySize = [&](auto function, bool (Engine3D::*operation)(int, int, int16_t*, bool, KsImageVAL*))
    {
        std::vector<int16_t> a(kPixels), b(kPixels);
        KsImageVAL imageA = {}, imageB = {};
        ASSERT_EQ(function(handle.get(), kWidth, kHeight, a.data(), kPixels, &imageA), CORVANE_OK);
        ASSERT_TRUE((object.*operation)(kWidth, kHeight, b.data(), false, &imageB));
        EXPECT_EQ(a, b);
        EXPECT_TRUE(HasContent(a));
        ExpectSame(imageA.param, imageB.param);
    };
    expectBySize(corvane_engine3d_imaging_mip_by_size, &Engine3D::ImagingMIP);
    expectBySize(corvane_engine3d_imaging_aip_by_size, &Engine3D::ImagingAIP);
    expectBySize(corvane_engine3d_imaging_minip_by_size, &Engine3D::ImagingMinIP);

    const PnImageParam plane = {20, 30, 0.8, 0.6, {1, 0, 0}, {0, 1, 0}, {-30, 15, 118}};
    const auto expectByPlane = [&](auto function, bool (Engine3D::*operation)(const PnImageParam&, float, KsImageData*))
    {
        ImageData a, b;
        ASSERT_EQ(function(handle.get(), &plane, 5, &a), CORVANE_OK);
        ASSERT_TRUE((object.*operation)(plane, 5, &b));
        ExpectSameImage(a, b);
    };
    expectByPlane(corvane_engine3d_imaging_mip_by_plane, &Engine3D::ImagingMIP);
    expectByPlane(corvane_engine3d_imaging_aip_by_plane, &Engine3D::ImagingAIP);
    expectByPlane(corvane_engine3d_imaging_minip_by_plane, &Engine3D::ImagingMinIP);

    const KsSliceParam slice = {{-30, 15, 118}, {1, 0, 0}, {0, 1, 0}, 18};
    const auto expectBySlice = [&](auto function, bool (Engine3D::*operation)(KsSliceParam, float, KsImageData*))
    {
        ImageData a, b;
        ASSERT_EQ(function(handle.get(), &slice, 5, &a), CORVANE_OK);
        ASSERT_TRUE((object.*operation)(slice, 5, &b));
        ExpectSameImage(a, b);
    };
    expectBySlice(corvane_engine3d_imaging_mip_by_slice, &Engine3D::ImagingMIP);
    expectBySlice(corvane_engine3d_imaging_aip_by_slice, &Engine3D::ImagingAIP);
    expectBySlice(corvane_engine3d_imaging_minip_by_slice, &Engine3D::ImagingMinIP);
}

TEST_F(Engine3DHandle, CutsAsItsClassDoes)
{
    const KsVolumeData& data = volume.data;
    TestLabels a = MakeLabels(data.sizeX, data.sizeY, data.sizeZ, [](int, int, int) { return 9; });
    TestLabels b = MakeLabels(data.sizeX, data.sizeY, data.sizeZ, [](int, int, int) { return 9; });
    std::vector<uint8_t> drawn(40 * 40, 1);
    const KsImageMark region = {drawn.data(), {40, 40, 0.3, 0.4, {1, 0, 0}, {0, 1, 0}, {-25, 18, 100}}};
    ASSERT_EQ(corvane_engine3d_cut_fill(handle.get(), &region, &a.mark, 5), CORVANE_OK);
    ASSERT_TRUE(object.CutFill(region, b.mark, 5));
    EXPECT_EQ(a.labels, b.labels);
    ASSERT_EQ(corvane_engine3d_cut_append(handle.get(), &a.mark), CORVANE_OK);
    ASSERT_TRUE(object.CutAppend(b.mark));
    KsVolumeMark* mark = nullptr;
    ASSERT_EQ(corvane_engine3d_get_mark_data(handle.get(), &mark), CORVANE_OK);
    size_t cut = 0;
    for (int k = 0; k < data.sizeZ; ++k)
        for (int n = 0; n < data.sizeX * data.sizeY; ++n)
        {
            cut += mark->slices[k][n] != 0;
            ASSERT_EQ(mark->slices[k][n], a.labels[size_t(k)][size_t(n)] ? 64 : 0);
            ASSERT_EQ(mark->slices[k][n], object.GetMarkData()->slices[k][n]);
        }
    EXPECT_GT(cut, 500u);
}

TEST_F(Engine3DHandle, KeepsAppearanceAndBoxesAsItsClassDoes)
{
    ASSERT_EQ(corvane_engine3d_set_shading(handle.get(), 0.3f, 0.5f, 0.1f, 0), CORVANE_OK);
    ASSERT_EQ(corvane_engine3d_set_opacity(handle.get(), 0.5f, 0), CORVANE_OK);
    ASSERT_EQ(corvane_engine3d_adjust_color(handle.get(), 40), CORVANE_OK);
    object.SetShading(0.3f, 0.5f, 0.1f, 0);
    object.SetOpacity(0.5f, 0);
    object.AdjustColor(40);
    float low[3], high[3], lowSeen[3], highSeen[3];
    ASSERT_EQ(corvane_engine3d_get_bounding_box(handle.get(), low, high), CORVANE_OK);
    high[0] = (low[0] + high[0]) / 2;
    ASSERT_EQ(corvane_engine3d_set_visible_box(handle.get(), low, high), CORVANE_OK);
    ASSERT_EQ(corvane_engine3d_get_visible_box(handle.get(), lowSeen, highSeen), CORVANE_OK);
    EXPECT_EQ(highSeen[0], high[0]);
    object.SetVisibleBox(low, high);
    std::vector<uint32_t> a(kPixels), b(kPixels);
    ASSERT_EQ(corvane_engine3d_imaging_vr(handle.get(), kWidth, kHeight, a.data(), kPixels, nullptr, 0), CORVANE_OK);
    ASSERT_TRUE(object.ImagingVR(kWidth, kHeight, b.data(), false, nullptr, 0));
    EXPECT_EQ(a, b);
    EXPECT_TRUE(HasContent(a));
    ASSERT_EQ(corvane_engine3d_set_visible(handle.get(), 0, 0), CORVANE_OK);
    ASSERT_EQ(corvane_engine3d_imaging_vr(handle.get(), kWidth, kHeight, a.data(), kPixels, nullptr, 0), CORVANE_OK);
    EXPECT_FALSE(HasContent(a));

    int32_t count = -1;
    ASSERT_EQ(corvane_engine3d_attach_volume_data(handle.get(), &volume.data, &count), CORVANE_OK);
    EXPECT_EQ(count, 1);
    const TestVolume smaller = MakeVolume(5, 5, 5, [](int, int, int) { return 0; });
    EXPECT_EQ(corvane_engine3d_attach_volume_data(handle.get(), &smaller.data, &count), CORVANE_ERROR_REFUSED);
    EXPECT_EQ(count, 0);
}
} // namespace
