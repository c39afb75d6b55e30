#include "projection_command.h"

#include <algorithm>
#include <memory>

#include "host/error.h"
#include "host/hidden_labels.h"
#include "host/label_byte.h"
#include "host/orientation.h"
#include "host/picture_marks.h"
#include "host/plane.h"
#include "host/projection_picture.h"
#include "host/read_text.h"
#include "host/read_volume.h"
#include "host/view.h"
#include "host/write_nrrd.h"
#include "host/write_png.h"
#include "input_option.h"
#include "picture_files.h"
#include "projection_options.h"
#include "report.h"

namespace corvane::app
{
namespace
{
using host::Error;
using host::ErrorKind;
using host::Projection;
using host::Vec3;

struct Kind
{
    Projection projection;
    const char* name;
    const char* summary;
    const char* defaultWindow;
    const char* examples;
};

const Kind kKinds[] = {
    {Projection::Maximum, "mip", "Maximum intensity projections: the largest value along each ray",
     "for CT bone, of slabs 200,800; auto for the rest",
     "  corvane mip study/ -o mip.png                                the whole volume from the front\n"
     "  corvane mip study/ --turntable 36 -o turn/\n"
     "  corvane mip study/ --plane coronal --thickness 20 -o slab.png\n"
     "  corvane mip phantom: --hide-label 2 --hide-margin 1 --window 200,600 -o boneless.png\n"},
    {Projection::Average, "aip", "Average intensity projections: the mean value along each ray",
     "for slabs of CT abdomen; auto for the rest",
     "  corvane aip study/ --view left -o radiograph.png\n"
     "  corvane aip study/ --plane axial --thickness 5 --count all -o axial/\n"},
    {Projection::Minimum, "minip", "Minimum intensity projections: the smallest value along each ray",
     "for CT lung; auto for the rest",
     "  corvane minip study/ --plane coronal --thickness 15 -o airways.png\n"
     "  corvane minip study/ --crop -60,-40,0,60,40,200 -o chest.png     only what lies in the box\n"},
};

// What is to be projected, and what has been found out about it.
struct Task
{
    const Kind& kind;
    const ProjectionOptions& options;
    std::string format;
    std::optional<double> thickness; // of slabs
    Crop crop;
    std::vector<host::Framing> framings;  // of the whole volume
    std::vector<PlannedPicture> pictures; // on the plane in the middle of what is projected
};

// The pictures of the whole volume.
std::vector<PlannedPicture> PlanViews(const Task& task, host::Projector& projector)
{
    std::vector<PlannedPicture> pictures;
    for (const host::Framing& framing : task.framings)
    {
        const Vec3 normal = framing.view.direction;
        double nearest = INFINITY, farthest = -INFINITY;
        for (const Vec3& corner : task.crop.corners)
        {
            nearest = std::min(nearest, Dot(corner, normal));
            farthest = std::max(farthest, Dot(corner, normal));
        }
        pictures.push_back({task.kind.name, int(pictures.size()) + 1, int(task.framings.size()), 0, farthest - nearest,
                            normal, projector.PlaneOf(framing)});
    }
    return pictures;
}

std::vector<PlannedPicture> PlanSlabs(const Task& task, const host::VolumeView& view, const host::Grid& grid)
{
    EngineMPR engine;
    if (!engine.InitData(view.Data()))
        throw Error(ErrorKind::Computation, "the library refuses this volume");
    std::vector<PlannedPicture> pictures =
        PlanPictures(engine, view.PaddedGrid(), SlabsOf(task.options, *task.thickness, grid));
    for (PlannedPicture& picture : pictures)
        picture.thickness = *task.thickness;
    return pictures;
}

bool HasCuts(const host::Volume& volume)
{
    return std::any_of(volume.labels.begin(), volume.labels.end(), [](uint8_t label) { return label & host::kCutBit; });
}

// Throws Error (Usage) where labels are named that the volume does not have, and for labels that leave nothing out.
void CheckLabels(const ProjectionOptions& options, const std::set<int>& hidden, const host::Volume& volume)
{
    if (hidden.empty() && !options.planes.labels.empty() && !HasCuts(volume))
        throw Error(ErrorKind::Usage, "nothing is cut away in these labels; --labels needs --hide-label then, and "
                                      "corvane mpr and corvane vr show labels in colour");
    if (hidden.empty())
        return;
    if (volume.labels.empty())
        throw Error(ErrorKind::Usage, "the input has no labels of its own; give them with --labels FILE");
    for (int label : hidden)
        if (std::find(volume.labels.begin(), volume.labels.end(), label) == volume.labels.end())
            PrintWarnings({"no voxel has label " + std::to_string(label)});
}

std::vector<std::string> WarningsOf(const Task& task, const host::Volume& volume)
{
    std::vector<std::string> warnings = host::ProjectionWarnings(task.kind.projection, volume, task.format != "png");
    const VrOptions& view = task.options.view;
    if (task.kind.projection == Projection::Minimum && host::HoldsHounsfieldUnits(volume) && !task.thickness &&
        view.crop.empty() && view.cropVoxels.empty() && task.options.hiddenLabels.empty() && !HasCuts(volume))
        warnings.push_back("rays through the whole volume end up with the air around the patient; leave it out with "
                           "--thickness, --crop or --hide-label");
    return warnings;
}

host::ProjectedImage Project(host::Projector& projector, const Task& task, size_t picture)
{
    return task.thickness ? projector.ThroughSlab(task.kind.projection, task.pictures[picture].param, *task.thickness)
                          : projector.ThroughVolume(task.kind.projection, task.framings[picture]);
}

std::string FileOf(const Task& task, const PlannedPicture& planned, host::ProjectedImage& image,
                   const host::Volume& volume, const host::ProjectedSpace& space, const host::Window& window)
{
    if (task.format == "png16")
        return host::Png16Of(image.Record(), volume.valueSlope, volume.valueIntercept);
    if (task.format == "nrrd")
        return host::NrrdOf(image.Record(), planned.thickness, volume.valueSlope, volume.valueIntercept);
    host::Picture picture = host::GreyProjection(image, host::EmptyPixels(image, space), volume, window);
    if (!task.options.planes.noLetters)
    {
        host::DrawOrientationLetters(picture, image.plane);
        host::DrawScaleBar(picture);
    }
    return host::PngOf(picture);
}

Json GeometryOf(const PlannedPicture& planned, const std::string& file, bool ras)
{
    Json geometry = JsonOf(planned, file, ras);
    geometry["thickness"] = planned.thickness;
    return geometry;
}

// The window that was asked for or suits the values; else that of the picture in the middle, the same for all.
host::Window ChooseWindow(const Task& task, host::Projector& projector, const host::Volume& volume,
                          const host::ProjectedSpace& space)
{
    if (const auto window = WindowOf(task.options, task.kind.projection, volume))
        return *window;
    const host::ProjectedImage middle = Project(projector, task, task.pictures.size() / 2);
    return host::WindowOfProjection(middle, host::EmptyPixels(middle, space), volume);
}

void CheckFormat(const Task& task)
{
    if (task.options.planes.json && task.options.planes.output == "-")
        throw Error(ErrorKind::Usage, "--json and --output - both want standard output");
    if (task.format != "png" && !task.options.planes.window.empty())
        throw Error(ErrorKind::Usage,
                    "--window belongs to --format png; " + task.format + " holds the stored values themselves");
}

void RunProjection(const Kind& kind, const ProjectionOptions& options)
{
    const MprOptions& common = options.planes;
    Task task = {kind, options, FormatOf(common.format, common.output), ThicknessOf(options), {}, {}, {}};
    CheckFormat(task);
    const std::set<int> hidden = HiddenLabelsOf(options);
    const int margin = HideMarginOf(options);
    host::Volume volume = host::ReadVolume(common.input, {common.series});
    if (!common.labels.empty())
        volume.labels = host::ReadLabels(common.labels, volume.grid);
    WindowOf(options, kind.projection, volume); // says at once what is wrong with it
    PrintWarnings(volume.warnings);
    CheckLabels(options, hidden, volume);
    const std::vector<std::string> warnings = WarningsOf(task, volume);
    PrintWarnings(warnings);

    host::HideLabels(volume, hidden, margin);
    const VrOptions viewOptions = ViewOptionsOf(options);
    task.crop = CropOf(viewOptions, volume);
    if (!task.thickness)
        task.framings = FramingsOf(ViewsOf(viewOptions), task.crop, SizeOf(viewOptions), ZoomOf(viewOptions));
    const host::VolumeView view(volume, PaddingOf(common.pad, volume.grid));
    host::Projector projector(view);
    task.pictures = task.thickness ? PlanSlabs(task, view, volume.grid) : PlanViews(task, projector);
    PictureFiles files(NameOutputs(common.output, task.format, task.pictures), common.force);
    if (task.crop.box)
        projector.SetVisibleBox(*task.crop.box);
    const host::ProjectedSpace space = {view.PaddedGrid(), task.thickness, task.crop.box,
                                        !hidden.empty() || !options.view.cropVoxels.empty() || HasCuts(volume)};
    host::Window window;
    if (task.format == "png")
        window = ChooseWindow(task, projector, volume, space);

    Json list = Json::array();
    std::vector<std::string> lines;
    Progress progress(int(task.pictures.size()));
    for (size_t n = 0; n < task.pictures.size(); ++n)
    {
        const PlannedPicture& planned = task.pictures[n];
        host::ProjectedImage image = Project(projector, task, n);
        files.Write(n, FileOf(task, planned, image, volume, space, window));
        progress.Show(int(n) + 1);
        list.push_back(GeometryOf(planned, files.Name(n), common.ras));
        lines.push_back(files.Name(n) + "  " + std::to_string(planned.param.columns) + " x " +
                        std::to_string(planned.param.rows) + " pixels of " + host::Number(planned.param.columnSpacing) +
                        " mm");
    }
    if (common.json)
    {
        Json all = {{"space", common.ras ? "RAS" : "LPS"},
                    {"projection", kind.name},
                    {"through", task.thickness ? "slab" : "volume"},
                    {"format", task.format}};
        if (task.format == "png")
            all["window"] = {{"center", window.centre}, {"width", window.width}};
        all["warnings"] = warnings;
        all["pictures"] = list;
        PrintJson(all);
    }
    else if (common.output != "-")
        for (const std::string& line : lines)
            PrintResult(line);
}
} // namespace

void AddProjectionCommands(CLI::App& program)
{
    std::string windows;
    for (const host::NamedWindow& named : host::NamedWindows())
        windows += std::string(windows.empty() ? "" : "; ") + named.name + " " + host::Number(named.window.centre) +
                   "," + host::Number(named.window.width);
    for (const Kind& kind : kKinds)
    {
        auto options = std::make_shared<ProjectionOptions>();
        CLI::App* command = program.add_subcommand(kind.name, kind.summary);
        AddProjectionOptions(*command, *options);
        command->footer(
            "Windows: " + windows + "\nWithout --window: " + kind.defaultWindow +
            "\n\n"
            "Without --thickness rays go through the whole volume and labels can be left out; slabs take\n"
            "every voxel, whatever its label. Rays that meet nothing are black, -1024 in png16 and nrrd.\n\n"
            "Examples:\n" +
            kind.examples + "\n" + kExitCodes);
        command->callback([&kind, options] { RunProjection(kind, *options); });
    }
}
} // namespace corvane::app
