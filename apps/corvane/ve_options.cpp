#include "ve_options.h"

#include "host/cavity.h"
#include "host/error.h"
#include "host/numbers.h"
#include "report.h"

namespace corvane::app
{
namespace
{
using host::Error;
using host::ErrorKind;
using host::Vec3;

bool IsPath(const VeOptions& options) { return !options.path.empty() || !options.points.empty(); }

void CheckPath(const VeOptions& options)
{
    if (!options.path.empty() && !options.points.empty())
        throw Error(ErrorKind::Usage, "give --path or --point, not both");
    if (!options.eye.empty() || !options.eyeVoxel.empty() || !options.direction.empty())
        throw Error(ErrorKind::Usage, "a path does not go with --eye, --eye-voxel and --direction");
}

std::vector<Vec3> PathPoints(const VeOptions& options)
{
    std::vector<Vec3> points;
    for (const std::string& text : options.points)
        points.push_back(PointOf(text, options.ras, "--point takes X,Y,Z in mm"));
    if (!options.path.empty())
        for (const Vec3& point : host::ReadPoints(options.path))
            points.push_back(TurnedIf(options.ras, point));
    return points;
}

// In front of the phantom's bowel, where a polyp stands behind a fold.
constexpr Vec3 kPhantomEye = {40, -45.5, -62.4}, kPhantomTarget = {12, -53, -79};
} // namespace

void AddVeOptions(CLI::App& ve, VeOptions& options)
{
    AddRenderingOptions(ve, options);
    const char* view = "View";
    ve.add_option("--eye", options.eye, "X,Y,Z in patient mm: where the eye is")->group(view);
    ve.add_option("--eye-voxel", options.eyeVoxel, "I,J,K: the same as a voxel index, from 0")->group(view);
    ve.add_option("--direction", options.direction, "X,Y,Z: direction of sight in patient space")->group(view);
    ve.add_option("--up", options.up, "X,Y,Z: what is up in the picture; else superior")->group(view);
    ve.add_option("--field-of-view", options.fieldOfView, "DEGREES from top to bottom, 5 to 175 (default 90)")
        ->group(view);

    const char* path = "A flight";
    ve.add_option("--point", options.points, "X,Y,Z in patient mm: a point of the path; give two or more")
        ->allow_extra_args(false)
        ->group(path);
    ve.add_option("--path", options.path, "a text file with a point X Y Z in each line instead")->group(path);
    ve.add_option("--frames", options.frames, "N pictures along the path (default 60)")->group(path);
}

double FieldOfViewOf(const VeOptions& options)
{
    const std::string what = "--field-of-view takes degrees from 5 to 175";
    const double degrees = host::RequireNumber(options.fieldOfView, what);
    if (!(degrees >= 5 && degrees <= 175))
        throw Error(ErrorKind::Usage, what + ", not '" + options.fieldOfView + "'");
    return degrees;
}

int PictureCount(const VeOptions& options)
{
    if (!IsPath(options))
        return 1;
    CheckPath(options);
    return CountOf(options.frames, "--frames takes a number of pictures from 2 to 10000", 2, 10000);
}

std::vector<host::InsideView> InsideViewsOf(const VeOptions& options, const host::Volume& volume)
{
    const Vec3 up = options.up.empty() ? Vec3{} : PointOf(options.up, options.ras, "--up takes a direction X,Y,Z");
    if (IsPath(options))
        return host::FlyThrough(PathPoints(options), PictureCount(options), up);
    if (!options.eye.empty() && !options.eyeVoxel.empty())
        throw Error(ErrorKind::Usage, "give --eye or --eye-voxel, not both");
    const bool hasEye = !options.eye.empty() || !options.eyeVoxel.empty();
    if (!hasEye && options.direction.empty())
        return {options.input.compare(0, 8, "phantom:") == 0
                    ? host::InsideViewOf(kPhantomEye, kPhantomTarget - kPhantomEye, up)
                    : host::ViewInsideCavity(volume, up)};
    if (!hasEye || options.direction.empty())
        throw Error(ErrorKind::Usage, "say where the eye is with --eye or --eye-voxel, and where it looks with "
                                      "--direction; or give a path");
    const Vec3 eye =
        options.eye.empty()
            ? host::IndexToPatient(volume.grid, PointOf(options.eyeVoxel, false, "--eye-voxel takes I,J,K"))
            : PointOf(options.eye, options.ras, "--eye takes X,Y,Z in mm");
    return {
        host::InsideViewOf(eye, PointOf(options.direction, options.ras, "--direction takes a direction X,Y,Z"), up)};
}
} // namespace corvane::app
