#include "imaging_twin.h"
#include "plain_cut.h"
#include "tests/mpr/random_cases.h"

#include <algorithm>

// What a drawn region selects.
namespace corvane::tests
{
namespace
{
// An engine with a volume, labels, and tables for some of them.
struct Cutter
{
    Cutter(int sizeX, int sizeY, int sizeZ) : volume(MakeVolume(sizeX, sizeY, sizeZ, [](int, int, int) { return 0; }))
    {
    }

    // After the volume's record has its final geometry.
    void Load()
    {
        EXPECT_TRUE(engine.InitData(volume.data));
        visible = {true};
    }

    void LoadWithLabels(Random& random)
    {
        Load();
        const KsVolumeMark& mark = *engine.GetMarkData();
        for (uint32_t k = 0; k < mark.sizeZ; ++k)
            for (uint32_t n = 0; n < mark.sizeX * mark.sizeY; ++n)
                mark.slices[k][n] = uint8_t(random.Below(3) ? random.Below(256) : 0);
        for (int label = 1; label < 64; label += random.Between(1, 3))
        {
            SetPaletteOf(engine, DefaultTransfer().palette, label);
            visible[size_t(label)] = random.Below(4) != 0;
            EXPECT_TRUE(engine.SetVisible(visible[size_t(label)], label));
        }
        visible[0] = random.Below(5) != 0;
        EXPECT_TRUE(engine.SetVisible(visible[0], 0));
    }

    TestLabels Blank(uint8_t filling = 0) const
    {
        return MakeLabels(volume.data.sizeX, volume.data.sizeY, volume.data.sizeZ,
                          [=](int, int, int) { return filling; });
    }

    TestLabels Fill(const TestRegion& region, uint8_t value = 1)
    {
        TestLabels result = Blank(0xA5);
        EXPECT_TRUE(engine.CutFill(region.image, result.mark, value));
        return result;
    }

    TestLabels FillPlainly(const TestRegion& region, uint8_t value = 1)
    {
        return PlainCut(volume.data, *engine.GetMarkData(), visible, region.image, value);
    }

    TestVolume volume;
    Engine3D engine;
    Visible visible = {};
};

// Transverse, one pixel of 1 mm per voxel of 1 mm.
PnImageParam Transverse(uint32_t rows, uint32_t columns)
{
    return {rows, columns, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, -50}};
}
} // namespace

TEST(CutFill, SelectsWhatStandsBeforeAndBehindTheDrawing)
{
    Cutter cutter(9, 8, 7);
    cutter.Load();
    TestRegion region(Transverse(8, 9));
    region.At(2, 3) = 1;
    region.At(5, 8) = 255;
    for (const double z : {-50.0, 3.0, 50.0})
    {
        region.image.param.position[2] = z;
        const TestLabels selected = cutter.Fill(region, 77);
        ExpectSameLabels(
            selected,
            MakeLabels(9, 8, 7, [](int i, int j, int) { return (i == 3 && j == 2) || (i == 8 && j == 5) ? 77 : 0; }));
    }
}

// Pixels truncate, so pixel 0 takes what stands up to a pixel before it.
TEST(CutFill, CountsLessThanOnePixelBeforeTheFirstAsTheFirst)
{
    Cutter cutter(6, 6, 2);
    cutter.Load();
    TestRegion region(Transverse(3, 3), 1);
    const auto selectedFrom = [&](double x, double y)
    {
        region.image.param.position[0] = x;
        region.image.param.position[1] = y;
        return cutter.Fill(region);
    };
    const auto box = [](int i0, int i1, int j0, int j1)
    { return MakeLabels(6, 6, 2, [=](int i, int j, int) { return i >= i0 && i <= i1 && j >= j0 && j <= j1; }); };
    ExpectSameLabels(selectedFrom(1, 1), box(1, 3, 1, 3));
    ExpectSameLabels(selectedFrom(1.5, 1), box(1, 4, 1, 3)); // -0.5 is pixel 0, 2.5 pixel 2
    ExpectSameLabels(selectedFrom(1, 1.5), box(1, 3, 1, 4));
    ExpectSameLabels(selectedFrom(1.9375, 1.0625), box(1, 4, 1, 4));
    ExpectSameLabels(selectedFrom(2, 3), box(2, 4, 3, 5)); // -1 is outside, and so is 3
}

