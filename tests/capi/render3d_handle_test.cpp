#include "corvane/Render3D.h"
#include "same_bits.h"

// The handle gives the bits that its class gives.

namespace
{
using namespace corvane::tests;

class Render3DHandle : public testing::Test
{
protected:
    void SetUp() override
    {
        tables.entries[0] = &entry;
        tables.sumStart = entry.rangeStart;
        tables.sumLength = entry.size;
        tables.opacitySums = opacities.data();
        ASSERT_EQ(corvane_render3d_init_data(handle.get(), &volume.data, &labels.mark, &tables), CORVANE_OK);
        ASSERT_TRUE(object.InitData(volume.data, labels.mark, tables));
    }

    template <class Function, class Operation>
    void ExpectSameProjection(Function function, Operation operation)
    {
        std::vector<int16_t> a(size_t(plane.rows) * plane.columns), b(a.size());
        KsImageVAL imageA = {a.data(), plane}, imageB = {b.data(), plane};
        ASSERT_EQ(function(&imageA, a.size()), CORVANE_OK);
        ASSERT_TRUE(operation(&imageB));
        EXPECT_EQ(a, b);
        EXPECT_TRUE(HasContent(a));
        ExpectSame(imageA.param, imageB.param);
    }

    const TestVolume volume = MakeTiltedVolume();
    TestLabels labels = MakeLabels(30, 26, 22, [](int i, int j, int) { return i < 10 && j < 12 ? 64 : 0; });
    std::vector<uint8_t> colours = std::vector<uint8_t>(3 * 400, 180);
    std::vector<float> opacities = std::vector<float>(400, 0.4f);
    VolumePaletteEntry entry = {600, 999, 400, colours.data(), opacities.data(), 1, 1, {0.2f, 0.7f, 0.1f}};
    VolumePalette tables = {};
    const PnImageParam plane = {33, 41, 0.9, 0.8, {1, 0, 0}, {0, 1, 0}, {-40, 8, 95}};
    const KsCamera camera = {{-19, 24, 100}, {0.6f, 0, 0.8f}, {0, 1, 0}};
    const Owned<CorvaneRender3D> handle{corvane_render3d_create(CORVANE_C_INTERFACE)};
    Render3D object;
};

TEST_F(Render3DHandle, GivesThePicturesOfItsClass)
{
    std::vector<uint32_t> a(size_t(plane.rows) * plane.columns), b(a.size());
    PnImageRGB imageA = {a.data(), plane}, imageB = {b.data(), plane};
    ASSERT_EQ(corvane_render3d_imaging_vr(handle.get(), &imageA, a.size(), 0), CORVANE_OK);
    ASSERT_TRUE(object.ImagingVR(&imageB, 0));
    EXPECT_EQ(a, b);
    EXPECT_TRUE(HasContent(a));
    const KsViewPoint view = {{-20, 24, 119}, {0, 0, 1}, {0, 1, 0}};
    ASSERT_EQ(corvane_render3d_imaging_ve(handle.get(), &view, 90, &imageA, a.size()), CORVANE_OK);
    ASSERT_TRUE(object.ImagingVE(view, 90, &imageB));
    EXPECT_EQ(a, b);
    ExpectSame(imageA.param, imageB.param);
}

TEST_F(Render3DHandle, GivesTheProjectionsOfItsClass)
{
    CorvaneRender3D* const c = handle.get();
    ExpectSameProjection([&](KsImageVAL* i, size_t n) { return corvane_render3d_imaging_mip(c, i, n); },
                         [&](KsImageVAL* i) { return object.ImagingMIP(i); });
    ExpectSameProjection([&](KsImageVAL* i, size_t n) { return corvane_render3d_imaging_aip(c, i, n); },
                         [&](KsImageVAL* i) { return object.ImagingAIP(i); });
    ExpectSameProjection([&](KsImageVAL* i, size_t n) { return corvane_render3d_imaging_minip(c, i, n); },
                         [&](KsImageVAL* i) { return object.ImagingMinIP(i); });
    ExpectSameProjection([&](KsImageVAL* i, size_t n) { return corvane_render3d_imaging_mip_slab(c, 20, i, n); },
                         [&](KsImageVAL* i) { return object.ImagingMIP(i, 20); });
    ExpectSameProjection([&](KsImageVAL* i, size_t n) { return corvane_render3d_imaging_aip_slab(c, 20, i, n); },
                         [&](KsImageVAL* i) { return object.ImagingAIP(i, 20); });
    ExpectSameProjection([&](KsImageVAL* i, size_t n) { return corvane_render3d_imaging_minip_slab(c, 20, i, n); },
                         [&](KsImageVAL* i) { return object.ImagingMinIP(i, 20); });
}

TEST_F(Render3DHandle, GivesTheProjectionsOfACameraAsItsClassDoes)
{
    CorvaneRender3D* const c = handle.get();
    const KsCamera* const v = &camera;
    ExpectSameProjection([&](KsImageVAL* i, size_t n) { return corvane_render3d_imaging_mip_camera(c, v, 30, i, n); },
                         [&](KsImageVAL* i) { return object.ImagingMIP(camera, 30, i); });
    ExpectSameProjection([&](KsImageVAL* i, size_t n) { return corvane_render3d_imaging_aip_camera(c, v, 30, i, n); },
                         [&](KsImageVAL* i) { return object.ImagingAIP(camera, 30, i); });
    ExpectSameProjection([&](KsImageVAL* i, size_t n) { return corvane_render3d_imaging_minip_camera(c, v, 30, i, n); },
                         [&](KsImageVAL* i) { return object.ImagingMinIP(camera, 30, i); });
    ExpectSameProjection([&](KsImageVAL* i, size_t n)
                         { return corvane_render3d_imaging_mip_camera_slab(c, v, 30, 15, i, n); },
                         [&](KsImageVAL* i) { return object.ImagingMIP(camera, 30, 15, i); });
    ExpectSameProjection([&](KsImageVAL* i, size_t n)
                         { return corvane_render3d_imaging_aip_camera_slab(c, v, 30, 15, i, n); },
                         [&](KsImageVAL* i) { return object.ImagingAIP(camera, 30, 15, i); });
    ExpectSameProjection([&](KsImageVAL* i, size_t n)
                         { return corvane_render3d_imaging_minip_camera_slab(c, v, 30, 15, i, n); },
                         [&](KsImageVAL* i) { return object.ImagingMinIP(camera, 30, 15, i); });
}

TEST_F(Render3DHandle, AnAssignedRendererDrawsAsTheOtherAndOutlivesIt)
{
    Owned<CorvaneRender3D> source(corvane_render3d_clone(handle.get()));
    const Owned<CorvaneRender3D> target(corvane_render3d_create(CORVANE_C_INTERFACE));
    ASSERT_EQ(corvane_render3d_assign(target.get(), source.get()), CORVANE_OK);
    ASSERT_EQ(corvane_render3d_assign(target.get(), target.get()), CORVANE_OK);
    source.reset();
    ExpectSameProjection([&](KsImageVAL* i, size_t n) { return corvane_render3d_imaging_mip(target.get(), i, n); },
                         [&](KsImageVAL* i) { return object.ImagingMIP(i); });
}
} // namespace
