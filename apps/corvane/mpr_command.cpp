#include "mpr_command.h"

#include <filesystem>
#include <memory>
#include <optional>

#include "host/error.h"
#include "host/label_colours.h"
#include "host/numbers.h"
#include "host/orientation.h"
#include "host/output_file.h"
#include "host/picture_marks.h"
#include "host/plane.h"
#include "host/read_text.h"
#include "host/read_volume.h"
#include "host/write_nrrd.h"
#include "host/write_png.h"
#include "mpr_options.h"
#include "output_names.h"
#include "report.h"

namespace corvane::app
{
namespace
{
using host::Error;
using host::ErrorKind;
using host::Vec3;

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

Json GeometryOf(const PlannedPicture& planned, const std::string& file, bool ras)
{
    const PnImageParam& plane = planned.param;
    const Vec3 row = host::RowDirection(plane), column = host::ColumnDirection(plane);
    const auto vector = [&](Vec3 v) { return JsonOf(TurnedIf(ras, v)); };
    return {{"file", file},
            {"plane", planned.plane},
            {"index", planned.index},
            {"offset", planned.offset},
            {"rows", plane.rows},
            {"columns", plane.columns},
            {"rowSpacing", plane.rowSpacing},
            {"columnSpacing", plane.columnSpacing},
            {"rowDirection", vector(row)},
            {"columnDirection", vector(column)},
            {"normal", vector(planned.normal)},
            {"position", vector(host::FirstPixel(plane))},
            {"letters",
             {{"left", host::DirectionLetters(-1.0 * row)},
              {"right", host::DirectionLetters(row)},
              {"top", host::DirectionLetters(-1.0 * column)},
              {"bottom", host::DirectionLetters(column)}}}};
}

// Makes the folder of the pictures, and takes it away again unless a picture came to stand in it.
class NewFolder
{
public:
    explicit NewFolder(const std::string& path) : path_(path)
    {
        std::error_code problem;
        if (!path_.empty() && !std::filesystem::create_directory(path_, problem) && problem)
            throw Error(ErrorKind::Output, path_ + ": the folder cannot be made: " + problem.message());
    }
    ~NewFolder()
    {
        std::error_code ignored;
        if (!path_.empty())
            std::filesystem::remove(path_, ignored); // only while it is empty
    }
    NewFolder(const NewFolder&) = delete;
    NewFolder& operator=(const NewFolder&) = delete;

private:
    std::string path_;
};

void RunMpr(const MprOptions& options)
{
    const std::string format = FormatOf(options.format, options.output);
    if (options.json && options.output == "-")
        throw Error(ErrorKind::Usage, "--json and --output - both want standard output");
    host::Volume volume = host::ReadVolume(options.input, {options.series});
    PrintWarnings(volume.warnings);
    const Appearance look = AppearanceOf(options, format, volume);
    const PlaneRequest request = RequestOf(options, volume.grid);

    const host::VolumeView view(volume, PaddingOf(options, volume.grid));
    EngineMPR engine;
    if (!engine.InitData(view.Data()))
        throw Error(ErrorKind::Computation, "the library refuses this volume");
    const std::vector<PlannedPicture> pictures = PlanPictures(engine, view.PaddedGrid(), request);
    const OutputNames names = NameOutputs(options.output, format, pictures);
    if (names.newFolder.empty())
        for (const std::string& file : names.files)
            host::CheckOutput(file, options.force);

    Json list = Json::array();
    std::vector<std::string> lines;
    Progress progress(int(pictures.size()));
    std::optional<NewFolder> folder; // made only when there is a picture to put into it
    for (size_t n = 0; n < pictures.size(); ++n)
    {
        const PlannedPicture& planned = pictures[n];
        OwnedImage image;
        if (!engine.Imaging(planned.param, &image))
            throw Error(ErrorKind::Computation, "the library refuses the " + planned.plane + " plane");
        const std::string bytes = FileOf(planned, image, volume, view.PaddedGrid(), format, look);
        if (!folder)
            folder.emplace(names.newFolder);
        host::WriteOutput(names.files[n], bytes, options.force);
        progress.Show(int(n) + 1);
        list.push_back(GeometryOf(planned, names.files[n], options.ras));
        lines.push_back(names.files[n] + "  " + std::to_string(planned.param.columns) + " x " +
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
