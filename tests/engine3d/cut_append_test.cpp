#include "engine3d/label_volume.h"
#include "imaging_twin.h"
#include "plain_cut.h"

#include <algorithm>
#include <cmath>

// Cutting away what is selected.
namespace corvane::tests
{
namespace
{
TestLabels CopyOf(const KsVolumeMark& mark)
{
    return MakeLabels(int(mark.sizeX), int(mark.sizeY), int(mark.sizeZ),
                      [&](int i, int j, int k) { return mark.slices[k][size_t(j) * mark.sizeX + size_t(i)]; });
}

TestLabels Everything(const KsVolumeData& volume, int value)
{
    return MakeLabels(volume.sizeX, volume.sizeY, volume.sizeZ, [=](int, int, int) { return value; });
}
} // namespace

TEST(CutAppend, SetsTheCutBitAndNoOther)
{
    Twin twin(MakePatient());
    twin.SetLabels(MakeLabels(42, 36, 28, [](int i, int j, int k) { return i * 7 + j * 5 + k; })); // every byte
    const TestLabels selection = MakeLabels(42, 36, 28, [](int i, int j, int k) { return (i + j + k) % 3 * 127; });
    EXPECT_TRUE(twin.engine.CutAppend(selection.mark));
    ExpectSameLabels(CopyOf(*twin.engine.GetMarkData()), MakeLabels(42, 36, 28,
                                                                    [](int i, int j, int k)
                                                                    {
                                                                        const int label = (i * 7 + j * 5 + k) % 256;
                                                                        return (i + j + k) % 3 ? label | 64 : label;
                                                                    }));
}

TEST(CutAppend, ShowsInTheNextPicture)
{
    Twin twin(MakePatient());
    twin.SetPalette(TissueTransfer().palette, 0);
    const TestImage before = RenderingOf(twin.engine, 40, 40);
    const TestLabels half = MakeLabels(42, 36, 28, [](int i, int, int) { return i < 21; });
    EXPECT_TRUE(twin.engine.CutAppend(half.mark));
    const TestLabels cut = MakeLabels(42, 36, 28, [](int i, int, int) { return i < 21 ? 64 : 0; });
    twin.render.SetVolumeMark(cut.mark);
    const TestImage after = RenderingOf(twin.engine, 40, 40);
    ExpectSamePixels(after, RenderingOf(twin.render, before.image.param));
    EXPECT_NE(after.pixels, before.pixels);
    EXPECT_TRUE(twin.engine.CutAppend(Everything(twin.volume.data, 1).mark));
    const TestImage gone = RenderingOf(twin.engine, 40, 40);
    EXPECT_EQ(std::count(gone.pixels.begin(), gone.pixels.end(), 0u), 1600);
}

// The labels were edited in place and nobody was told; a selection of nothing tells the renderers.
TEST(CutAppend, OfNothingStillHandsTheLabelsOn)
{
    Twin twin(MakePatient());
    KsVolumeMark* const mark = twin.engine.GetMarkData();
    for (uint32_t k = 0; k < mark->sizeZ; ++k)
        std::fill_n(mark->slices[k], mark->sizeX * mark->sizeY, uint8_t(3)); // a label without tables
    EXPECT_TRUE(twin.engine.CutAppend(Everything(twin.volume.data, 0).mark));
    EXPECT_EQ(CountOf(CopyOf(*mark), 3), 42 * 36 * 28);
    const TestImage image = RenderingOf(twin.engine, 30, 30);
    EXPECT_EQ(std::count(image.pixels.begin(), image.pixels.end(), 0u), 900);
}

TEST(CutAppend, OfOtherSizesOrWithoutSlicesIsRefusedAndChangesNothing)
{
    Twin twin(MakePatient());
    const TestLabels before = MakeLumps(twin.volume.data);
    twin.SetLabels(MakeLumps(twin.volume.data));
    std::filesystem::remove(ScratchFolder::kDumpName);
    const TestLabels all = Everything(twin.volume.data, 1);
    for (const int axis : {0, 1, 2})
        for (const uint32_t change : {1u, 0xFFFFFFFFu, 0x80000000u})
        {
            KsVolumeMark other = all.mark;
            (axis == 0 ? other.sizeX : axis == 1 ? other.sizeY : other.sizeZ) += change;
            EXPECT_FALSE(twin.engine.CutAppend(other));
        }
    KsVolumeMark sliceless = all.mark;
    sliceless.slices = nullptr;
    EXPECT_FALSE(twin.engine.CutAppend(sliceless));
    ExpectSameLabels(CopyOf(*twin.engine.GetMarkData()), before);
    EXPECT_FALSE(std::filesystem::exists(ScratchFolder::kDumpName)); // the renderer was not called
}

TEST(CutAppend, BeforeAVolumeAndAfterClearIsRefused)
{
    const TestVolume volume = MakePatient();
    const TestLabels all = Everything(volume.data, 1);
    Engine3D engine;
    EXPECT_FALSE(engine.CutAppend(all.mark));
    EXPECT_FALSE(engine.CutAppend({}));
    ASSERT_TRUE(engine.InitData(volume.data));
    engine.Clear();
    EXPECT_FALSE(engine.CutAppend(all.mark));
    EXPECT_FALSE(engine.CutAppend({}));
}

TEST(CutAppend, SlicesThatAreMissingOnEitherSideAreLeftOut)
{
    Twin twin(MakePatient());
    TestLabels all = Everything(twin.volume.data, 1);
    all.slices[2] = nullptr;
    KsVolumeMark* const mark = twin.engine.GetMarkData();
    uint8_t* const slice = mark->slices[4];
    mark->slices[4] = nullptr;
    EXPECT_TRUE(twin.engine.CutAppend(all.mark));
    mark->slices[4] = slice;
    ExpectSameLabels(CopyOf(*mark), MakeLabels(42, 36, 28, [](int, int, int k) { return k == 2 || k == 4 ? 0 : 64; }));
}

TEST(CutAppend, TheEnginesOwnLabelsMayBeTheSelection)
{
    Twin twin(MakePatient());
    twin.SetLabels(MakeLabels(42, 36, 28, [](int i, int, int) { return i % 3; }));
    EXPECT_TRUE(twin.engine.CutAppend(*twin.engine.GetMarkData()));
    ExpectSameLabels(CopyOf(*twin.engine.GetMarkData()),
                     MakeLabels(42, 36, 28, [](int i, int, int) { return i % 3 ? i % 3 + 64 : 0; }));
}

TEST(CutSubtractAndClear, DoNothing)
{
    Twin twin(MakePatient());
    const TestLabels all = Everything(twin.volume.data, 1);
    EXPECT_TRUE(twin.engine.CutAppend(all.mark));
    EXPECT_FALSE(twin.engine.CutSubtract(all.mark));
    EXPECT_FALSE(twin.engine.CutSubtract({}));
    twin.engine.CutClear();
    EXPECT_EQ(CountOf(CopyOf(*twin.engine.GetMarkData()), 64), 42 * 36 * 28);
    const TestImage gone = RenderingOf(twin.engine, 30, 30);
    EXPECT_EQ(std::count(gone.pixels.begin(), gone.pixels.end(), 0u), 900);
    ASSERT_TRUE(twin.engine.InitData(twin.volume.data)); // the way back
    EXPECT_EQ(CountOf(CopyOf(*twin.engine.GetMarkData()), 0), 42 * 36 * 28);
    ExpectSamePixels(RenderingOf(twin.engine, 30, 30), RenderingOf(twin.render, PlaneOf(twin.engine, 30, 30)));
}

// From drawing to hole: a disc on the picture of a block leaves a hole there, and what was cut is not selected again.
TEST(Cutting, LeavesAHoleWhereTheDiscWasDrawn)
{
    const ScratchFolder folder;
    const TestVolume volume =
        MakeVolume(40, 40, 40,
                   [](int i, int j, int k) {
                       return std::min({i, j, k}) >= 5 && std::max({i, j, k}) <= 34 ? 1000 : -1000;
                   });
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    engine.RotateH(0.2f);
    engine.RotateV(0.3f);
    constexpr int kPixels = 128;
    TestRegion disc(PlaneOf(engine, kPixels, kPixels));
    const auto radius = [](int row, int column) { return std::hypot(row - 64.0, column - 64.0); };
    for (int row = 0; row < kPixels; ++row)
        for (int column = 0; column < kPixels; ++column)
            disc.At(row, column) = radius(row, column) < 15;
    const TestImage before = RenderingOf(engine, kPixels, kPixels);
    TestLabels selection = Everything(volume.data, 9);
    ASSERT_TRUE(engine.CutFill(disc.image, selection.mark, 1));
    ASSERT_TRUE(engine.CutAppend(selection.mark));
    const TestImage after = RenderingOf(engine, kPixels, kPixels);
    // 63.5 mm fill 128 pixels, so a voxel is two pixels wide and the border of the hole is ragged by as much.
    for (int row = 0; row < kPixels; ++row)
        for (int column = 0; column < kPixels; ++column)
        {
            const int coverage = int(after.At(row, column) & 0xFF);
            if (radius(row, column) < 15 - 4)
            {
                ASSERT_EQ(coverage, 0) << row << ", " << column;
            }
            else if (radius(row, column) > 15 + 4)
            {
                ASSERT_EQ(after.At(row, column), before.At(row, column)) << row << ", " << column;
            }
        }
    EXPECT_GT(before.At(64, 64) & 0xFF, 200u);
    ASSERT_TRUE(engine.CutFill(disc.image, selection.mark, 1));
    EXPECT_EQ(CountOf(selection, 1), 0);
}

TEST(LabelVolumes, HoldZerosForEveryVoxelAndNothingWithoutVoxels)
{
    const TestVolume volume = MakePatient();
    engine3d::LabelVolume labels;
    EXPECT_EQ(labels.Record().slices, nullptr);
    labels.Build(&volume.data);
    ASSERT_NE(labels.Record().slices, nullptr);
    EXPECT_EQ(CountOf(CopyOf(labels.Record()), 0), 42 * 36 * 28);
    std::vector<KsVolumeData> nothings(7, volume.data);
    nothings[0].sizeX = nothings[1].sizeY = nothings[2].sizeZ = 0;
    nothings[3].sizeX = nothings[4].sizeY = nothings[5].sizeZ = -3;
    nothings[6].slices = nullptr;
    std::vector<const KsVolumeData*> all = {nullptr};
    for (const KsVolumeData& nothing : nothings)
        all.push_back(&nothing);
    for (const KsVolumeData* const nothing : all)
    {
        labels.Build(&volume.data);
        labels.Record().slices[1][1] = 7;
        labels.Build(nothing);
        EXPECT_EQ(labels.Record().slices, nullptr);
        EXPECT_EQ(labels.Record().sizeX, 42u); // sizes stay
        EXPECT_EQ(labels.Record().sizeY, 36u);
        EXPECT_EQ(labels.Record().sizeZ, 28u);
    }
    labels.Build(&volume.data);
    EXPECT_EQ(CountOf(CopyOf(labels.Record()), 0), 42 * 36 * 28);
    labels.Release();
    EXPECT_EQ(labels.Record().slices, nullptr);
}
} // namespace corvane::tests
