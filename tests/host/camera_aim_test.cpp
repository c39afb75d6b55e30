#include "host/camera_aim.h"
#include "host/plane.h"
#include "host/quiet_output.h"
#include "read_testing.h"

#include <random>

namespace corvane::host
{
namespace
{
// Named views, turned ones, and pairs of directions at right angles with fixed numbers.
std::vector<View> ManyViews()
{
    std::vector<View> views;
    for (const char* name : {"anterior", "posterior", "left", "right", "superior", "inferior"})
        for (double angle : {0.0, 90.0, 180.0, 270.0, 44.9, 45.1})
        {
            views.push_back(Turned(NamedView(name), angle, 0, 0));
            views.push_back(Turned(NamedView(name), 0, angle, 0));
            views.push_back(Turned(NamedView(name), 0, 0, angle));
        }
    std::mt19937 random(20);
    const auto vector = [&]
    {
        const auto number = [&] { return double(random()) / 0x80000000u - 1; };
        const double x = number(), y = number();
        return Vec3{x, y, number()};
    };
    for (int n = 0; n < 300; ++n)
    {
        const Vec3 direction = Unit(vector());
        views.push_back({direction, Unit(Cross(direction, vector()))});
    }
    return views;
}

struct SmallVolume
{
    SmallVolume()
    {
        volume.grid = ObliqueGrid(8, 9, 10, 10);
        volume.voxels.resize(volume.grid.VoxelCount());
    }

    Volume volume;
};

TEST(CameraAim, TurnsTheCameraOutsideToAnyView)
{
    const SmallVolume small;
    const VolumeView records(small.volume, {});
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(records.Data()));
    for (const View& view : ManyViews())
    {
        AimCamera(engine, view);
        PnImageParam plane = {};
        ASSERT_TRUE(engine.GetImageParams(10, 10, plane));
        ExpectNear(RowDirection(plane), RightOf(view), 1e-14, "right");
        ExpectNear(ColumnDirection(plane), DownOf(view), 1e-14, "down");
    }
}

TEST(CameraAim, TurnsTheCameraInsideToAnyView)
{
    const SmallVolume small;
    const VolumeView records(small.volume, {});
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(records.Data()));
    engine.SetRenderType(KsRenderPerspective);
    for (const View& view : ManyViews())
    {
        AimCamera(engine, view);
        uint32_t pixels[9];
        PnImageRGB image = {};
        {
            const QuietOutput quiet;
            engine.Imaging(3, 3, pixels, false, &image, 0);
        }
        // Endoscopies take the view in single precision, and their axes are a millionth short.
        ExpectNear(Unit(RowDirection(image.param)), RightOf(view), 5e-7, "right");
        ExpectNear(Unit(ColumnDirection(image.param)), DownOf(view), 5e-7, "down");
    }
}

TEST(CameraAim, ReachesTheNamedViewsExactly)
{
    const SmallVolume small;
    const VolumeView records(small.volume, {});
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(records.Data()));
    for (const char* name : {"anterior", "posterior", "left", "right", "superior", "inferior"})
    {
        const View view = NamedView(name);
        AimCamera(engine, Turned(view, 20, 30, 40)); // where it comes from does not matter
        AimCamera(engine, view);
        PnImageParam plane = {};
        ASSERT_TRUE(engine.GetImageParams(10, 10, plane));
        ExpectNear(RowDirection(plane), RightOf(view), 0, name);
        ExpectNear(ColumnDirection(plane), DownOf(view), 0, name);
    }
}
} // namespace
} // namespace corvane::host
