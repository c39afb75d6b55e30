#include "c_handles.h"
#include "corvane/Corvane.h"

#include <gtest/gtest.h>

#include <cstring>

// The handles of the classes give the bits that the classes give.

namespace
{
using namespace corvane::tests;

constexpr int kWidth = 37, kHeight = 53;
constexpr size_t kPixels = size_t(kWidth) * kHeight;

template <class Record>
void ExpectSame(const Record& a, const Record& b)
{
    EXPECT_EQ(std::memcmp(&a, &b, sizeof(Record)), 0);
}

void ExpectSameImage(const KsImageData& a, const KsImageData& b)
{
    ASSERT_EQ(a.valueCount, b.valueCount);
    ASSERT_GT(a.valueCount, 0u);
    EXPECT_EQ(std::memcmp(a.values, b.values, a.valueCount * sizeof(int16_t)), 0);
    ExpectSame(a.param, b.param);
}

template <class Value>
bool HasContent(const std::vector<Value>& values)
{
    return std::any_of(values.begin(), values.end(), [&](Value value) { return value != values.front(); });
}

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

TEST(EngineMPRHandle, GivesThePlanesOfItsClass)
{
    const TestVolume volume = MakeTiltedVolume();
    TestLabels labels = MakeLabels(30, 26, 22, [](int i, int j, int k) { return (i + j + k) % 60; });
    const Owned<CorvaneEngineMPR> handle(corvane_engine_mpr_create(CORVANE_C_INTERFACE));
    EngineMPR object;
    ASSERT_EQ(corvane_engine_mpr_init_data(handle.get(), &volume.data), CORVANE_OK);
    ASSERT_EQ(corvane_engine_mpr_set_mark_data(handle.get(), &labels.mark), CORVANE_OK);
    ASSERT_EQ(corvane_engine_mpr_rotate(handle.get(), KsMPRTransverse, 0.3f), CORVANE_OK);
    ASSERT_TRUE(object.InitData(volume.data) && object.SetMarkData(labels.mark) &&
                object.Rotate(KsMPRTransverse, 0.3f));
    for (const KsMPRType type : {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal})
    {
        ImageData a, b;
        ASSERT_EQ(corvane_engine_mpr_imaging_by_type(handle.get(), type, &a), CORVANE_OK);
        ASSERT_TRUE(object.Imaging(type, &b));
        ExpectSameImage(a, b);
        ASSERT_EQ(corvane_engine_mpr_imaging_by_type_of_volume(handle.get(), type, &volume.data, &a), CORVANE_OK);
        ExpectSameImage(a, b);
        ASSERT_EQ(corvane_engine_mpr_imaging_by_plane(handle.get(), &b.param, &a), CORVANE_OK);
        ExpectSameImage(a, b);

        MarkData markA, markB;
        ASSERT_EQ(corvane_engine_mpr_marking(handle.get(), type, &markA), CORVANE_OK);
        ASSERT_TRUE(object.Marking(type, &markB));
        ASSERT_EQ(markA.labelCount, markB.labelCount);
        EXPECT_EQ(std::memcmp(markA.labels, markB.labels, markA.labelCount), 0);

        PnImageParam firstA = {}, firstB = {};
        int32_t count = 0;
        ASSERT_EQ(corvane_engine_mpr_get_image_count(handle.get(), type, 1.5f, &count, &firstA), CORVANE_OK);
        EXPECT_EQ(count, object.GetImageCount(type, 1.5f, &firstB));
        ExpectSame(firstA, firstB);
        double normalA[3], normalB[3];
        ASSERT_EQ(corvane_engine_mpr_get_direct(handle.get(), type, normalA), CORVANE_OK);
        ASSERT_TRUE(object.GetDirect(type, normalB));
        ExpectSame(normalA, normalB);
    }
    const KsSliceParam slice = {{-30, 15, 118}, {1, 0, 0}, {0, 1, 0}, 18};
    ImageData a, b;
    ASSERT_EQ(corvane_engine_mpr_imaging_by_slice(handle.get(), &slice, &a), CORVANE_OK);
    ASSERT_TRUE(object.Imaging(slice, &b));
    ExpectSameImage(a, b);
    EXPECT_EQ(corvane_engine_mpr_imaging_aip_by_slice(handle.get(), &slice, 3, &a), CORVANE_ERROR_NOT_OFFERED);
    KsMPRParam planesA, planesB;
    ASSERT_EQ(corvane_engine_mpr_get_params(handle.get(), &planesA), CORVANE_OK);
    ASSERT_TRUE(object.GetParams(planesB));
    ExpectSame(planesA, planesB);
}

TEST(RenderMPRHandle, GivesTheImagesAndSizesOfItsClass)
{
    const TestVolume volume = MakeTiltedVolume();
    TestLabels labels = MakeLabels(30, 26, 22, [](int i, int j, int k) { return (i + j + k) % 60; });
    const Owned<CorvaneRenderMPR> handle(corvane_render_mpr_create(CORVANE_C_INTERFACE));
    RenderMPR object;
    ASSERT_EQ(corvane_render_mpr_init_data(handle.get(), &volume.data), CORVANE_OK);
    ASSERT_EQ(corvane_render_mpr_set_mark_data(handle.get(), &labels.mark), CORVANE_OK);
    ASSERT_TRUE(object.InitData(volume.data) && object.SetMarkData(labels.mark));

    const double directions[6] = {0.8, 0.6, 0, -0.6, 0.8, 0}, center[3] = {-20, 24, 117};
    double originA[3], originB[3], extentA[2], extentB[2];
    ASSERT_EQ(corvane_render_mpr_get_mpr_size(handle.get(), directions, center, originA, &extentA[0], &extentA[1]),
              CORVANE_OK);
    ASSERT_TRUE(object.GetMPRSize(directions, center, originB, extentB[0], extentB[1]));
    ExpectSame(originA, originB);
    ExpectSame(extentA, extentB);
    float cornersA[24], cornersB[8][3];
    ASSERT_EQ(corvane_render_mpr_get_bounding_vertexes(handle.get(), cornersA), CORVANE_OK);
    ASSERT_TRUE(object.GetBoundingVertexes(cornersB));
    EXPECT_EQ(std::memcmp(cornersA, cornersB, sizeof cornersA), 0);

    const PnImageParam plane = {33, 41, 0.9, 0.8, {0.8, 0.6, 0}, {-0.6, 0.8, 0}, {-25, 8, 117}};
    std::vector<int16_t> a(size_t(plane.rows) * plane.columns), b(a.size());
    KsImageVAL imageA = {a.data(), plane}, imageB = {b.data(), plane};
    ASSERT_EQ(corvane_render_mpr_imaging(handle.get(), &imageA, a.size()), CORVANE_OK);
    ASSERT_TRUE(object.Imaging(&imageB));
    EXPECT_EQ(a, b);
    EXPECT_TRUE(HasContent(a));

    const TestVolume upright = MakeVolume(30, 26, 22, [](int i, int, int) { return i; });
    const PnImageParam slice = {20, 25, 1, 1, {1, 0, 0}, {0, 1, 0}, {2, 2, 2}};
    ASSERT_EQ(corvane_render_mpr_init_data(handle.get(), &upright.data), CORVANE_OK);
    ASSERT_EQ(corvane_render_mpr_set_mark_data(handle.get(), &labels.mark), CORVANE_OK);
    ASSERT_TRUE(object.InitData(upright.data) && object.SetMarkData(labels.mark));
    std::vector<uint8_t> marksA(20 * 25), marksB(20 * 25);
    KsImageMark markA = {marksA.data(), slice}, markB = {marksB.data(), slice};
    ASSERT_EQ(corvane_render_mpr_marking(handle.get(), &markA, marksA.size()), CORVANE_OK);
    ASSERT_TRUE(object.Marking(&markB));
    EXPECT_EQ(marksA, marksB);
    EXPECT_TRUE(HasContent(marksA));
}
} // namespace
