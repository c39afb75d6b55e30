#include "cut_command.h"

#include <algorithm>
#include <memory>
#include <set>

#include "cut_options.h"
#include "cut_report.h"
#include "film_palettes.h"
#include "host/cut_picture.h"
#include "host/error.h"
#include "host/label_byte.h"
#include "host/label_file.h"
#include "host/output_file.h"
#include "host/picture_marks.h"
#include "host/read_volume.h"
#include "host/view_rendering.h"
#include "host/write_png.h"
#include "input_option.h"
#include "picture_files.h"

namespace corvane::app
{
namespace
{
using host::Error;
using host::ErrorKind;

// Renders the volume as corvane vr does, with the labels that it has at the time.
class Scenery
{
public:
    Scenery(const CutOptions& options, const host::Volume& volume, const host::PaletteTables& tables, const Crop& crop)
        : options_(options), view_(volume, PaddingOf(options.pad, volume.grid)), renderer_(view_, tables),
          framing_(FramingsOf(ViewsOf(options), crop, SizeOf(options), ZoomOf(options)).front())
    {
        if (crop.box)
            renderer_.SetVisibleBox(*crop.box);
    }

    PnImageParam Plane() { return renderer_.PlaneOf(framing_); }

    // Returns a PNG file.
    //   region  drawn over the picture; null for none
    std::string Picture(const host::DrawnRegion* region)
    {
        const host::RenderedImage image = renderer_.Render(framing_);
        host::Picture picture = host::PictureOf(image, BackgroundOf(options_), true);
        if (region)
            host::DrawRegion(picture, *region, SideOf(options_));
        if (options_.letters)
        {
            host::DrawOrientationLetters(picture, image.plane);
            host::DrawScaleBar(picture);
        }
        return host::PngOf(picture);
    }

private:
    const CutOptions& options_;
    host::VolumeView view_;
    host::ViewRenderer renderer_;
    host::Framing framing_;
};

host::DrawnRegion Draw(const CutOptions& options, const std::vector<host::GivenPolygon>& given, CutResult& result)
{
    const PnImageParam& plane = result.plane;
    for (const host::GivenPolygon& polygon : given)
        result.polygons.push_back(host::InPicture(polygon, plane, options.ras));
    host::DrawnRegion region = {plane, host::DrawPolygons(result.polygons, plane.rows, plane.columns)};
    result.regionPixels = size_t(std::count(region.pixels.begin(), region.pixels.end(), 1));
    if (result.regionPixels == 0)
        throw Error(ErrorKind::Usage, "the polygons cover no pixel of the picture of " + std::to_string(plane.columns) +
                                          " x " + std::to_string(plane.rows) +
                                          " pixels; give the --size and --zoom that they were made for");
    return region;
}

std::array<bool, 64> ShownLabels(const ChosenPalettes& palettes)
{
    std::array<bool, 64> shown = {};
    for (const auto& [label, palette] : palettes.byLabel)
        shown[size_t(label)] = true;
    return shown;
}

// The volume's labels after the cut.
//   before  its labels before it; those of the volume itself also hide what --crop-voxels leaves out, for as long as
//           pictures are made, and that is not to last
std::vector<uint8_t> Cut(const host::Volume& volume, const std::vector<uint8_t>& before,
                         const host::DrawnRegion& region, host::CutSide side, const host::CutLimits& limits)
{
    host::CutSelection selection(volume);
    selection.Select(region, side, limits);
    std::vector<uint8_t> labels = selection.Cut();
    for (size_t voxel = 0; voxel < labels.size(); ++voxel)
        if (!volume.labels.empty() && volume.labels[voxel] != before[voxel])
            labels[voxel] = before[voxel];
    return labels;
}

void RunCut(const CutOptions& options)
{
    if (options.listPresets)
    {
        ListPresets(options.json);
        return;
    }
    CheckCutOptions(options);
    const std::vector<host::GivenPolygon> given = PolygonsOf(options);
    if (!options.output.empty())
        host::CheckOutput(options.output, options.force);
    PictureFiles previews(PreviewNames(options), options.force);

    host::Volume volume = host::ReadVolume(options.input, {options.series});
    const ChosenPalettes palettes = ChoosePalettes(options, "default", volume);
    PrintWarnings(volume.warnings);
    PrintWarnings(palettes.warnings);
    std::vector<uint8_t> before = volume.labels;
    before.resize(volume.grid.VoxelCount());
    const Crop crop = CropOf(options, volume);
    const host::PaletteTables tables(palettes.byLabel);

    CutResult result = {};
    host::DrawnRegion region;
    std::vector<std::string> pictures;
    {
        Scenery scenery(options, volume, tables, crop);
        result.plane = scenery.Plane();
        region = Draw(options, given, result);
        if (!options.preview.empty())
            pictures = {scenery.Picture(nullptr), scenery.Picture(&region)};
    }
    const host::CutLimits limits = LimitsOf(options, ShownLabels(palettes), crop, result.plane);
    const std::vector<uint8_t> after = Cut(volume, before, region, SideOf(options), limits);
    if (!options.preview.empty())
    {
        volume.labels = after;
        CropOf(options, volume);
        pictures.push_back(Scenery(options, volume, tables, crop).Picture(nullptr));
    }
    result.counts = host::CountCuts(before, after);
    result.voxelVolume = host::VoxelVolume(volume.grid);
    result.warnings = WarningsOf(result);
    PrintWarnings(result.warnings);

    for (size_t n = 0; n < pictures.size(); ++n)
    {
        previews.Write(n, pictures[n]);
        result.previews.push_back(previews.Name(n));
    }
    if (!options.output.empty())
        host::WriteOutput(options.output, host::LabelFileOf(after, volume.grid, host::LabelFormatOf(options.output)),
                          options.force);
    PrintCut(options, result);
}
} // namespace

void AddCutCommand(CLI::App& program)
{
    auto options = std::make_shared<CutOptions>();
    CLI::App* cut = program.add_subcommand("cut", "Cut away what a polygon on a volume rendering covers");
    AddCutOptions(*cut, *options);
    cut->footer(
        std::string("Draw the polygon on a picture of corvane vr with the same options for view, size and crop: its\n"
                    "pixels are those of the polygon. A voxel is cut away when its centre is seen through a pixel\n"
                    "whose own centre lies inside of a polygon, however deep it lies; hidden labels are not cut.\n"
                    "Inside is what a polygon's line goes round, also where it crosses itself (non-zero winding).\n\n"
                    "The volume stays as it is. The output is a label file: the labels that the picture shows, with\n"
                    "64 added where a voxel is cut away. vr, ve and mip leave those voxels out, mpr darkens them;\n"
                    "cut adds to them with --labels, so every step has a file of its own to go back to.\n\n"
                    "Examples:\n"
                    "  corvane vr study/ --preset bone -o bone.png                 look, and note corners\n"
                    "  corvane cut study/ --preset bone --polygon 100,80:400,90:380,420 --preview try/\n"
                    "  corvane cut study/ --polygon 100,80:400,90:380,420 -o cut1.nrrd\n"
                    "  corvane vr study/ --labels cut1.nrrd --preset bone -o open.png\n"
                    "  corvane cut study/ --labels cut1.nrrd --view left --polygons lasso.json -o cut2.nrrd\n"
                    "  corvane cut study/ --polygon 150,60:360,60:360,470:150,470 --keep -o table_gone.nrrd\n"
                    "  corvane cut study/ --polygon 200,100:300,100:300,300 --depth -200,0 -o front_half.nrrd\n\n") +
        kExitCodes);
    cut->callback([options] { RunCut(*options); });
}
} // namespace corvane::app
