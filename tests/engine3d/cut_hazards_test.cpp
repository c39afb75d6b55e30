#include "imaging_twin.h"
#include "plain_cut.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

// Drawings and selections that make no sense, or are larger than a number.
namespace corvane::tests
{
namespace
{
constexpr PnImageParam kRegion = {8, 9, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}};

TestVolume MakeBlank(int sizeX, int sizeY, int sizeZ)
{
    return MakeVolume(sizeX, sizeY, sizeZ, [](int, int, int) { return 0; });
}

TestLabels Marked(int sizeX, int sizeY, int sizeZ)
{
    return MakeLabels(sizeX, sizeY, sizeZ, [](int, int, int) { return 0xA5; });
}

bool IsUntouched(const TestLabels& labels) { return CountOf(labels, 0xA5) == int64_t(9) * 8 * 7; }
} // namespace

TEST(CutFillHazards, IsRefusedWithoutAVolumeAndForAResultOfOtherSizes)
{
    const TestVolume volume = MakeBlank(9, 8, 7);
    const TestRegion region(kRegion, 1);
    TestLabels result = Marked(9, 8, 7);
    Engine3D engine;
    EXPECT_FALSE(engine.CutFill(region.image, result.mark, 1));
    ASSERT_TRUE(engine.InitData(volume.data));
    for (const int axis : {0, 1, 2})
        for (const uint32_t change : {1u, 0xFFFFFFFFu, 0x80000000u})
        {
            KsVolumeMark other = result.mark;
            (axis == 0 ? other.sizeX : axis == 1 ? other.sizeY : other.sizeZ) += change;
            EXPECT_FALSE(engine.CutFill(region.image, other, 1));
        }
    KsVolumeMark sliceless = result.mark;
    sliceless.slices = nullptr;
    EXPECT_FALSE(engine.CutFill(region.image, sliceless, 1));
    std::vector<uint8_t*> gap = result.slices;
    gap[6] = nullptr;
    KsVolumeMark incomplete = result.mark;
    incomplete.slices = gap.data();
    EXPECT_FALSE(engine.CutFill(region.image, incomplete, 1));
    KsImageMark bufferless = region.image;
    bufferless.labels = nullptr;
    EXPECT_FALSE(engine.CutFill(bufferless, result.mark, 1));
    EXPECT_TRUE(IsUntouched(result));
    EXPECT_TRUE(engine.CutFill(region.image, result.mark, 1));
    result = Marked(9, 8, 7);
    engine.Clear();
    EXPECT_FALSE(engine.CutFill(region.image, result.mark, 1));
    EXPECT_TRUE(IsUntouched(result));
}

TEST(CutFillHazards, LabelsThatTheHostTookAwayAreRefused)
{
    const TestVolume volume = MakeBlank(9, 8, 7);
    const TestRegion region(kRegion, 1);
    TestLabels result = Marked(9, 8, 7);
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    uint8_t* const slice = engine.GetMarkData()->slices[3];
    engine.GetMarkData()->slices[3] = nullptr;
    EXPECT_FALSE(engine.CutFill(region.image, result.mark, 1));
    EXPECT_TRUE(IsUntouched(result));
    engine.GetMarkData()->slices[3] = slice;
    EXPECT_TRUE(engine.CutFill(region.image, result.mark, 1));
    EXPECT_EQ(CountOf(result, 1), 9 * 8 * 7);
}

// Its first byte does not exist, although what stands less than a pixel before the first would fall on it.
TEST(CutFillHazards, ARegionWithoutRowsOrColumnsSelectsNothing)
{
    const TestVolume volume = MakeBlank(9, 8, 7);
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    uint8_t drawn = 1;
    for (const auto& [rows, columns] : {std::pair{0u, 9u}, {9u, 0u}, {0u, 0u}})
        for (const double shift : {0.0, 0.5, 7.5})
        {
            KsImageMark region = {&drawn, kRegion};
            region.param.rows = rows;
            region.param.columns = columns;
            region.param.position[0] = region.param.position[1] = shift;
            TestLabels result = Marked(9, 8, 7);
            EXPECT_TRUE(engine.CutFill(region, result.mark, 1));
            EXPECT_EQ(CountOf(result, 0), 9 * 8 * 7) << rows << " x " << columns << " at " << shift;
        }
}

TEST(CutFillHazards, RegionsOfBillionsOfRowsAreRefused)
{
    const TestVolume volume = MakeBlank(9, 8, 7);
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    TestLabels result = Marked(9, 8, 7);
    uint8_t drawn = 1;
    for (const bool rows : {false, true})
    {
        KsImageMark region = {&drawn, kRegion};
        (rows ? region.param.rows : region.param.columns) = 0x80000000u;
        EXPECT_FALSE(engine.CutFill(region, result.mark, 1));
    }
    EXPECT_TRUE(IsUntouched(result));
}

TEST(CutFillHazards, GeometryThatIsNoGeometrySelectsWhatThePlainVersionDoes)
{
    const float nan = NAN, infinity = INFINITY;
    for (const float bad : {nan, infinity, -infinity, 0.0f, -0.0f, -1.0f, 1e-38f, 3e38f})
    {
        for (int field = 0; field < 26; ++field)
        {
            SCOPED_TRACE(testing::Message() << bad << " in field " << field);
            TestVolume volume = MakeBlank(9, 8, 7);
            TestRegion region(kRegion, 1);
            if (field < 11)
            {
                const double number = double(bad);
                std::memcpy(reinterpret_cast<char*>(&region.image.param.rowSpacing) + 8 * field, &number, 8);
            }
            else
                std::memcpy(reinterpret_cast<char*>(volume.data.spacing) + 4 * (field - 11), &bad, 4);
            Engine3D engine;
            if (!engine.InitData(volume.data))
                continue;
            TestLabels result = Marked(9, 8, 7);
            EXPECT_TRUE(engine.CutFill(region.image, result.mark, 1));
            ExpectSameLabels(result, PlainCut(volume.data, *engine.GetMarkData(), {true}, region.image, 1));
        }
    }
}

// 2^24 + 1 is no number of single precision: its last column is 2^24, which is one.
TEST(CutFillHazards, TheLastColumnOfAVeryLongRegionIsReached)
{
    TestVolume volume = MakeBlank(18, 4, 4);
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    TestRegion region({1, 16777217, 1.0 / 1048576, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}}, 0);
    region.drawn[16777216] = 1; // 16 mm
    TestLabels result = MakeLabels(18, 4, 4, [](int, int, int) { return 0; });
    EXPECT_TRUE(engine.CutFill(region.image, result.mark, 1));
    ExpectSameLabels(result, MakeLabels(18, 4, 4, [](int i, int j, int) { return i == 16 && j == 0; }));
}

// The result is cleared before labels are read, so all of them are 0.
TEST(CutFillHazards, TheEnginesOwnLabelsMayBeTheResult)
{
    const TestVolume volume = MakeBlank(9, 8, 7);
    const TestRegion region({4, 3, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}}, 1);
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    KsVolumeMark* const mark = engine.GetMarkData();
    for (uint32_t k = 0; k < 7; ++k)
        std::fill_n(mark->slices[k], 72, uint8_t(64));
    EXPECT_TRUE(engine.CutFill(region.image, *mark, 5));
    for (uint32_t k = 0; k < 7; ++k)
        for (int n = 0; n < 72; ++n)
            ASSERT_EQ(mark->slices[k][n], n % 9 < 3 && n / 9 < 4 ? 5 : 0);
}
} // namespace corvane::tests
