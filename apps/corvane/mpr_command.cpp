#include "mpr_command.h"

#include <memory>

#include "host/error.h"
#include "host/label_colours.h"
#include "host/numbers.h"
#include "host/orientation.h"
#include "host/picture_marks.h"
#include "host/plane.h"
#include "host/read_text.h"
#include "host/read_volume.h"
#include "host/write_nrrd.h"
#include "host/write_png.h"
#include "input_option.h"
#include "mpr_options.h"
#include "picture_files.h"
#include "report.h"

namespace corvane::app
{
namespace
{
using host::Error;
using host::ErrorKind;

// How values and labels become a picture.
struct Appearance
{
    host::Window window;
    host::LabelColours colours;
    double labelOpacity = 0.4;
    bool labels = false, letters = true;
};

Appearance AppearanceOf(const MprOptions& options, const std::string& format, host::Volume& volume)
{
    Appearance look;
    if (format != "png" && !(options.window.empty() && options.labels.empty() && !options.showLabels))
        throw Error(ErrorKind::Usage, "--window, --labels and --show-labels belong to --format png; " + format +
                                          " holds the stored values themselves");
    look.window = host::ParseWindow(options.window, volume);
    look.letters = !options.noLetters;
    look.labels = options.showLabels || !options.labels.empty();
    if (!look.labels && !(options.labelColours.empty() && options.labelOpacity.empty()))
        throw Error(ErrorKind::Usage, "--label-colors and --label-opacity need --labels or --show-labels");
    if (!options.labels.empty())
        volume.labels = host::ReadLabels(options.labels, volume.grid);
    if (look.labels && volume.labels.empty())
        throw Error(ErrorKind::Usage, "the input has no labels of its own; give them with --labels FILE");
    look.colours =
        options.labelColours.empty() ? host::DefaultLabelColours() : host::ReadLabelColours(options.labelColours);
    if (!options.labelOpacity.empty())
    {
        const std::string what = "--label-opacity is a number from 0 to 1";
        look.labelOpacity = host::RequireNumber(options.labelOpacity, what);
        if (look.labelOpacity < 0 || look.labelOpacity > 1)
            throw Error(ErrorKind::Usage, what + ", not '" + options.labelOpacity + "'");
    }
    return look;
}

// A library image that gives its buffer back.
struct OwnedImage : KsImageData
{
    OwnedImage() : KsImageData() {}
    ~OwnedImage()
    {
        if (ownsValues)
            delete[] values;
    }
    OwnedImage(const OwnedImage&) = delete;
    OwnedImage& operator=(const OwnedImage&) = delete;
};

std::string FileOf(const PlannedPicture& planned, const KsImageData& image, const host::Volume& volume,
                   const host::Grid& sampledGrid, const std::string& format, const Appearance& look)
{
    if (format == "png16")
        return host::Png16Of(image, volume.valueSlope, volume.valueIntercept);
    if (format == "nrrd")
        return host::NrrdOf(image, planned.thickness, volume.valueSlope, volume.valueIntercept);
    host::Picture picture = host::GreyPicture(image, volume, sampledGrid, look.window);
    if (look.labels)
        host::BlendLabels(picture, host::SampleLabels(volume.labels, volume.grid, image.param), look.colours,
                          look.labelOpacity);
    if (look.letters)
    {
        host::DrawOrientationLetters(picture, image.param);
        host::DrawScaleBar(picture);
    }
    return host::PngOf(picture);
}

void RunMpr(const MprOptions& options)
{
    const std::string format = FormatOf(options.format, options.output);
    if (options.json && options.output == "-")
        throw Error(ErrorKind::Usage, "--json and --output - both want standard output");
    host::Volume volume = host::ReadVolume(options.input, {options.series});
    PrintWarnings(volume.warnings);
    const Appearance look = AppearanceOf(options, format, volume);
    const PlaneRequest request = RequestOf(options, volume.grid);

    const host::VolumeView view(volume, PaddingOf(options.pad, volume.grid));
    EngineMPR engine;
    if (!engine.InitData(view.Data()))
        throw Error(ErrorKind::Computation, "the library refuses this volume");
    const std::vector<PlannedPicture> pictures = PlanPictures(engine, view.PaddedGrid(), request);
    PictureFiles files(NameOutputs(options.output, format, pictures), options.force);

    Json list = Json::array();
    std::vector<std::string> lines;
    Progress progress(int(pictures.size()));
    for (size_t n = 0; n < pictures.size(); ++n)
    {
        const PlannedPicture& planned = pictures[n];
        OwnedImage image;
        if (!engine.Imaging(planned.param, &image))
            throw Error(ErrorKind::Computation, "the library refuses the " + planned.plane + " plane");
        const std::string bytes = FileOf(planned, image, volume, view.PaddedGrid(), format, look);
        files.Write(n, bytes);
        progress.Show(int(n) + 1);
        list.push_back(JsonOf(planned, files.Name(n), options.ras));
        lines.push_back(files.Name(n) + "  " + std::to_string(planned.param.columns) + " x " +
                        std::to_string(planned.param.rows) + " pixels of " + host::Number(planned.param.columnSpacing) +
                        " x " + host::Number(planned.param.rowSpacing) + " mm");
    }
    if (options.json)
    {
        Json all = {{"space", options.ras ? "RAS" : "LPS"}, {"format", format}};
        if (format == "png")
            all["window"] = {{"center", look.window.centre}, {"width", look.window.width}};
        all["pictures"] = list;
        PrintJson(all);
    }
    else if (options.output != "-")
        for (const std::string& line : lines)
            PrintResult(line);
}
} // namespace

void AddMprCommand(CLI::App& program)
{
    auto options = std::make_shared<MprOptions>();
    CLI::App* mpr = program.add_subcommand("mpr", "Make pictures of planes through a volume");
    AddMprOptions(*mpr, *options);
    std::string windows;
    for (const host::NamedWindow& named : host::NamedWindows())
        windows += std::string(windows.empty() ? "" : "; ") + named.name + " " + host::Number(named.window.centre) +
                   "," + host::Number(named.window.width);
    mpr->footer(
        windows +
        "\n\n"
        "A tilted or sheared stack is shown as it lies in the patient, without resampling first.\n"
        "Files come into being whole or not at all.\n\n"
        "Examples:\n"
        "  corvane mpr study/ -o pictures/                            the three standard planes\n"
        "  corvane mpr study/ --plane axial --window lung -o a.png    one plane, lung window\n"
        "  corvane mpr ct.nii.gz --rotate axial:30 --rotate sagittal:-15 -o oblique/\n"
        "  corvane mpr ct.nii.gz --plane coronal --count all --step 5 -o 'stack_{index}.png'\n"
        "  corvane mpr ct.nii.gz --labels organs.nii.gz --label-colors organs.ctbl -o labels/\n"
        "  corvane mpr ct.nii.gz --plane axial -o - | display -\n"
        "  corvane mpr ct.nii.gz --position 0,-100,50 --row 0.6,0.8,0 --column 0,0,-1 --size 256x256 -o p.png\n\n" +
        kExitCodes);
    mpr->callback([options] { RunMpr(*options); });
}
} // namespace corvane::app
