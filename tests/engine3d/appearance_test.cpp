#include "appearance_host.h"

#include <algorithm>
#include <climits>

// Transfer functions, shading, opacity and visibility: what the engine keeps, and that pictures follow at once.
namespace corvane::tests
{
namespace
{
constexpr int kNoLabels[] = {-1, 64, 65, 1000, INT_MIN, INT_MAX};

} // namespace

TEST(Appearance, StartsWithTissueVesselsAndBone)
{
    Twin twin(MakePatient());
    ExpectSameTables(TablesOf(twin.engine), twin.tables.Records());
    const HostPalette palette(twin.engine);
    const KsPalettePoint expected[] = {
        {145, 0xFF1111, 0.05f}, {264, 0xFFFF75, 0.17f}, {336, 0xFFFFFF, 0.28f}, {1448, 0xFFF5F5, 0.62f}};
    ASSERT_EQ(palette.pointCount, 4);
    for (int n = 0; n < 4; ++n)
    {
        EXPECT_EQ(palette.points[n].value, expected[n].value);
        EXPECT_EQ(palette.points[n].colour, expected[n].colour);
        EXPECT_EQ(palette.points[n].opacity, expected[n].opacity);
    }
    EXPECT_EQ(palette.visible, 1);
    EXPECT_EQ(palette.opacity, 1.0f);
    EXPECT_EQ(palette.shading[0], 0.11f);
    EXPECT_EQ(palette.shading[1], 0.816f);
    EXPECT_EQ(palette.shading[2], 0.0f);
}

TEST(Appearance, PalettesWithFewerThanTwoPointsChangeNothing)
{
    Twin twin(MakePatient());
    TestTransfer one({{5, 0xFF, 1}, {6, 0xFF, 1}});
    one.palette.opacity = 0.5f;
    TestTransfer none = one, lessThanNone = one, null = one;
    one.palette.pointCount = 1;
    none.palette.pointCount = 0;
    lessThanNone.palette.pointCount = INT_MIN;
    null.palette.points = nullptr;
    for (const TestTransfer* transfer : {&one, &none, &lessThanNone, &null})
    {
        EXPECT_TRUE(twin.engine.SetPalette(transfer->palette));
        EXPECT_FALSE(UpdateTables(twin.engine, transfer->palette, 0));
        EXPECT_EQ(ValuesOf(twin.engine), (std::vector<int>{145, 264, 336, 1448}));
        EXPECT_EQ(HostPalette(twin.engine).opacity, 1.0f);
        ExpectSameTables(TablesOf(twin.engine), twin.tables.Records());
    }
    ExpectDrawnAlike(twin);
}

TEST(Appearance, PalettesOfOneValueAreKeptAndTheTablesStay)
{
    Twin twin(MakePatient());
    TestTransfer oneValue({{77, 0xFF, 1}, {77, 0xFF00, 0.5f}, {77, 0xFF0000, 0.25f}});
    oneValue.palette.opacity = 0.5f;
    EXPECT_TRUE(twin.engine.SetPalette(oneValue.palette));
    EXPECT_FALSE(UpdateTables(twin.engine, oneValue.palette, 0));
    EXPECT_EQ(ValuesOf(twin.engine), (std::vector<int>{77, 77, 77}));
    EXPECT_EQ(HostPalette(twin.engine).opacity, 0.5f);
    ExpectSameTables(TablesOf(twin.engine), twin.tables.Records());
    ExpectDrawnAlike(twin);
}

TEST(Appearance, TablesAreRefusedForLabelsBeyond63)
{
    Twin twin(MakePatient());
    const TestTransfer tissue = TissueTransfer();
    for (const int label : kNoLabels)
        EXPECT_FALSE(UpdateTables(twin.engine, tissue.palette, label));
    ExpectSameTables(TablesOf(twin.engine), twin.tables.Records());
    EXPECT_EQ(ValuesOf(twin.engine), (std::vector<int>{-200, 60, 300, 1200})); // the record took it
    EXPECT_TRUE(UpdateTables(twin.engine, tissue.palette, 63));
    ASSERT_TRUE(twin.tables.Add(tissue.palette, 63));
    ExpectSameTables(TablesOf(twin.engine), twin.tables.Records());
}

TEST(Appearance, FollowsARandomSequenceOfPalettes)
{
    Twin twin(MakePatient());
    twin.SetLabels(MakeLumps(twin.volume.data));
    Random random(11);
    for (int step = 0; step < 25; ++step)
    {
        SCOPED_TRACE(step);
        const TestTransfer transfer = RandomTransfer(random, -1200, 1800);
        if (!PlainTableOf(transfer.palette))
            continue;
        twin.SetPalette(transfer.palette, random.Below(5));
        ExpectSameTables(TablesOf(twin.engine), twin.tables.Records());
        ExpectDrawnAlike(twin);
    }
}

TEST(Appearance, ShadingOpacityAndVisibilityReachTheirLabelAtOnce)
{
    Twin twin(MakePatient());
    twin.SetLabels(MakeLumps(twin.volume.data));
    for (const int label : {0, 1, 2})
        twin.SetPalette(TissueTransfer().palette, label);
    for (const int label : {1, 0, 2})
    {
        SCOPED_TRACE(label);
        const TestImage before = RenderingOf(twin.engine, 40, 40);
        VolumePaletteEntry& entry = twin.tables.Entry(label);
        EXPECT_TRUE(twin.engine.SetShading(0.5f, 0.25f, 0.125f, label));
        const float shading[] = {0.5f, 0.25f, 0.125f};
        std::copy_n(shading, 3, entry.shading);
        twin.Refresh();
        ExpectSameTables(TablesOf(twin.engine), twin.tables.Records());
        ExpectDrawnAlike(twin);
        const TestImage shaded = RenderingOf(twin.engine, 40, 40);
        EXPECT_NE(shaded.pixels, before.pixels);

        EXPECT_TRUE(twin.engine.SetOpacity(0.375f, label));
        entry.opacity = 0.375f;
        twin.Refresh();
        ExpectSameTables(TablesOf(twin.engine), twin.tables.Records());
        ExpectDrawnAlike(twin);

        EXPECT_TRUE(twin.engine.SetVisible(false, label));
        entry.visible = 0;
        twin.Refresh();
        ExpectSameTables(TablesOf(twin.engine), twin.tables.Records()); // the sum still counts the label
        ExpectDrawnAlike(twin);
        EXPECT_NE(RenderingOf(twin.engine, 40, 40).pixels, shaded.pixels);
        EXPECT_TRUE(twin.engine.SetVisible(true, label));
        entry.visible = 1;
        twin.Refresh();
        ExpectDrawnAlike(twin);

        const HostPalette palette(twin.engine); // the one record takes everything
        EXPECT_EQ(palette.opacity, 0.375f);
        EXPECT_EQ(palette.visible, 1);
        EXPECT_TRUE(std::equal(shading, shading + 3, palette.shading));
    }
}

TEST(Appearance, OfLabelsWithoutTablesReachesTheRecordOnly)
{
    Twin twin(MakePatient());
    std::vector<int> labels(std::begin(kNoLabels), std::end(kNoLabels));
    labels.insert(labels.end(), {1, 63});
    float number = 1;
    for (const int label : labels)
    {
        SCOPED_TRACE(label);
        number *= 0.5f;
        EXPECT_TRUE(twin.engine.SetShading(number, 2 * number, 3 * number, label));
        EXPECT_TRUE(twin.engine.SetOpacity(4 * number, label));
        EXPECT_TRUE(twin.engine.SetVisible(label % 2, label));
        const HostPalette palette(twin.engine);
        EXPECT_EQ(palette.shading[0], number);
        EXPECT_EQ(palette.shading[1], 2 * number);
        EXPECT_EQ(palette.shading[2], 3 * number);
        EXPECT_EQ(palette.opacity, 4 * number);
        EXPECT_EQ(palette.visible, label % 2 != 0);
        ExpectSameTables(TablesOf(twin.engine), twin.tables.Records());
    }
    ExpectDrawnAlike(twin);
}

TEST(Appearance, ASetPaletteBringsItsOwnShadingOpacityAndVisibility)
{
    Twin twin(MakePatient());
    EXPECT_TRUE(twin.engine.SetVisible(false, 0));
    EXPECT_TRUE(twin.engine.SetOpacity(0, 0));
    EXPECT_TRUE(twin.engine.SetShading(9, 9, 9, 0));
    twin.SetPalette(TissueTransfer().palette, 0);
    ExpectSameTables(TablesOf(twin.engine), twin.tables.Records());
    ExpectDrawnAlike(twin);
    const HostPalette palette(twin.engine);
    EXPECT_EQ(palette.visible, 1);
    EXPECT_EQ(palette.opacity, 1.0f);
}

TEST(Appearance, HidingTheOnlyLabelEmptiesThePictureAndTheSumWithTheNextChange)
{
    Twin twin(MakePatient());
    const int length = TablesOf(twin.engine).sumLength;
    EXPECT_EQ(length, 1448 - 145 + 1);
    EXPECT_TRUE(twin.engine.SetVisible(false, 0));
    const TestImage hidden = RenderingOf(twin.engine, 30, 30);
    EXPECT_EQ(std::count(hidden.pixels.begin(), hidden.pixels.end(), 0u), 900);
    EXPECT_EQ(TablesOf(twin.engine).sumLength, length);
    EXPECT_TRUE(twin.engine.AdjustColor(0));
    EXPECT_EQ(TablesOf(twin.engine).opacitySums, nullptr);
    EXPECT_TRUE(twin.engine.SetVisible(true, 0));
    EXPECT_EQ(TablesOf(twin.engine).opacitySums, nullptr);
    EXPECT_TRUE(twin.engine.AdjustColor(0));
    EXPECT_EQ(TablesOf(twin.engine).sumLength, length);
    ExpectDrawnAlike(twin);
}

TEST(Appearance, OfAnEmptyEngineIsKeptUntilAVolumeComes)
{
    Engine3D engine;
    EXPECT_TRUE(engine.AdjustColor(100)); // nothing to move
    const TestTransfer tissue = TissueTransfer();
    EXPECT_TRUE(engine.SetPalette(tissue.palette));
    EXPECT_EQ(ValuesOf(engine), (std::vector<int>{-200, 60, 300, 1200}));
    EXPECT_TRUE(engine.AdjustColor(5));
    EXPECT_EQ(ValuesOf(engine), (std::vector<int>{-195, 65, 305, 1205}));
    EXPECT_TRUE(engine.SetOpacity(0.5f, 0));
    const TestVolume volume = MakePatient();
    ASSERT_TRUE(engine.InitData(volume.data));
    EXPECT_EQ(ValuesOf(engine), (std::vector<int>{145, 264, 336, 1448}));
    EXPECT_EQ(HostPalette(engine).opacity, 1.0f);
    ASSERT_NE(TablesOf(engine).entries[0], nullptr);
    EXPECT_EQ(TablesOf(engine).entries[0]->opacity, 1.0f);
}

TEST(Appearance, RecordSurvivesClearAndTablesDoNot)
{
    Twin twin(MakePatient());
    twin.SetPalette(TissueTransfer().palette, 0);
    twin.SetPalette(TissueTransfer().palette, 40);
    EXPECT_TRUE(twin.engine.SetOpacity(0.5f, 0));
    twin.engine.Clear();
    ExpectSameTables(TablesOf(twin.engine), VolumePalette{});
    EXPECT_EQ(ValuesOf(twin.engine), (std::vector<int>{-200, 60, 300, 1200}));
    EXPECT_EQ(HostPalette(twin.engine).opacity, 0.5f);
    EXPECT_TRUE(twin.engine.SetOpacity(0.25f, 40)); // no table any more
    ASSERT_TRUE(twin.engine.InitData(twin.volume.data));
    EXPECT_EQ(TablesOf(twin.engine).entries[40], nullptr);
}
} // namespace corvane::tests
