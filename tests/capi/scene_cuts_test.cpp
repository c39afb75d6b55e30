#include "c_handles.h"
#include "corvane/Engine3D.h"
#include "corvane/VolumeUtil.h"
#include "tests/core/random.h"

#include <gtest/gtest.h>

#include <cmath>

// Cuts of a scene against a plain version: every voxel's centre is placed, projected and tested against the outline.

namespace
{
using namespace corvane::tests;

struct Point
{
    double column, row;
};

using Outline = std::vector<Point>;

// Even-odd rule with a ray along a pixel row.
bool IsInside(const Outline& outline, Point place)
{
    bool inside = false;
    Point a = outline.back();
    for (const Point b : outline)
    {
        if ((a.row > place.row) != (b.row > place.row) &&
            place.column < a.column + (b.column - a.column) * (place.row - a.row) / (b.row - a.row))
            inside = !inside;
        a = b;
    }
    return inside;
}

Point PixelOf(const KsVolumeData& v, const PnImageParam& plane, int i, int j, int k)
{
    double patient[3], pixel[2];
    for (int axis = 0; axis < 3; ++axis)
        patient[axis] = double(v.origin[axis]) + double(i) * double(v.spacing[0]) * double(v.rowDirection[axis]) +
                        double(j) * double(v.spacing[1]) * double(v.columnDirection[axis]) +
                        double(k) * double(v.spacing[2]) * double(v.sliceDirection[axis]);
    VolumeUtil::PatientToImageCoords(plane, patient, pixel);
    return {pixel[0], pixel[1]};
}

// Which voxels a cut takes, as one byte each.
template <class IsTaken>
std::vector<uint8_t> Selection(const KsVolumeData& v, const IsTaken& isTaken)
{
    std::vector<uint8_t> selection;
    for (int k = 0; k < v.sizeZ; ++k)
        for (int j = 0; j < v.sizeY; ++j)
            for (int i = 0; i < v.sizeX; ++i)
                selection.push_back(isTaken(i, j, k));
    return selection;
}

CorvaneStatus CutPolygon(CorvaneScene* scene, const PnImageParam& plane, const Outline& outline, int32_t side,
                         uint64_t* count = nullptr)
{
    return corvane_scene_cut_polygon(scene, &plane, &outline.front().column, outline.size(), side, count);
}

size_t CountOf(const std::vector<uint8_t>& bytes)
{
    return size_t(std::count_if(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte != 0; }));
}

std::vector<uint8_t> CutBits(const std::vector<uint8_t>& labels)
{
    std::vector<uint8_t> bits;
    for (const uint8_t label : labels)
        bits.push_back(label >> 6 & 1);
    return bits;
}

// An outline with a notch and a crossing, corners at odd fractions of pixels.
const Outline kOutline = {{7.31, 4.17},   {41.73, 9.91},  {30.11, 22.37}, {44.03, 40.87},
                          {12.19, 33.53}, {25.77, 17.29}, {5.23, 36.71}};

TEST(SceneCuts, APolygonTakesTheVoxelsThatProjectIntoItFromAnyView)
{
    const TestVolume volume = MakeTiltedVolume();
    const CorvaneView views[] = {{CORVANE_FROM_FRONT, 0, 0, 0, 0.5f},
                                 {CORVANE_FROM_LEFT, 0.4f, -0.7f, 0.3f, 0.6f},
                                 {CORVANE_FROM_HEAD, -1.1f, 0.2f, 2.0f, 0.7f},
                                 {CORVANE_FROM_BACK, 0.05f, 0.9f, -0.4f, 0.4f}};
    for (const CorvaneView& view : views)
        for (const int32_t side : {CORVANE_INSIDE, CORVANE_OUTSIDE})
        {
            const Owned<CorvaneScene> scene = MakeScene(volume.data);
            const PnImageParam plane = PlaneOf(scene.get(), view, 45, 50);
            const std::vector<uint8_t> expected = Selection(
                volume.data, [&](int i, int j, int k)
                { return IsInside(kOutline, PixelOf(volume.data, plane, i, j, k)) == (side == CORVANE_INSIDE); });
            uint64_t count = 0;
            ASSERT_EQ(CutPolygon(scene.get(), plane, kOutline, side, &count), CORVANE_OK);
            EXPECT_EQ(count, CountOf(expected));
            EXPECT_GT(count, 300u);
            EXPECT_LT(count, expected.size() - 300);
            EXPECT_EQ(CutBits(LabelsOf(scene.get(), volume.data)), expected);
        }
}