// Voxel i stands at i times the spacing of y, voxel j at j times that of x.
TEST(CutFill, ExchangesTheSpacingsInThePlaneOfVoxels)
{
    Cutter cutter(8, 8, 2);
    cutter.volume.data.spacing[0] = 2;
    cutter.volume.data.spacing[1] = 3;
    cutter.Load();
    const TestRegion region(Transverse(7, 7), 1); // 0 to 6 mm both ways
    ExpectSameLabels(cutter.Fill(region), MakeLabels(8, 8, 2, [](int i, int j, int) { return i <= 2 && j <= 3; }));
}

// Columns go with the first spacing, rows with the second.
TEST(CutFill, ExchangesTheSpacingsOfTheRegion)
{
    Cutter cutter(12, 12, 2);
    cutter.Load();
    TestRegion region(Transverse(4, 4), 1);
    region.image.param.rowSpacing = 2;
    region.image.param.columnSpacing = 3;
    ExpectSameLabels(cutter.Fill(region), MakeLabels(12, 12, 2, [](int i, int, int) { return i < 8; }));
    TestRegion wide(Transverse(2, 4), 1);
    wide.image.param = {2, 4, 2, 3, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}};
    ExpectSameLabels(cutter.Fill(wide), MakeLabels(12, 12, 2, [](int i, int j, int) { return i < 8 && j < 6; }));
}

TEST(CutFill, FollowsATiltedStack)
{
    Cutter cutter(10, 10, 5);
    const float slice[3] = {0.6f, 0, 0.8f};
    std::copy_n(slice, 3, cutter.volume.data.sliceDirection);
    cutter.volume.data.spacing[2] = 5; // 3 mm to the left and 4 mm up per slice
    cutter.Load();
    TestRegion region(Transverse(10, 10));
    for (int row = 0; row < 10; ++row)
        region.At(row, 6) = 1;
    region.image.param.position[0] = -0.25; // clear of rounding
    ExpectSameLabels(cutter.Fill(region), MakeLabels(10, 10, 5, [](int i, int, int k) { return i + 3 * k == 6; }));
}

TEST(CutFill, LeavesOutHiddenLabelsAndWhatIsCutAlready)
{
    Cutter cutter(256, 2, 1); // voxel i has label byte i
    cutter.Load();
    for (int i = 0; i < 256; ++i)
        cutter.engine.GetMarkData()->slices[0][i] = uint8_t(i);
    SetPaletteOf(cutter.engine, DefaultTransfer().palette, 5);
    SetPaletteOf(cutter.engine, DefaultTransfer().palette, 63);
    const TestRegion region(Transverse(1, 256), 1);
    // Bit 7 plays no part; labels without tables are not visible.
    ExpectSameLabels(cutter.Fill(region),
                     MakeLabels(256, 2, 1,
                                [](int i, int j, int) {
                                    return j == 0 && (i == 0 || i == 5 || i == 63 || i == 128 || i == 133 || i == 191);
                                }));
    EXPECT_TRUE(cutter.engine.SetVisible(false, 5));
    ExpectSameLabels(
        cutter.Fill(region),
        MakeLabels(256, 2, 1, [](int i, int j, int) { return j == 0 && (i == 0 || i == 63 || i == 128 || i == 191); }));
    EXPECT_TRUE(cutter.engine.SetVisible(false, 0));
    EXPECT_TRUE(cutter.engine.SetVisible(false, 63));
    EXPECT_EQ(CountOf(cutter.Fill(region), 0), 512);
}

TEST(CutFill, ChangesNeitherLabelsNorPictures)
{
    Twin twin(MakePatient());
    const KsVolumeMark& mark = *twin.engine.GetMarkData();
    const TestImage before = RenderingOf(twin.engine, 30, 30);
    const TestRegion region(before.image.param, 1);
    TestLabels result = MakeLabels(42, 36, 28, [](int, int, int) { return 0; });
    EXPECT_TRUE(twin.engine.CutFill(region.image, result.mark, 64));
    EXPECT_GT(CountOf(result, 64), 0);
    for (uint32_t k = 0; k < mark.sizeZ; ++k)
        EXPECT_EQ(std::count_if(mark.slices[k], mark.slices[k] + 42 * 36, [](uint8_t label) { return label; }), 0);
    twin.engine.UpdateMarkData();
    ExpectSamePixels(RenderingOf(twin.engine, 30, 30), before);
}

