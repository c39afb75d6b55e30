#include "projection_options.h"

#include "host/error.h"
#include "host/numbers.h"
#include "input_option.h"

namespace corvane::app
{
namespace
{
using host::Error;
using host::ErrorKind;
using host::Projection;

constexpr double kThinnest = 0.1, kThickest = 5000; // mm
constexpr host::Window kVessels = {200, 800};       // HU; contrast-filled ones are bright, bone is white

bool HasViewOptions(const VrOptions& view)
{
    return !(view.view.empty() && view.azimuth.empty() && view.elevation.empty() && view.roll.empty() &&
             view.size.empty() && view.turntable.empty());
}

bool HasPlaneOptions(const MprOptions& planes)
{
    return !(planes.plane.empty() && planes.rotations.empty() && planes.center.empty() && planes.centerVoxel.empty() &&
             planes.slice.empty() && planes.count.empty() && planes.step.empty() && planes.pixelSize.empty());
}

void AddFileOptions(CLI::App& command, MprOptions& options)
{
    const char* group = "Files";
    AddInput(command, options.input);
    command.add_option("--series", options.series, "which series of a DICOM folder, by number or UID")
        ->type_name("SERIES")
        ->group(group);
    command
        .add_option("-o,--output", options.output,
                    "a file for one picture; for more a folder, or a pattern with\n{plane} and {index}; - is standard "
                    "output")
        ->type_name("PATH")
        ->required()
        ->group(group);
    command.add_flag("--force", options.force, "replace files that stand there already")->group(group);
    command
        .add_option("--format", options.format,
                    "png: 8 bits through the window; png16: stored value + 32768;\nnrrd: stored values with their "
                    "place in the patient; else as\nthe name of the output ends")
        ->type_name("FORMAT")
        ->group(group);
    command.add_flag("--json", options.json, "print what each picture shows, and where, as JSON")->group(group);
}
} // namespace

ProjectionOptions::ProjectionOptions()
{
    // Defaults wait until it is clear that no slab is wanted.
    for (std::string* text : {&view.view, &view.azimuth, &view.elevation, &view.roll, &view.zoom, &view.size})
        text->clear();
}

void AddProjectionOptions(CLI::App& command, ProjectionOptions& options)
{
    AddFileOptions(command, options.planes);
    std::string group = "Through the whole volume";
    const auto add =
        [&](const std::string& name, std::string& value, const std::string& form, const std::string& description)
    { command.add_option(name, value, description)->type_name(form)->group(group); };
    VrOptions& view = options.view;
    add("--view", view.view, "VIEW",
        "where the eye stands: anterior or coronal (default),\nposterior, left or sagittal, right, superior, inferior "
        "or\naxial");
    add("--azimuth", view.azimuth, "DEGREES", "by which the eye moves to its right");
    add("--elevation", view.elevation, "DEGREES", "by which it moves upwards");
    add("--roll", view.roll, "DEGREES", "by which the picture turns clockwise");
    add("--turntable", view.turntable, "N", "pictures of a full turn of the eye round the patient");
    add("--size", view.size, "PIXELS", "COLUMNSxROWS, or N for N x N (default 512)");
    command
        .add_option("--hide-label", options.hiddenLabels,
                    "leave out the voxels with this label (0: those without one);\nmay be repeated; slabs show all "
                    "labels")
        ->type_name("LABEL")
        ->allow_extra_args(false)
        ->group(group);
    add("--hide-margin", options.hideMargin, "N",
        "and so many voxels around it (default 0); with 1 nothing\nof it is mixed into its neighbours");
    add("--labels", options.planes.labels, "FILE",
        "a label volume of the same grid, for --hide-label; what it\nsays is cut away is left out");
    add("--crop-voxels", view.cropVoxels, "I0,J0,K0,I1,J1,K1", "only the voxels from one to another");

    group = "Through slabs about planes";
    MprOptions& planes = options.planes;
    add("--thickness", options.thickness, "MM", "of the slab, half of it on either side of its plane");
    add("--plane", planes.plane, "PLANE", "axial, sagittal, coronal or all (default)");
    command
        .add_option("--rotate", planes.rotations,
                    "turns the two other planes about this one's normal; may be\nrepeated")
        ->type_name("PLANE:DEGREES")
        ->allow_extra_args(false)
        ->group(group);
    add("--center", planes.center, "X,Y,Z", "the point that the planes share, patient mm");
    add("--center-voxel", planes.centerVoxel, "I,J,K", "the same as a voxel index, from 0");
    add("--slice", planes.slice, "MM",
        "move along the normal: axial to superior, sagittal to the\nright, coronal to posterior");
    add("--count", planes.count, "N", "so many parallel slabs about the center, or all that fit");
    add("--step", planes.step, "MM", "from slab to slab; else their thickness");
    add("--pixel-size", planes.pixelSize, "MM", "else the smallest voxel spacing");

    group = "Both";
    add("--zoom", planes.zoom, "F", "times as large, or so many times more pixels of a slab");
    add("--crop", view.crop, "X0,Y0,Z0,X1,Y1,Z1", "in patient mm: only the box between two corners");
    command.add_flag("--ras", planes.ras, "points and directions are given and printed as RAS, not LPS")->group(group);
    add("--pad", planes.pad, "AXES",
        "the outermost one to two voxel layers cannot be sampled unless\nthey are doubled: auto (along axes of fewer "
        "than 16 voxels),\nall or none");
    add("--window", planes.window, "WINDOW",
        "CENTRE,WIDTH in HU or other real values, or a name from below,\nor auto (percentiles 1 to 99 of what is "
        "projected)");
    command.add_flag("--no-letters", planes.noLetters, "leave out orientation letters and scale bar")->group(group);
}

std::optional<double> ThicknessOf(const ProjectionOptions& options)
{
    if (options.thickness.empty() && HasPlaneOptions(options.planes))
        throw Error(ErrorKind::Usage, "a slab about a plane needs --thickness MM; without --plane and its like the "
                                      "whole volume is projected");
    if (options.thickness.empty())
        return {};
    const std::string what = "--thickness takes mm from 0.1 to 5000";
    const double thickness = host::RequireNumber(options.thickness, what);
    if (!(thickness >= kThinnest && thickness <= kThickest))
        throw Error(ErrorKind::Usage, what + ", not '" + options.thickness + "'");
    if (HasViewOptions(options.view))
        throw Error(ErrorKind::Usage, "--thickness does not go with --view, --azimuth, --elevation, --roll, "
                                      "--turntable and --size; slabs lie about --plane");
    if (!options.hiddenLabels.empty() || !options.view.cropVoxels.empty() || !options.planes.labels.empty())
        throw Error(ErrorKind::Usage, "--hide-label, --labels and --crop-voxels do not go with --thickness; slabs show "
                                      "all voxels, or those in --crop");
    return thickness;
}

VrOptions ViewOptionsOf(const ProjectionOptions& options)
{
    const VrOptions defaults;
    VrOptions view = options.view;
    view.ras = options.planes.ras;
    view.zoom = options.planes.zoom;
    for (std::string VrOptions::*text :
         {&VrOptions::view, &VrOptions::azimuth, &VrOptions::elevation, &VrOptions::roll, &VrOptions::zoom})
        if ((view.*text).empty())
            view.*text = defaults.*text;
    if (view.size.empty())
        view.size = defaults.size;
    return view;
}

std::set<int> HiddenLabelsOf(const ProjectionOptions& options)
{
    std::set<int> hidden;
    for (const std::string& text : options.hiddenLabels)
        hidden.insert(CountOf(text, "--hide-label takes a label from 0 to 63", 0, 63));
    return hidden;
}

int HideMarginOf(const ProjectionOptions& options)
{
    if (options.hideMargin.empty())
        return 0;
    if (options.hiddenLabels.empty())
        throw Error(ErrorKind::Usage, "--hide-margin needs --hide-label");
    return CountOf(options.hideMargin, "--hide-margin takes a number of voxels from 0 to 100", 0, 100);
}

PlaneRequest SlabsOf(const ProjectionOptions& options, double thickness, const host::Grid& grid)
{
    PlaneRequest request = RequestOf(options.planes, grid);
    if (request.count && !request.step)
        request.step = thickness;
    return request;
}

std::optional<host::Window> WindowOf(const ProjectionOptions& options, Projection projection,
                                     const host::Volume& volume)
{
    const std::string& text = options.planes.window;
    if (text == "auto" || (text.empty() && !host::HoldsHounsfieldUnits(volume)))
        return {};
    if (!text.empty())
        return host::ParseWindow(text, volume);
    if (projection == Projection::Maximum)
        return options.thickness.empty() ? host::ParseWindow("bone", volume) : kVessels;
    if (projection == Projection::Minimum)
        return host::ParseWindow("lung", volume);
    if (options.thickness.empty()) // so much air adds to the mean that soft tissue has no place of its own
        return {};
    return host::ParseWindow("abdomen", volume);
}
} // namespace corvane::app
