#include "ve_command.h"

#include <cmath>
#include <memory>

#include "film_files.h"
#include "film_palettes.h"
#include "host/error.h"
#include "host/read_text.h"
#include "host/read_volume.h"
#include "host/window.h"
#include "input_option.h"
#include "report.h"
#include "ve_options.h"

namespace corvane::app
{
namespace
{
using host::Error;
using host::ErrorKind;
using host::Vec3;

// The voxel in which a point lies. Throws Error (Usage) for a point outside.
size_t VoxelAt(const host::Grid& grid, Vec3 point, bool ras)
{
    const Vec3 index = host::PatientToIndex(grid, point);
    const double i = std::floor(index.x + 0.5), j = std::floor(index.y + 0.5), k = std::floor(index.z + 0.5);
    if (!(i >= 0 && j >= 0 && k >= 0 && i < grid.sizeX && j < grid.sizeY && k < grid.sizeZ))
        throw Error(ErrorKind::Usage, "the eye at " + host::PointText(TurnedIf(ras, point)) +
                                          " mm stands outside the volume; see corvane info for where it lies");
    return (size_t(k) * size_t(grid.sizeY) + size_t(j)) * size_t(grid.sizeX) + size_t(i);
}

// An eye in opaque tissue sees nothing else.
bool IsBuried(const host::Volume& volume, const host::PaletteTables& tables, size_t voxel)
{
    constexpr float kThick = 0.2f; // opacity of a sample
    const int label = volume.labels.empty() ? 0 : volume.labels[voxel];
    const VolumePaletteEntry* const entry = label < 64 ? tables.Records().entries[label] : nullptr;
    const int value = volume.voxels[voxel];
    return entry && value >= entry->rangeStart && value <= entry->rangeEnd &&
           entry->opacities[value - entry->rangeStart] > kThick;
}

Json GeometryOf(const std::string& file, const host::InsideView& view, const PnImageParam& plane, bool ras)
{
    const auto vector = [&](Vec3 v) { return JsonOf(TurnedIf(ras, v)); };
    return {{"file", file},
            {"rows", plane.rows},
            {"columns", plane.columns},
            {"eye", vector(view.eye)},
            {"direction", vector(view.direction)},
            {"up", vector(view.up)}};
}

void RunVe(const VeOptions& options)
{
    if (options.listPresets)
    {
        ListPresets(options.json);
        return;
    }
    CheckOptions(options);
    const double fieldOfView = FieldOfViewOf(options);
    FilmFiles files(options, "ve", PictureCount(options));

    host::Volume volume = host::ReadVolume(options.input, {options.series});
    const std::vector<host::InsideView> views = InsideViewsOf(options, volume);
    const ChosenPalettes palettes =
        ChoosePalettes(options, host::HoldsHounsfieldUnits(volume) ? "airway" : "mr", volume);
    std::vector<std::string> warnings = palettes.warnings;
    const host::PaletteTables tables(palettes.byLabel);
    int buried = 0;
    for (const host::InsideView& view : views)
        buried += IsBuried(volume, tables, VoxelAt(volume.grid, view.eye, options.ras));
    if (buried > 0)
        warnings.push_back("the eye stands in opaque tissue" +
                           (views.size() > 1
                                ? " in " + std::to_string(buried) + " of " + std::to_string(views.size()) + " pictures"
                                : std::string()) +
                           " and sees nothing else there; choose another point or preset");
    PrintWarnings(volume.warnings);
    PrintWarnings(warnings);
    const host::VolumeView view(volume, PaddingOf(options.pad, volume.grid));
    host::ViewRenderer renderer(view, tables);

    const PictureSize size = SizeOf(options);
    Json list = Json::array();
    std::vector<std::string> lines;
    Progress progress(int(views.size()));
    for (size_t n = 0; n < views.size(); ++n)
    {
        const host::RenderedImage image = renderer.RenderInside(views[n], fieldOfView, size.rows, size.columns);
        const std::string file = files.Add(host::PictureOf(image, BackgroundOf(options), false));
        progress.Show(int(n) + 1);
        list.push_back(GeometryOf(file, views[n], image.plane, options.ras));
        if (!file.empty())
            lines.push_back(file + "  " + std::to_string(size.columns) + " x " + std::to_string(size.rows) +
                            " pixels, eye at " + host::PointText(TurnedIf(options.ras, views[n].eye)) + " mm");
    }
    files.Finish();
    if (!options.video.empty())
        lines.push_back(options.video + "  " + std::to_string(views.size()) + " pictures");
    if (options.json)
        PrintJson({{"space", options.ras ? "RAS" : "LPS"},
                   {"palette", palettes.base.name},
                   {"fieldOfView", fieldOfView},
                   {"warnings", warnings},
                   {"video", options.video},
                   {"pictures", list}});
    else if (options.output != "-")
        for (const std::string& line : lines)
            PrintResult(line);
}
} // namespace

void AddVeCommand(CLI::App& program)
{
    auto options = std::make_shared<VeOptions>();
    CLI::App* ve = program.add_subcommand("ve", "Virtual endoscopy: a look from a point inside the patient");
    AddVeOptions(*ve, *options);
    ve->footer(std::string("The preset is airway unless another is chosen: air is clear, its walls are shown.\n\n"
                           "Examples:\n"
                           "  corvane ve phantom: -o bowel.png\n"
                           "  corvane ve ct.nii.gz -o inside.png               from a cavity that is looked for\n"
                           "  corvane ve ct.nii.gz --eye 3.5,-12,-80 --direction 0,0,-1 -o airway.png\n"
                           "  corvane ve ct.nii.gz --eye-voxel 30,28,57 --direction 0,-1,0 -o nose.png\n"
                           "  corvane ve ct.nii.gz --path line.txt --frames 200 --video flight.mp4\n"
                           "  corvane ve phantom: --point 2,8,150 --point 0,6,90 --frames 30 -o flight/\n\n") +
               kExitCodes);
    ve->callback([options] { RunVe(*options); });
}
} // namespace corvane::app