TEST(SceneCuts, APolygonIsExactWhereRowsOfVoxelsAreSeenEndOn)
{
    TestVolume volume = MakeTiltedVolume();
    const float row[3] = {1, 0, 0}, column[3] = {0, 1, 0};
    std::copy_n(row, 3, volume.data.rowDirection);
    std::copy_n(column, 3, volume.data.columnDirection);
    // Once exactly along the rows, and once by a camera whose axes carry the rounding of its turn.
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    const PnImageParam exact = {45, 50, 0.6, 0.5, {0, 1, 0}, {0, 0, 1}, {-60, 10, 105}};
    const CorvaneView view = {CORVANE_FROM_FRONT, float(std::acos(0.0)), 0, 0, 0.4f};
    for (const PnImageParam& plane : {exact, PlaneOf(scene.get(), view, 45, 50)})
    {
        const std::vector<uint8_t> expected = Selection(
            volume.data, [&](int i, int j, int k) { return IsInside(kOutline, PixelOf(volume.data, plane, i, j, k)); });
        ASSERT_GT(CountOf(expected), 300u);
        ASSERT_EQ(CutPolygon(scene.get(), plane, kOutline, CORVANE_INSIDE), CORVANE_OK);
        EXPECT_EQ(CutBits(LabelsOf(scene.get(), volume.data)), expected);
        ASSERT_EQ(corvane_scene_undo(scene.get()), CORVANE_OK);
    }
}

// Voxels of 2 x 0.5 mm; a region of 10.5 x 4.2 mm from the first voxel's centre on holds 6 columns and 9 rows of them.
TEST(SceneCuts, VoxelsThatAreNotSquareAreCutWhereTheyLie)
{
    TestVolume volume = MakeVolume(20, 30, 5, [](int, int, int) { return 200; });
    volume.data.spacing[0] = 2.0f;
    volume.data.spacing[1] = 0.5f;
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    const PnImageParam plane = {100, 100, 0.25, 0.5, {1, 0, 0}, {0, 1, 0}, {0, 0, -3}};
    const Outline rectangle = {{-0.1, -0.1}, {10.5 / 0.5, -0.1}, {10.5 / 0.5, 4.2 / 0.25}, {-0.1, 4.2 / 0.25}};
    uint64_t count = 0;
    ASSERT_EQ(CutPolygon(scene.get(), plane, rectangle, CORVANE_INSIDE, &count), CORVANE_OK);
    EXPECT_EQ(count, 6u * 9u * 5u);
    const std::vector<uint8_t> expected = Selection(volume.data, [](int i, int j, int) { return i < 6 && j < 9; });
    EXPECT_EQ(CutBits(LabelsOf(scene.get(), volume.data)), expected);
}

