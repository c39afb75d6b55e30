#include "host/numbers.h"
#include "host/palette_presets.h"
#include "host/phantom.h"
#include "host/plane.h"
#include "host/projection.h"
#include "host/view_rendering.h"
#include "host/work_elsewhere.h"
#include "read_testing.h"

#include <cstdlib>

namespace corvane::host
{
namespace
{
// A coarse phantom in a tilted scan. Of its labels only one is left, 64, where voxels are cut away.
Volume PhantomWithABiteTaken()
{
    Volume volume = MakePhantom("phantom:size=52x48x40,spacing=5.9x6.4x7.9,tilt=15");
    for (uint8_t& label : volume.labels)
        label = label == 5 ? 64 : 0; // the liver
    return volume;
}

// A palette for label 0, on request one for label 9, too. No voxel has that label, and its palette shows nothing: it
// must not touch the picture.
std::map<int, Palette> Palettes(bool forAnotherLabel, const Volume& volume)
{
    const Palette palette = PaletteOf(*PresetOf("muscle", volume), volume.valueSlope, volume.valueIntercept, 5.9);
    std::map<int, Palette> byLabel = {{0, palette}};
    if (forAnotherLabel)
    {
        byLabel[9] = palette;
        for (KsPalettePoint& point : byLabel[9].points)
            point.opacity = 0;
    }
    return byLabel;
}

// As the engine has it, so that a picture with this in its middle is not moved at all.
Vec3 MiddleOf(const VolumeView& volume)
{
    Engine3D engine;
    EXPECT_TRUE(engine.InitData(volume.Data()));
    float low[3], high[3];
    EXPECT_TRUE(engine.GetBoundingBox(low, high));
    return {0.5 * (double(low[0]) + double(high[0])), 0.5 * (double(low[1]) + double(high[1])),
            0.5 * (double(low[2]) + double(high[2]))};
}

bool SamePlace(const PnImageParam& a, const PnImageParam& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

const View kViews[] = {NamedView("anterior"), NamedView("superior"), Turned(NamedView("left"), 25, -35, 50)};

TEST(Scene, HasTheWantedPointInTheMiddleAndAllOfTheVolumeInView)
{
    Volume volume;
    volume.grid = ObliqueGrid(60, 50, 40, 15);
    volume.voxels.resize(volume.grid.VoxelCount());
    const VolumeView records(volume, {});
    Scene scene(records, 0xFF);
    const Corners corners = CornersOf(volume.grid);
    const Vec3 middle = IndexToPatient(volume.grid, {29.5, 24.5, 19.5}), other = middle + Vec3{10, -20, 5};
    for (const View& view : kViews)
        for (const auto& picture : {std::pair(200u, 300u), std::pair(300u, 200u), std::pair(255u, 255u)})
        {
            const uint32_t rows = picture.first, columns = picture.second;
            const double size = FittingPixelSize({view}, corners, rows, columns);
            const PnImageParam plane = scene.Aim({view, rows, columns, size, {}});
            EXPECT_EQ(plane.rows, rows);
            EXPECT_EQ(plane.columns, columns);
            EXPECT_NEAR(plane.rowSpacing, size, 1e-6 * size);
            EXPECT_EQ(plane.rowSpacing, plane.columnSpacing);
            ExpectNear(RowDirection(plane), RightOf(view), 1e-14, "right");
            ExpectNear(ColumnDirection(plane), DownOf(view), 1e-14, "down");
            double nearestEdge = INFINITY;
            for (const Vec3& corner : corners)
            {
                const Vec3 offset = corner - FirstPixel(plane);
                const double column = Dot(offset, RowDirection(plane)) / size;
                const double row = Dot(offset, ColumnDirection(plane)) / size;
                nearestEdge = std::min({nearestEdge, column, columns - 1 - column, row, rows - 1 - row});
                EXPECT_GT(Dot(offset, view.direction), 10) << "behind the plane";
            }
            EXPECT_GT(nearestEdge, 0);
            EXPECT_LT(nearestEdge, 8) << "it fills the picture";
            const PnImageParam moved = scene.Aim({view, rows, columns, size, other});
            const auto expectInTheMiddle = [&](Vec3 point, const PnImageParam& image)
            {
                const Vec3 offset = point - FirstPixel(image);
                EXPECT_NEAR(Dot(offset, RowDirection(image)) / size, 0.5 * columns, 1e-3);
                EXPECT_NEAR(Dot(offset, ColumnDirection(image)) / size, 0.5 * rows, 1e-3);
            };
            expectInTheMiddle(middle, plane);
            expectInTheMiddle(other, moved);
        }
}

TEST(Scene, RendersTheSamePixelsInTheEngineAndBesideIt)
{
    const Volume volume = PhantomWithABiteTaken();
    const VolumeView records(volume, {});
    const PaletteTables one(Palettes(false, volume)), two(Palettes(true, volume));
    ASSERT_TRUE(one.OnlyPalette());
    ASSERT_FALSE(two.OnlyPalette());
    ViewRenderer inEngine(records, one), beside(records, two);
    const Vec3 middle = MiddleOf(records);
    int covered = 0;
    for (const bool cropped : {false, true})
    {
        for (ViewRenderer* renderer : {&inEngine, &beside})
            if (cropped)
                renderer->SetVisibleBox({middle - Vec3{90, 200, 60}, middle + Vec3{150, 20, 300}});
        for (const View& view : kViews)
        {
            const Framing framing = {view, 110, 140, 3.3, {}};
            std::vector<uint32_t> section(110 * 140, 0x10203000u);
            KsBlendImage blend = {
                {{30, 30}, {100, 35}, {90, 80}, {20, 70}}, section.data(), {}, {1, 0, 0}, {0, 0, 1}, {}};
            const Vec3 corner = middle - Vec3{120, 10, 120};
            blend.position[0] = corner.x;
            blend.position[1] = corner.y;
            blend.position[2] = corner.z;
            for (const std::vector<KsBlendImage>& blends : {std::vector<KsBlendImage>{}, {blend}})
            {
                const RenderedImage a = inEngine.Render(framing, blends), b = beside.Render(framing, blends);
                Framing same = framing;
                same.middle = middle;
                const RenderedImage c = inEngine.Render(same, blends);
                EXPECT_TRUE(SamePlace(a.plane, b.plane));
                EXPECT_TRUE(SamePlace(a.plane, c.plane));
                EXPECT_EQ(a.pixels, b.pixels);
                EXPECT_EQ(a.pixels, c.pixels);
                covered += int(std::count_if(a.pixels.begin(), a.pixels.end(), [](uint32_t p) { return p & 255; }));
            }
        }
    }
    EXPECT_GT(covered, 20000);
}

TEST(Scene, LooksFromInsideTheSameInTheEngineAndBesideIt)
{
    const Volume volume = PhantomWithABiteTaken();
    const VolumeView records(volume, {});
    const PaletteTables one(Palettes(false, volume)), two(Palettes(true, volume));
    ViewRenderer inEngine(records, one), beside(records, two);
    for (const char* name : {"anterior", "posterior", "left", "right", "superior", "inferior"})
    {
        const View view = NamedView(name);
        const InsideView inside = {{1.5, 7, 90}, view.direction, view.up};
        const RenderedImage a = inEngine.RenderInside(inside, 80, 50, 70), b = beside.RenderInside(inside, 80, 50, 70);
        EXPECT_TRUE(SamePlace(a.plane, b.plane)) << name;
        EXPECT_EQ(a.pixels, b.pixels) << name;
        EXPECT_GT(std::count_if(a.pixels.begin(), a.pixels.end(), [](uint32_t p) { return p >> 8; }), 500) << name;
    }
}

TEST(Scene, SaysWhenTheLibraryDrawsNothing)
{
    const Volume volume = PhantomWithABiteTaken();
    const VolumeView records(volume, {});
    for (const bool beside : {false, true})
    {
        const PaletteTables tables(Palettes(beside, volume));
        ViewRenderer renderer(records, tables);
        const InsideView view = {{1.5, 7, 90}, {0, 1, 0}, {0, 0, 1}};
        EXPECT_TRUE(Contains(ErrorOf([&] { renderer.RenderInside(view, 90, 0, 5); }, ErrorKind::Computation),
                             "the library refuses this rendering"));
    }
    Projector projector(records);
    const PnImageParam plane = projector.PlaneOf({NamedView("left"), 9, 9, 1, {}});
    EXPECT_TRUE(Contains(ErrorOf([&] { projector.ThroughSlab(Projection::Maximum, plane, 0.05); },
                                 ErrorKind::Computation), // thinner than the library takes
                         "the library refuses this projection"));
}

TEST(Scene, ProjectsTheSameValuesInTheEngineAndBesideIt)
{
    const Volume volume = PhantomWithABiteTaken();
    const VolumeView records(volume, {});
    Projector projector(records);
    const Vec3 middle = MiddleOf(records);
    for (const Projection kind : {Projection::Maximum, Projection::Average, Projection::Minimum})
        for (const View& view : kViews)
        {
            const ProjectedImage a = projector.ThroughVolume(kind, {view, 90, 120, 4, {}});
            const ProjectedImage b = projector.ThroughVolume(kind, {view, 90, 120, 4, middle});
            EXPECT_TRUE(SamePlace(a.plane, b.plane));
            EXPECT_TRUE(SamePlace(a.plane, projector.PlaneOf({view, 90, 120, 4, {}})));
            EXPECT_NEAR(Dot(middle - FirstPixel(a.plane), view.direction), 0, 1e-9);
            EXPECT_EQ(a.values, b.values);
        }
}

TEST(Scene, ProjectsEveryLabelButLeavesOutWhatIsCutAway)
{
    Volume volume;
    volume.grid = ObliqueGrid(20, 20, 20, 0);
    volume.voxels.resize(volume.grid.VoxelCount(), 100);
    volume.labels.resize(volume.grid.VoxelCount(), 7);
    const Framing framing = {NamedView("anterior"), 32, 32, 0.5, {}};
    const auto most = [&](const Framing& picture)
    {
        const VolumeView records(volume, {});
        Projector projector(records);
        const std::vector<int16_t> values = projector.ThroughVolume(Projection::Maximum, picture).values;
        return *std::max_element(values.begin(), values.end());
    };
    Framing moved = framing;
    moved.middle = IndexToPatient(volume.grid, {9, 9, 9});
    EXPECT_EQ(most(framing), 100);
    EXPECT_EQ(most(moved), 100);
    for (uint8_t& label : volume.labels)
        label = 7 + 64;
    EXPECT_EQ(most(framing), -1024);
    EXPECT_EQ(most(moved), -1024);
}

TEST(Scene, ShowsWhatIsLeftAfterLabelsChange)
{
    const Volume volume = PhantomWithABiteTaken();
    const VolumeView records(volume, {});
    for (const bool beside : {false, true})
    {
        const PaletteTables tables(Palettes(beside, volume));
        ViewRenderer renderer(records, tables);
        const Framing framing = {NamedView("anterior"), 60, 60, 6, {}};
        const auto covered = [&]
        {
            const std::vector<uint32_t> pixels = renderer.Render(framing).pixels;
            return std::count_if(pixels.begin(), pixels.end(), [](uint32_t p) { return p & 255; });
        };
        EXPECT_GT(covered(), 100);
        const KsVolumeMark& mark = *renderer.Engine().GetMarkData();
        for (uint32_t k = 0; k < mark.sizeZ; ++k)
            std::fill_n(mark.slices[k], size_t(mark.sizeX) * mark.sizeY, uint8_t(64));
        renderer.UpdateLabels();
        EXPECT_EQ(covered(), 0);
    }
}

// The working folder and that for temporary files are folders of the test's own as long as this lives.
class InFolders
{
public:
    InFolders() : home_(std::filesystem::current_path())
    {
        std::filesystem::current_path(work.Path());
        setenv("TMPDIR", temporary.Path().c_str(), 1);
    }
    ~InFolders()
    {
        unsetenv("TMPDIR");
        std::filesystem::current_path(home_);
    }

    ScratchFolder work, temporary;

private:
    std::filesystem::path home_;
};

TEST(Scene, LeavesNoFileOfTheLibrarysOwn)
{
    const InFolders folders;
    const Volume volume = PhantomWithABiteTaken();
    const VolumeView records(volume, {});
    const PaletteTables tables(Palettes(true, volume));
    ViewRenderer renderer(records, tables);
    renderer.Render({NamedView("left"), 8, 8, 50, {}});
    renderer.UpdateLabels();
    EXPECT_EQ(std::filesystem::current_path(), std::filesystem::path(folders.work.Path()));
    EXPECT_TRUE(std::filesystem::is_empty(folders.work.Path()));
    EXPECT_TRUE(std::filesystem::is_empty(folders.temporary.Path()));
}

TEST(WorkElsewhere, IsNowhereOnTheDiskAndComesBack)
{
    const InFolders folders;
    const std::filesystem::path work = folders.work.Path();
    const std::string absent = folders.temporary / "absent";
    for (const std::string& temporary : {folders.temporary.Path(), absent})
    {
        setenv("TMPDIR", temporary.c_str(), 1);
        {
            const WorkElsewhere elsewhere;
            WriteBytes("file", "bytes");
            EXPECT_FALSE(std::filesystem::exists("file"));
            EXPECT_TRUE(std::filesystem::is_empty(work));
            EXPECT_TRUE(std::filesystem::is_empty(folders.temporary.Path()));
        }
        EXPECT_EQ(std::filesystem::current_path(), work);
        EXPECT_TRUE(std::filesystem::is_empty(work));
    }
}
} // namespace
} // namespace corvane::host
