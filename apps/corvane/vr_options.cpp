#include "vr_options.h"

#include <algorithm>
#include <cmath>

#include "host/error.h"
#include "host/label_byte.h"
#include "host/numbers.h"
#include "host/turntable.h"

namespace corvane::app
{
namespace
{
using host::Error;
using host::ErrorKind;
using host::Vec3;

struct Range
{
    double low, high;
};

// Six numbers as a range along each axis, in whichever order the corners come.
std::vector<Range> RangesOf(const std::string& text, const std::string& what)
{
    const std::vector<double> numbers = host::RequireNumbers(text, ',', 6, what);
    std::vector<Range> ranges;
    for (size_t axis = 0; axis < 3; ++axis)
        ranges.push_back({std::min(numbers[axis], numbers[axis + 3]), std::max(numbers[axis], numbers[axis + 3])});
    return ranges;
}

host::Corners CornersOf(const std::vector<Range>& ranges)
{
    host::Corners corners;
    for (int corner = 0; corner < 8; ++corner)
        corners.push_back({corner & 1 ? ranges[0].high : ranges[0].low, corner & 2 ? ranges[1].high : ranges[1].low,
                           corner & 4 ? ranges[2].high : ranges[2].low});
    return corners;
}

Crop PatientCrop(const VrOptions& options, const host::Volume& volume)
{
    std::vector<Range> ranges = RangesOf(options.crop, "--crop takes two corners X0,Y0,Z0,X1,Y1,Z1 in mm");
    if (options.ras)
        for (size_t axis = 0; axis < 2; ++axis)
            ranges[axis] = {-ranges[axis].high, -ranges[axis].low};
    Crop crop;
    crop.box = {{ranges[0].low, ranges[1].low, ranges[2].low}, {ranges[0].high, ranges[1].high, ranges[2].high}};
    for (size_t axis = 0; axis < 3; ++axis)
    {
        Range volumeRange = {INFINITY, -INFINITY};
        for (const Vec3& corner : host::CornersOf(volume.grid))
        {
            const double place[3] = {corner.x, corner.y, corner.z};
            volumeRange = {std::min(volumeRange.low, place[axis]), std::max(volumeRange.high, place[axis])};
        }
        ranges[axis] = {std::max(ranges[axis].low, volumeRange.low), std::min(ranges[axis].high, volumeRange.high)};
        if (!(ranges[axis].low < ranges[axis].high))
            throw Error(ErrorKind::Usage, "--crop leaves nothing of the volume; see corvane info for where it lies");
    }
    crop.corners = CornersOf(ranges);
    crop.middle = host::MiddleOf(crop.corners);
    return crop;
}

Crop VoxelCrop(const VrOptions& options, host::Volume& volume)
{
    const std::vector<Range> ranges =
        RangesOf(options.cropVoxels, "--crop-voxels takes two corners I0,J0,K0,I1,J1,K1 as voxel indices");
    const host::Grid& grid = volume.grid;
    const int sizes[3] = {grid.sizeX, grid.sizeY, grid.sizeZ};
    for (size_t axis = 0; axis < 3; ++axis)
        if (ranges[axis].high < 0 || ranges[axis].low > sizes[axis] - 1)
            throw Error(ErrorKind::Usage, "--crop-voxels leaves nothing of the volume; indices count from 0");
    volume.labels.resize(grid.VoxelCount());
    size_t voxel = 0;
    for (int k = 0; k < grid.sizeZ; ++k)
        for (int j = 0; j < grid.sizeY; ++j)
            for (int i = 0; i < grid.sizeX; ++i, ++voxel)
                if (i < ranges[0].low || i > ranges[0].high || j < ranges[1].low || j > ranges[1].high ||
                    k < ranges[2].low || k > ranges[2].high)
                    volume.labels[voxel] |= host::kCutBit;
    const auto low = [&](size_t axis) { return std::max(ranges[axis].low, 0.0); };
    const auto high = [&](size_t axis) { return std::min(ranges[axis].high, sizes[axis] - 1.0); };
    Crop crop;
    crop.corners = host::CornersOf(grid, {low(0), low(1), low(2)}, {high(0), high(1), high(2)});
    crop.middle = host::MiddleOf(crop.corners);
    return crop;
}
} // namespace

void AddViewOptions(CLI::App& command, VrOptions& options, const std::string& group)
{
    command
        .add_option(
            "--view", options.view,
            "where the eye stands: anterior or coronal (default), posterior, left or sagittal, right, superior, "
            "inferior or axial")
        ->group(group);
    command.add_option("--azimuth", options.azimuth, "DEGREES by which the eye moves to its right")->group(group);
    command.add_option("--elevation", options.elevation, "DEGREES by which it moves upwards")->group(group);
    command.add_option("--roll", options.roll, "DEGREES by which the picture turns clockwise")->group(group);
    command.add_option("--zoom", options.zoom, "F times as large; with 1 (default) everything fits")->group(group);
}

void AddVrOptions(CLI::App& vr, VrOptions& options)
{
    AddRenderingOptions(vr, options);
    const char* view = "View";
    AddViewOptions(vr, options, view);
    vr.add_option("--turntable", options.turntable, "N pictures of a full turn of the eye round the patient")
        ->group(view);
    vr.add_flag("--letters", options.letters, "add orientation letters and a scale bar")->group(view);

    const char* shown = "What is shown";
    vr.add_option("--crop", options.crop, "X0,Y0,Z0,X1,Y1,Z1 in patient mm: only the box between two corners")
        ->group(shown);
    vr.add_option("--crop-voxels", options.cropVoxels, "I0,J0,K0,I1,J1,K1: only the voxels from one to another")
        ->group(shown);
    vr.add_option("--planes", options.planes, "axial, sagittal, coronal or several of them: planes in their places")
        ->expected(0, 1)
        ->default_str("axial,sagittal,coronal")
        ->group(shown);
    vr.add_option("--center", options.center, "X,Y,Z in patient mm: the point that the planes share")->group(shown);
    vr.add_option("--window", options.window, "CENTRE,WIDTH of the planes, or a name as for corvane mpr")->group(shown);
}

std::vector<host::View> ViewsOf(const VrOptions& options)
{
    const auto degrees = [](const std::string& text, const char* what) { return host::RequireNumber(text, what); };
    const host::View start = host::NamedView(options.view);
    const double azimuth = degrees(options.azimuth, "--azimuth takes degrees");
    const double elevation = degrees(options.elevation, "--elevation takes degrees");
    const double roll = degrees(options.roll, "--roll takes degrees");
    const int count =
        options.turntable.empty()
            ? 1
            : CountOf(options.turntable, "--turntable takes a number of pictures from 2 to 10000", 2, 10000);
    return host::TurntableViews(start, azimuth, elevation, roll, count);
}

double ZoomOf(const VrOptions& options)
{
    const std::string what = "--zoom takes a number from 0.01 to 1000";
    const double zoom = host::RequireNumber(options.zoom, what);
    if (!(zoom >= 0.01 && zoom <= 1000))
        throw Error(ErrorKind::Usage, what + ", not '" + options.zoom + "'");
    return zoom;
}

Crop CropOf(const VrOptions& options, host::Volume& volume)
{
    if (!options.crop.empty() && !options.cropVoxels.empty())
        throw Error(ErrorKind::Usage, "give --crop or --crop-voxels, not both");
    if (!options.crop.empty())
        return PatientCrop(options, volume);
    if (!options.cropVoxels.empty())
        return VoxelCrop(options, volume);
    return {{}, host::CornersOf(volume.grid), {}};
}

std::vector<host::Framing> FramingsOf(const std::vector<host::View>& views, const Crop& crop, const PictureSize& size,
                                      double zoom)
{
    const double pixelSize = host::FittingPixelSize(views, crop.corners, size.rows, size.columns) / zoom;
    std::vector<host::Framing> framings;
    for (const host::View& view : views)
        framings.push_back({view, size.rows, size.columns, pixelSize, crop.middle});
    return framings;
}

PlaneRequest PlanesOf(const VrOptions& options)
{
    PlaneRequest request;
    if (options.planes.empty())
    {
        if (!options.center.empty() || !options.window.empty())
            throw Error(ErrorKind::Usage, "--center and --window belong to --planes");
        return request;
    }
    for (const std::string& name : host::Split(options.planes, ','))
    {
        const KsMPRType types[] = {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal};
        const auto type = std::find_if(std::begin(types), std::end(types),
                                       [&](KsMPRType candidate) { return PlaneName(candidate) == name; });
        if (type == std::end(types))
            throw Error(ErrorKind::Usage, "--planes takes axial, sagittal and coronal, with commas between, not '" +
                                              options.planes + "'");
        if (std::find(request.planes.begin(), request.planes.end(), *type) == request.planes.end())
            request.planes.push_back(*type);
    }
    if (!options.center.empty())
        request.center = PointOf(options.center, options.ras, "--center takes X,Y,Z in mm");
    return request;
}
} // namespace corvane::app
