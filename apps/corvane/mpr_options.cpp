#include "mpr_options.h"

#include <algorithm>

#include "host/error.h"
#include "host/numbers.h"
#include "input_option.h"
#include "report.h"

namespace corvane::app
{
namespace
{
using host::Error;
using host::ErrorKind;
using host::Vec3;

Vec3 PointOf(const std::string& text, bool ras, const std::string& what)
{
    const std::vector<double> numbers = host::RequireNumbers(text, ',', 3, what);
    return TurnedIf(ras, {numbers[0], numbers[1], numbers[2]});
}

double PositiveNumber(const std::string& text, const std::string& what)
{
    const double number = host::RequireNumber(text, what);
    if (!(number > 0))
        throw Error(ErrorKind::Usage, what + ", not '" + text + "'");
    return number;
}

KsMPRType TypeOf(const std::string& name, const std::string& what)
{
    for (KsMPRType type : {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal})
        if (name == PlaneName(type))
            return type;
    throw Error(ErrorKind::Usage, what + ", not '" + name + "'");
}

PlaneRequest::Rotation RotationOf(const std::string& text)
{
    const std::string what = "--rotate takes PLANE:DEGREES, as in axial:30";
    const std::vector<std::string> pieces = host::Split(text, ':');
    if (pieces.size() != 2)
        throw Error(ErrorKind::Usage, what + ", not '" + text + "'");
    return {TypeOf(pieces[0], what), host::RequireNumber(pieces[1], what)};
}

// A plane that the user gives in full.
PnImageParam GivenPlane(const MprOptions& options, const host::Grid& grid)
{
    if (options.position.empty() || options.row.empty() || options.column.empty() || options.size.empty())
        throw Error(ErrorKind::Usage, "a plane of your own needs all of --position, --row, --column and --size");
    if (!options.plane.empty() || !options.rotations.empty() || !options.center.empty() ||
        !options.centerVoxel.empty() || !options.zoom.empty())
        throw Error(ErrorKind::Usage,
                    "a plane of your own does not go with --plane, --rotate, --center, --center-voxel and --zoom");
    PnImageParam plane = {};
    const Vec3 position = PointOf(options.position, options.ras, "--position takes X,Y,Z in mm");
    const Vec3 row = PointOf(options.row, options.ras, "--row takes a direction X,Y,Z");
    const Vec3 column = PointOf(options.column, options.ras, "--column takes a direction X,Y,Z");
    for (auto [vector, numbers] : {std::pair(position, plane.position), std::pair(row, plane.rowDirection),
                                   std::pair(column, plane.columnDirection)})
    {
        numbers[0] = vector.x;
        numbers[1] = vector.y;
        numbers[2] = vector.z;
    }
    const std::string sizeForm = "--size takes ROWSxCOLUMNS, as in 256x320";
    const std::vector<double> size = host::RequireNumbers(options.size, 'x', 2, sizeForm);
    for (double side : size)
        if (side < 1 || side > 32768 || side != double(int(side)))
            throw Error(ErrorKind::Usage, sizeForm + ", each from 1 to 32768, not '" + options.size + "'");
    plane.rows = uint32_t(size[0]);
    plane.columns = uint32_t(size[1]);
    plane.rowSpacing = plane.columnSpacing = std::min({grid.spacing.x, grid.spacing.y, grid.spacing.z});
    if (options.pixelSize.find('x') != std::string::npos)
    {
        const std::vector<double> spacing = host::RequireNumbers(
            options.pixelSize, 'x', 2, "--pixel-size takes MM, or ROWSxCOLUMNS in mm between rows and columns");
        plane.rowSpacing = spacing[0];
        plane.columnSpacing = spacing[1];
    }
    else if (!options.pixelSize.empty())
        plane.rowSpacing = plane.columnSpacing = host::RequireNumber(options.pixelSize, "--pixel-size takes mm");
    return plane;
}
} // namespace

void AddMprOptions(CLI::App& mpr, MprOptions& options)
{
    std::string group = "Files";
    const auto add =
        [&](const std::string& name, std::string& value, const std::string& form, const std::string& description)
    { return mpr.add_option(name, value, description)->type_name(form)->group(group); };
    const auto addFlag = [&](const std::string& name, bool& value, const std::string& description)
    { mpr.add_flag(name, value, description)->group(group); };
    AddInput(mpr, options.input);
    add("--series", options.series, "SERIES", "which series of a DICOM folder, by number or UID");
    add("-o,--output", options.output, "PATH",
        "a file for one picture; for more a folder, or a pattern with\n{plane} and {index}; - is standard output")
        ->required();
    addFlag("--force", options.force, "replace files that stand there already");
    add("--format", options.format, "FORMAT",
        "png: 8 bits through the window; png16: stored value + 32768;\nnrrd: stored values with their place in the "
        "patient; else as\nthe name of the output ends");
    addFlag("--json", options.json, "print the geometry of each picture as JSON");

    group = "Planes";
    add("--plane", options.plane, "PLANE", "axial, sagittal, coronal or all (default)");
    mpr.add_option("--rotate", options.rotations,
                   "turns the two other planes about this one's normal; may be\nrepeated")
        ->type_name("PLANE:DEGREES")
        ->allow_extra_args(false)
        ->group(group);
    add("--center", options.center, "X,Y,Z", "the point that the planes share, patient mm");
    add("--center-voxel", options.centerVoxel, "I,J,K", "the same as a voxel index, from 0");
    addFlag("--ras", options.ras, "points and directions are given and printed as RAS, not LPS");
    add("--slice", options.slice, "MM",
        "move along the normal: axial to superior, sagittal to the\nright, coronal to posterior");
    add("--count", options.count, "N", "so many parallel slices about the center, or all that fit");
    add("--step", options.step, "MM", "from slice to slice; else the size of a pixel");
    add("--pixel-size", options.pixelSize, "MM", "else the smallest voxel spacing");
    add("--zoom", options.zoom, "F", "so many times more pixels along either side");
    add("--pad", options.pad, "AXES",
        "the outermost one to two voxel layers cannot be sampled unless\nthey are doubled: auto (along axes of fewer "
        "than 16 voxels),\nall or none");

    group = "A plane of your own";
    add("--position", options.position, "X,Y,Z", "centre of the first pixel, patient mm");
    add("--row", options.row, "X,Y,Z", "direction to the right in the picture");
    add("--column", options.column, "X,Y,Z", "direction downwards in the picture");
    add("--size", options.size, "ROWSxCOLUMNS", "in pixels; --pixel-size may then be ROWSxCOLUMNS in mm");

    group = "Appearance (png)";
    add("--window", options.window, "WINDOW",
        "CENTRE,WIDTH in HU or other real values, or a name from below,\nor auto (percentiles 1 to 99); else abdomen "
        "for CT, auto for\nthe rest");
    add("--labels", options.labels, "FILE", "a label volume of the same grid, shown in colour");
    addFlag("--show-labels", options.showLabels, "the same for labels that the input brings along");
    add("--label-colors", options.labelColours, "FILE", "a colour table: .ctbl or label descriptions");
    add("--label-opacity", options.labelOpacity, "NUMBER", "0 to 1 (default 0.4)");
    addFlag("--no-letters", options.noLetters, "leave out orientation letters and scale bar");
}

PlaneRequest RequestOf(const MprOptions& options, const host::Grid& grid)
{
    PlaneRequest request;
    if (!options.position.empty() || !options.row.empty() || !options.column.empty() || !options.size.empty())
        request.given = GivenPlane(options, grid);
    else if (!options.pixelSize.empty())
        request.pixelSize = PositiveNumber(options.pixelSize, "--pixel-size takes mm above 0");
    if (options.plane.empty() || options.plane == "all")
        request.planes = {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal};
    else
        request.planes = {TypeOf(options.plane, "--plane is axial, sagittal, coronal or all")};
    for (const std::string& rotation : options.rotations)
        request.rotations.push_back(RotationOf(rotation));
    if (!options.center.empty() && !options.centerVoxel.empty())
        throw Error(ErrorKind::Usage, "give --center or --center-voxel, not both");
    if (!options.center.empty())
        request.center = PointOf(options.center, options.ras, "--center takes X,Y,Z in mm");
    if (!options.centerVoxel.empty())
        request.center =
            host::IndexToPatient(grid, PointOf(options.centerVoxel, false, "--center-voxel takes I,J,K in voxels"));
    if (!options.slice.empty())
        request.shift = host::RequireNumber(options.slice, "--slice takes mm");
    if (!options.zoom.empty())
        request.zoom = PositiveNumber(options.zoom, "--zoom takes a number above 0");
    if (!options.step.empty())
        request.step = PositiveNumber(options.step, "--step takes mm above 0");
    if (!options.count.empty())
    {
        const std::string what = "--count takes a number of slices from 1 to 10000, or all";
        request.count = options.count == "all" ? 0 : host::RequireInteger(options.count, what);
        if (*request.count < 0 || (*request.count == 0 && options.count != "all"))
            throw Error(ErrorKind::Usage, what + ", not '" + options.count + "'");
    }
    else if (request.step)
        throw Error(ErrorKind::Usage, "--step belongs to a stack; add --count");
    return request;
}
} // namespace corvane::app