TEST(CutFill, WritesAnyValueAndClearsTheRest)
{
    Cutter cutter(20, 20, 3);
    cutter.Load();
    TestRegion region(Transverse(20, 20));
    region.At(4, 4) = 9;
    for (const uint8_t value : {0, 1, 64, 255})
        ExpectSameLabels(cutter.Fill(region, value),
                         MakeLabels(20, 20, 3, [=](int i, int j, int) { return i == 4 && j == 4 ? value : 0; }));
}

TEST(CutFill, BesideTheVolumeSelectsNothing)
{
    Cutter cutter(20, 20, 3);
    cutter.Load();
    for (const double x : {-21.0, 20.0, 1e6, -1e30})
        for (const int axis : {0, 1})
        {
            TestRegion region(Transverse(20, 20), 1);
            region.image.param.position[axis] = x;
            EXPECT_EQ(CountOf(cutter.Fill(region), 0), 1200);
        }
}

TEST(CutFill, IsThatOfThePlainVersion)
{
    int selectedSome = 0;
    for (uint32_t seed = 0; seed < 120; ++seed)
    {
        SCOPED_TRACE(seed);
        Random random(seed);
        Cutter cutter(random.Between(1, seed % 4 ? 60 : 700), random.Between(1, 30), random.Between(1, 20));
        PlaceAtRandom(random, cutter.volume.data);
        cutter.LoadWithLabels(random);
        const uint8_t value = uint8_t(random.Between(1, 255));
        for (int again = 0; again < 3; ++again)
        {
            const TestRegion region = RandomRegion(random, cutter.volume.data);
            const TestLabels expected = cutter.FillPlainly(region, value);
            ExpectSameLabels(cutter.Fill(region, value), expected);
            selectedSome += CountOf(expected, value) > 0;
        }
    }
    EXPECT_GT(selectedSome, 150); // of 360
}

// Every voxel stands on the border of two pixels, so the last bit of every number decides to which it belongs.
TEST(CutFill, RoundsOnTheBordersOfPixelsLikeThePlainVersion)
{
    for (uint32_t seed = 0; seed < 40; ++seed)
    {
        SCOPED_TRACE(seed);
        Random random(seed);
        Cutter cutter(40, 30, 12);
        KsVolumeData& volume = cutter.volume.data;
        PlaceAtRandom(random, volume);
        const core::Vec3f row = core::VecOf(volume.rowDirection), column = core::VecOf(volume.columnDirection);
        core::Store(core::Cross(row, column), volume.sliceDirection);
        cutter.Load();
        PnImageParam param = {30, 40, double(volume.spacing[1]), double(volume.spacing[0]), {}, {}, {}};
        core::Store(core::ToDouble(row), param.rowDirection);
        core::Store(core::ToDouble(column), param.columnDirection);
        const int i = random.Between(-5, 5), j = random.Between(-5, 5);
        core::Store(core::ToDouble(core::VecOf(volume.origin)) + i * param.rowSpacing * core::ToDouble(row) +
                        j * param.columnSpacing * core::ToDouble(column),
                    param.position);
        TestRegion region(param);
        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < 40; ++x)
                region.At(y, x) = (x + y) % 2; // a chequerboard
        ExpectSameLabels(cutter.Fill(region), cutter.FillPlainly(region));
    }
}

// At 2^18 voxels work starts to be shared; rows end anywhere in a run of 256 voxels.
TEST(CutFill, IsTheSameWhenWorkIsShared)
{
    const int sizes[][3] = {{64, 64, 63},   {64, 64, 64},   {64, 64, 65},   {257, 63, 47}, {513, 31, 40},
                            {255, 1, 1500}, {1, 300, 1000}, {300000, 1, 1}, {70000, 2, 2}};
    uint32_t seed = 0;
    for (const auto& [sizeX, sizeY, sizeZ] : sizes)
    {
        SCOPED_TRACE(testing::Message() << sizeX << " x " << sizeY << " x " << sizeZ);
        Random random(++seed);
        Cutter cutter(sizeX, sizeY, sizeZ);
        PlaceAtRandom(random, cutter.volume.data);
        cutter.LoadWithLabels(random);
        for (int again = 0; again < 2; ++again)
        {
            const TestRegion region = RandomRegion(random, cutter.volume.data);
            ExpectSameLabels(cutter.Fill(region), cutter.FillPlainly(region));
        }
    }
}
} // namespace corvane::tests
