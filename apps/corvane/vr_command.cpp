#include "vr_command.h"

#include <memory>

#include "film_files.h"
#include "film_palettes.h"
#include "host/error.h"
#include "host/numbers.h"
#include "host/orientation.h"
#include "host/picture_marks.h"
#include "host/plane.h"
#include "host/read_text.h"
#include "host/read_volume.h"
#include "host/view_planes.h"
#include "input_option.h"
#include "report.h"
#include "vr_options.h"

namespace corvane::app
{
namespace
{
using host::Error;
using host::ErrorKind;
using host::Vec3;

// The customary colours of the three planes.
host::Rgb FrameColour(const std::string& plane)
{
    if (plane == "axial")
        return {220, 60, 60};
    return plane == "sagittal" ? host::Rgb{220, 200, 60} : host::Rgb{70, 180, 90};
}

// Planes of the volume that are shown in its rendering.
class Sections
{
public:
    Sections(const VrOptions& options, const host::Volume& volume, const host::VolumeView& view)
        : volume_(volume), view_(view)
    {
        const PlaneRequest request = PlanesOf(options);
        if (request.planes.empty())
            return;
        window_ = host::ParseWindow(options.window, volume);
        EngineMPR engine;
        if (!engine.InitData(view.Data()))
            throw Error(ErrorKind::Computation, "the library refuses this volume");
        planes_ = PlanPictures(engine, view.PaddedGrid(), request);
    }

    std::vector<host::SeenPlane> SeenIn(const PnImageParam& picture) const
    {
        std::vector<host::SeenPlane> seen;
        for (const PlannedPicture& plane : planes_)
            if (auto one = host::SeenPlaneOf(plane.param, picture, view_, volume_, window_, FrameColour(plane.plane)))
                seen.push_back(std::move(*one));
        return seen;
    }

private:
    const host::Volume& volume_;
    const host::VolumeView& view_;
    host::Window window_;
    std::vector<PlannedPicture> planes_;
};

host::RenderedImage Render(host::ViewRenderer& renderer, const Sections& sections, const host::Framing& framing)
{
    const std::vector<host::SeenPlane> seen = sections.SeenIn(renderer.PlaneOf(framing));
    std::vector<KsBlendImage> records;
    for (const host::SeenPlane& one : seen)
        records.push_back(one.record);
    return renderer.Render(framing, records);
}

Json GeometryOf(const std::string& file, const host::View& view, const PnImageParam& plane, bool ras)
{
    const Vec3 right = host::RowDirection(plane), down = host::ColumnDirection(plane);
    const auto vector = [&](Vec3 v) { return JsonOf(TurnedIf(ras, v)); };
    return {{"file", file},
            {"rows", plane.rows},
            {"columns", plane.columns},
            {"pixelSize", plane.columnSpacing},
            {"direction", vector(view.direction)},
            {"up", vector(view.up)},
            {"rowDirection", vector(right)},
            {"columnDirection", vector(down)},
            {"position", vector(host::FirstPixel(plane))},
            {"letters",
             {{"left", host::DirectionLetters(-1.0 * right)},
              {"right", host::DirectionLetters(right)},
              {"top", host::DirectionLetters(-1.0 * down)},
              {"bottom", host::DirectionLetters(down)}}}};
}

void RunVr(const VrOptions& options)
{
    if (options.listPresets)
    {
        ListPresets(options.json);
        return;
    }
    CheckOptions(options);
    PlanesOf(options);
    const double zoom = ZoomOf(options);
    const std::vector<host::View> views = ViewsOf(options);
    FilmFiles files(options, "vr", int(views.size()));

    host::Volume volume = host::ReadVolume(options.input, {options.series});
    const ChosenPalettes palettes = ChoosePalettes(options, "default", volume);
    PrintWarnings(volume.warnings);
    PrintWarnings(palettes.warnings);
    const Crop crop = CropOf(options, volume);
    const host::PaletteTables tables(palettes.byLabel);
    const host::VolumeView view(volume, PaddingOf(options.pad, volume.grid));
    const Sections sections(options, volume, view);
    host::ViewRenderer renderer(view, tables);
    if (crop.box)
        renderer.SetVisibleBox(*crop.box);

    const PictureSize size = SizeOf(options);
    const std::vector<host::Framing> framings = FramingsOf(views, crop, size, zoom);
    Json list = Json::array();
    std::vector<std::string> lines;
    Progress progress(int(views.size()));
    for (size_t n = 0; n < views.size(); ++n)
    {
        const host::RenderedImage image = Render(renderer, sections, framings[n]);
        const PnImageParam& plane = image.plane;
        host::Picture picture = host::PictureOf(image, BackgroundOf(options), true);
        if (options.letters)
        {
            host::DrawOrientationLetters(picture, plane);
            host::DrawScaleBar(picture);
        }
        const std::string file = files.Add(picture);
        progress.Show(int(n) + 1);
        list.push_back(GeometryOf(file, views[n], plane, options.ras));
        if (!file.empty())
            lines.push_back(file + "  " + std::to_string(size.columns) + " x " + std::to_string(size.rows) +
                            " pixels of " + host::Number(plane.columnSpacing) + " mm");
    }
    files.Finish();
    if (!options.video.empty())
        lines.push_back(options.video + "  " + std::to_string(views.size()) + " pictures");
    if (options.json)
        PrintJson({{"space", options.ras ? "RAS" : "LPS"},
                   {"palette", palettes.base.name},
                   {"warnings", palettes.warnings},
                   {"video", options.video},
                   {"pictures", list}});
    else if (options.output != "-")
        for (const std::string& line : lines)
            PrintResult(line);
}
} // namespace

void AddVrCommand(CLI::App& program)
{
    auto options = std::make_shared<VrOptions>();
    CLI::App* vr = program.add_subcommand("vr", "Make volume renderings: a look at the patient from outside");
    AddVrOptions(*vr, *options);
    vr->footer(
        std::string("A transfer function says how values become colour and opacity; presets are made for CT in\n"
                    "Hounsfield units. The form of a palette file stands in docs/palettes.md.\n\n"
                    "Examples:\n"
                    "  corvane vr study/ --preset bone -o bone.png\n"
                    "  corvane vr study/ --preset vessels --view left --elevation 20 -o left.png\n"
                    "  corvane vr ct.nii.gz --palette presets.xml#CT-Bone -o slicer.png\n"
                    "  corvane vr ct.nii.gz --labels organs.nii.gz --label-palette 0:bone --show-labels -o o.png\n"
                    "  corvane vr ct.nii.gz --preset bone --planes axial,sagittal -o planes.png\n"
                    "  corvane vr ct.nii.gz --turntable 72 --video turn.mp4\n"
                    "  corvane vr phantom: --label-palette 0:hide --show-labels -o labels.png\n\n") +
        kExitCodes);
    vr->callback([options] { RunVr(*options); });
}
} // namespace corvane::app
