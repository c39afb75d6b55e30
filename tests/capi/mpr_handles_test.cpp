#include "corvane/EngineMPR.h"
#include "corvane/RenderMPR.h"
#include "same_bits.h"

// The handle gives the bits that its class gives.

namespace
{
using namespace corvane::tests;

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