TEST(SceneCuts, OnlyVisibleLabelsThatAreNotCutYetAreTaken)
{
    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    const std::vector<uint8_t> labels =
        Selection(volume.data, [](int i, int j, int k) { return (i / 3 + j / 4 + k) % 4; });
    ASSERT_EQ(corvane_scene_set_labels(scene.get(), labels.data(), labels.size()), CORVANE_OK);
    KsPalettePoint points[] = {{0, 0xFFFFFF, 1}, {100, 0xFFFFFF, 1}};
    KsPalette palette = PaletteOf(points);
    ASSERT_EQ(corvane_scene_set_palette(scene.get(), 1, &palette), CORVANE_OK);
    palette.visible = 0;
    ASSERT_EQ(corvane_scene_set_palette(scene.get(), 2, &palette), CORVANE_OK); // there, but hidden; 3 has none

    const PnImageParam plane = PlaneOf(scene.get(), {CORVANE_FROM_LEFT, 0.4f, -0.7f, 0.3f, 0.6f}, 45, 50);
    uint64_t first = 0, second = 0;
    ASSERT_EQ(CutPolygon(scene.get(), plane, kOutline, CORVANE_INSIDE, &first), CORVANE_OK);
    const std::vector<uint8_t> expected = Selection(
        volume.data, [&](int i, int j, int k) { return IsInside(kOutline, PixelOf(volume.data, plane, i, j, k)); });
    const std::vector<uint8_t> after = LabelsOf(scene.get(), volume.data);
    for (size_t n = 0; n < labels.size(); ++n)
        ASSERT_EQ(after[n], labels[n] + (expected[n] && labels[n] < 2 ? 64 : 0)) << n;

    ASSERT_EQ(CutPolygon(scene.get(), plane, kOutline, CORVANE_INSIDE, &second), CORVANE_OK);
    EXPECT_GT(first, 0u);
    EXPECT_EQ(second, 0u);
    size_t undoable = 0;
    ASSERT_EQ(corvane_scene_get_history(scene.get(), &undoable, nullptr, nullptr), CORVANE_OK);
    EXPECT_EQ(undoable, 1u); // a cut of nothing is no step
}

TEST(SceneCuts, AreCommittedAsEngine3DCommitsThem)
{
    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    const PnImageParam plane = PlaneOf(scene.get(), {CORVANE_FROM_LEFT, 0.4f, -0.7f, 0.3f, 0.6f}, 45, 50);
    ASSERT_EQ(CutPolygon(scene.get(), plane, kOutline, CORVANE_INSIDE), CORVANE_OK);

    TestLabels selection = MakeLabels(volume.data.sizeX, volume.data.sizeY, volume.data.sizeZ,
                                      [&](int i, int j, int k)
                                      { return IsInside(kOutline, PixelOf(volume.data, plane, i, j, k)) ? 1 : 0; });
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(volume.data) && engine.CutAppend(selection.mark));
    engine.Zoom(0.7f);
    std::vector<uint32_t> expected(50 * 70);
    PnImageRGB image = {};
    ASSERT_TRUE(engine.ImagingVR(50, 70, expected.data(), false, &image, 0));
    EXPECT_EQ(Rendered(scene.get(), image.param), expected);
    EXPECT_NE(Rendered(MakeScene(volume.data).get(), image.param), expected); // the cut is to be seen
}

TEST(SceneCuts, UndoAndRedoGiveEveryStateBack)
{
    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    const PnImageParam plane = PlaneOf(scene.get(), {CORVANE_FROM_FRONT, 0, 0, 0, 0.7f}, 45, 50);
    Random random(3);
    std::vector<std::vector<uint8_t>> states = {LabelsOf(scene.get(), volume.data)}; // a plain history of whole copies
    size_t now = 0, cuts = 0;
    for (int turn = 0; turn < 200; ++turn)
    {
        const int what = random.Below(10);
        if (what < 4)
        {
            Outline outline;
            for (int corner = 0; corner < 5; ++corner)
                outline.push_back({random.Real(0, 50), random.Real(0, 45)});
            uint64_t count = 0;
            if (what < 3)
                ASSERT_EQ(CutPolygon(scene.get(), plane, outline, CORVANE_INSIDE, &count), CORVANE_OK);
            else
                ASSERT_EQ(corvane_scene_restore(scene.get(), &count), CORVANE_OK);
            if (count > 0)
            {
                states.resize(++now);
                states.push_back(LabelsOf(scene.get(), volume.data));
                ++cuts;
            }
        }
        else if (what < 7)
        {
            const bool possible = now > 0;
            ASSERT_EQ(corvane_scene_undo(scene.get()), possible ? CORVANE_OK : CORVANE_ERROR_NO_STEP);
            now -= possible;
        }
        else
        {
            const bool possible = now + 1 < states.size();
            ASSERT_EQ(corvane_scene_redo(scene.get()), possible ? CORVANE_OK : CORVANE_ERROR_NO_STEP);
            now += possible;
        }
        ASSERT_EQ(LabelsOf(scene.get(), volume.data), states[now]) << "turn " << turn;
        size_t undoable = 0, redoable = 0;
        ASSERT_EQ(corvane_scene_get_history(scene.get(), &undoable, &redoable, nullptr), CORVANE_OK);
        ASSERT_EQ(undoable, now);
        ASSERT_EQ(redoable, states.size() - 1 - now);
    }
    EXPECT_GT(cuts, 20u);
}

