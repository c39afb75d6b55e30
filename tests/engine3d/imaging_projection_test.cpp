#include "imaging_forms.h"
#include "imaging_twin.h"

#include <algorithm>
#include <set>

// Projections by size: through the whole volume as the orthographic camera sees it.
namespace corvane::tests
{
TEST(EngineProjections, BySizeAreThoseOfTheRenderer)
{
    for (const uint32_t seed : {1u, 2u, 3u})
    {
        SCOPED_TRACE(seed);
        Twin twin(MakePatient(seed));
        twin.SetLabels(MakeLumps(twin.volume.data));
        twin.SetPalette(TissueTransfer().palette, 2);
        twin.engine.RotateToSagittal();
        twin.engine.RotateH(0.3f);
        const int sizes[][2] = {{31, 52}, {40, 17}, {1, 1}};
        for (const auto& [width, height] : sizes)
        {
            std::set<std::vector<int16_t>> pictures;
            for (const ProjectionKind kind : kAllKinds)
            {
                TestValues expected(PlaneOf(twin.engine, width, height)), image(expected);
                ASSERT_TRUE(Imaging(twin.render, kind, &expected.image));
                KsImageVAL record = {};
                ASSERT_TRUE(ProjectSize(twin.engine, kind, width, height, image.values.data(), &record));
                ExpectSameValues(image, expected);
                EXPECT_EQ(record.values, image.values.data());
                EXPECT_TRUE(IsSame(record.param, expected.image.param));
                pictures.insert(image.values);

                TestValues again(expected.image.param); // without a record
                ASSERT_TRUE(ProjectSize(twin.engine, kind, width, height, again.values.data(), nullptr));
                ExpectSameValues(again, image);
                TestValues own(expected.image.param); // with the record whose buffer is drawn into
                KsImageVAL& alias = own.image;
                ASSERT_TRUE(ProjectSize(twin.engine, kind, width, height, alias.values, &alias));
                ExpectSameValues(own, image);
            }
            EXPECT_EQ(pictures.size() == 3u, width > 1);
        }
    }
}

TEST(EngineProjections, WidthIsRowsAndHeightIsColumns)
{
    Twin twin(MakePatient());
    for (const ProjectionKind kind : kAllKinds)
    {
        std::vector<int16_t> values(30 * 50 + 1, kUntouchedValue);
        KsImageVAL image = {};
        ASSERT_TRUE(ProjectSize(twin.engine, kind, 30, 50, values.data(), &image));
        EXPECT_EQ(image.param.rows, 30u);
        EXPECT_EQ(image.param.columns, 50u);
        EXPECT_EQ(values[30 * 50], kUntouchedValue);
    }
}

// The box's diagonal fills the shorter side, so corners see past the volume.
TEST(EngineProjections, AreAirBesideTheVolume)
{
    const TestVolume volume = MakeVolume(20, 20, 20, [](int, int, int) { return 700; });
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const ProjectionKind kind : kAllKinds)
    {
        std::vector<int16_t> values(21 * 21, kUntouchedValue);
        ASSERT_TRUE(ProjectSize(engine, kind, 21, 21, values.data(), nullptr));
        EXPECT_EQ(values[0], -1024);
        EXPECT_EQ(values[10], -1024); // above the middle
        EXPECT_EQ(values[10 * 21 + 10], 700);
        EXPECT_EQ(std::count(values.begin(), values.end(), 700) + std::count(values.begin(), values.end(), -1024), 441);
    }
}

TEST(EngineProjections, LeaveOutHiddenLabelsBySize)
{
    Twin twin(MakePatient());
    std::vector<int16_t> values(20 * 20);
    ASSERT_TRUE(twin.engine.SetVisible(false, 0));
    for (const ProjectionKind kind : kAllKinds)
    {
        ASSERT_TRUE(ProjectSize(twin.engine, kind, 20, 20, values.data(), nullptr));
        EXPECT_EQ(values, std::vector<int16_t>(400, -1024));
    }
    ASSERT_TRUE(twin.engine.SetVisible(true, 0));
    ASSERT_TRUE(ProjectSize(twin.engine, ProjectionKind::Maximum, 20, 20, values.data(), nullptr));
    EXPECT_GT(*std::max_element(values.begin(), values.end()), 300);
}

TEST(EngineProjections, OfAnEmptyEngineAreAirAndRefused)
{
    Engine3D engine;
    for (const ProjectionKind kind : kAllKinds)
    {
        std::vector<int16_t> values(7 * 9 + 1, kUntouchedValue);
        KsImageVAL image = {};
        EXPECT_FALSE(ProjectSize(engine, kind, 7, 9, values.data(), &image));
        EXPECT_EQ(std::count(values.begin(), values.end(), -1024), 63);
        EXPECT_EQ(values[63], kUntouchedValue);
        EXPECT_EQ(image.values, values.data());
        EXPECT_TRUE(IsSame(image.param, PlaneOf(engine, 7, 9)));
    }
}

TEST(EngineProjections, AreDrawnWithThePerspectiveViewChosenAsWell)
{
    Twin twin(MakePatient());
    std::vector<int16_t> before(20 * 30), after(20 * 30);
    ASSERT_TRUE(ProjectSize(twin.engine, ProjectionKind::Average, 20, 30, before.data(), nullptr));
    twin.engine.SetRenderType(KsRenderPerspective);
    twin.engine.RotateToSagittal();
    twin.engine.Step(10);
    ASSERT_TRUE(ProjectSize(twin.engine, ProjectionKind::Average, 20, 30, after.data(), nullptr));
    EXPECT_EQ(after, before);
}
} // namespace corvane::tests