TEST(SceneCuts, NewLabelsLeaveCutsAndTheirHistoryAlone)
{
    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    const std::vector<uint8_t> selection = Selection(volume.data, [](int i, int, int) { return i > 12; });
    ASSERT_EQ(corvane_scene_cut_selection(scene.get(), selection.data(), selection.size(), nullptr), CORVANE_OK);
    const std::vector<uint8_t> labels = Selection(volume.data, [](int i, int j, int k) { return (i + j + k) % 64; });
    ASSERT_EQ(corvane_scene_set_labels(scene.get(), labels.data(), labels.size()), CORVANE_OK);
    std::vector<uint8_t> expected = labels;
    for (size_t n = 0; n < expected.size(); ++n)
        expected[n] = uint8_t(expected[n] + (selection[n] ? 64 : 0));
    EXPECT_EQ(LabelsOf(scene.get(), volume.data), expected);
    ASSERT_EQ(corvane_scene_undo(scene.get()), CORVANE_OK);
    EXPECT_EQ(LabelsOf(scene.get(), volume.data), labels);

    std::vector<uint8_t> wrong = labels;
    wrong.back() = 64;
    EXPECT_EQ(corvane_scene_set_labels(scene.get(), wrong.data(), wrong.size()), CORVANE_ERROR_ARGUMENT);
    EXPECT_EQ(LabelsOf(scene.get(), volume.data), labels);
}

TEST(SceneCuts, TheHistoryForgetsItsOldestStepsBeyondItsLimit)
{
    const TestVolume volume = MakeTiltedVolume();
    const Owned<CorvaneScene> scene = MakeScene(volume.data);
    const auto cutColumn = [&](int column)
    {
        const std::vector<uint8_t> selection = Selection(volume.data, [=](int i, int, int) { return i == column; });
        ASSERT_EQ(corvane_scene_cut_selection(scene.get(), selection.data(), selection.size(), nullptr), CORVANE_OK);
    };
    size_t undoable = 0, redoable = 0, bytesOfOne = 0, bytes = 0;
    cutColumn(0);
    ASSERT_EQ(corvane_scene_get_history(scene.get(), &undoable, &redoable, &bytesOfOne), CORVANE_OK);
    EXPECT_GE(bytesOfOne, 2u * 26 * 22); // a gap and a length for each row of voxels
    EXPECT_LE(bytesOfOne, 2u * 26 * 22 + 256);
    ASSERT_EQ(corvane_scene_set_history_limit(scene.get(), 3 * bytesOfOne + 10), CORVANE_OK);
    for (int column = 1; column < 6; ++column)
        cutColumn(column);
    ASSERT_EQ(corvane_scene_get_history(scene.get(), &undoable, &redoable, &bytes), CORVANE_OK);
    EXPECT_EQ(undoable, 3u);
    EXPECT_LE(bytes, 3 * bytesOfOne + 10);
    while (corvane_scene_undo(scene.get()) == CORVANE_OK)
        ;
    const std::vector<uint8_t> expected = Selection(volume.data, [](int i, int, int) { return i < 3; });
    EXPECT_EQ(CutBits(LabelsOf(scene.get(), volume.data)), expected); // the oldest three stay cut
    ASSERT_EQ(corvane_scene_redo(scene.get()), CORVANE_OK);

    ASSERT_EQ(corvane_scene_set_history_limit(scene.get(), 0), CORVANE_OK);
    cutColumn(9);
    EXPECT_EQ(corvane_scene_undo(scene.get()), CORVANE_ERROR_NO_STEP);
    EXPECT_EQ(corvane_scene_redo(scene.get()), CORVANE_ERROR_NO_STEP);
    EXPECT_EQ(CutBits(LabelsOf(scene.get(), volume.data)),
              Selection(volume.data, [](int i, int, int) { return i < 4 || i == 9; }));
}
} // namespace
