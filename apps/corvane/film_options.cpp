#include "film_options.h"

#include <charconv>

#include "host/error.h"
#include "host/numbers.h"
#include "host/palette_presets.h"
#include "input_option.h"
#include "report.h"

namespace corvane::app
{
namespace
{
using host::Error;
using host::ErrorKind;

constexpr int kLongestSide = 8192; // pixels
} // namespace

void AddRenderingOptions(CLI::App& command, RenderingOptions& options)
{
    AddInput(command, options.input);
    command.add_option("--series", options.series, "which series of a DICOM folder, by number or UID");
    command.add_option(
        "-o,--output", options.output,
        "a .png file for one picture, a folder or a pattern with {index} for more, - for standard output");
    command.add_option("--size", options.size, "COLUMNSxROWS of the picture in pixels, or N for N x N (default 512)");
    command.add_flag("--force", options.force, "replace files that stand there already");
    command.add_flag("--json", options.json, "print what was rendered, and how, as JSON");
    command.add_flag("--ras", options.ras, "points and directions are given and printed as RAS instead of LPS");
    AddAppearanceOptions(command, options);

    const char* film = "Film";
    command.add_option("--video", options.video, "a film of all pictures: .mp4, .mkv or .webm; needs ffmpeg")
        ->group(film);
    command.add_option("--fps", options.framesPerSecond, "pictures per second of the film (default 25)")->group(film);
}

void AddAppearanceOptions(CLI::App& command, RenderingOptions& options)
{
    const char* look = "Appearance";
    command.add_option("--preset", options.preset, "a transfer function by name; see --list-presets")->group(look);
    command.add_flag("--list-presets", options.listPresets, "print their names, render nothing")->group(look);
    command
        .add_option("--palette", options.palette,
                    "a transfer function from a file: a palette in JSON, 3D Slicer's .vp.json, or FILE#NAME of its "
                    "presets in XML")
        ->group(look);
    command.add_option("--labels", options.labels, "a label volume of the same grid")->group(look);
    command
        .add_flag("--show-labels", options.showLabels,
                  "show labels, also those that the input brings along, solid and in their colours")
        ->group(look);
    command.add_option("--label-colors", options.labelColours, "a colour table: .ctbl or label descriptions")
        ->group(look);
    command
        .add_option("--label-palette", options.labelPalettes,
                    "LABEL:NAME or LABEL:FILE, a transfer function for one label (label 0: the rest), or LABEL:hide; "
                    "may be repeated")
        ->allow_extra_args(false)
        ->group(look);
    command.add_option("--background", options.background, "RRGGBB (default 000000, black)")->group(look);
    command
        .add_option("--pad", options.pad,
                    "the outermost one to two voxel layers cannot be sampled unless they are doubled: auto (along axes "
                    "of fewer than 16 voxels), all or none")
        ->group(look);
}

void ListPresets(bool json)
{
    Json list = Json::array();
    for (const host::PresetName& preset : host::PresetNames())
    {
        std::string name = preset.name;
        name.resize(10, ' ');
        if (json)
            list.push_back({{"name", preset.name}, {"description", preset.description}});
        else
            PrintResult(name + preset.description);
    }
    if (json)
        PrintJson({{"presets", list}});
}

void CheckOptions(const RenderingOptions& options)
{
    if (options.output.empty() && options.video.empty())
        throw Error(ErrorKind::Usage, "say where the pictures go with --output, or make a film with --video");
    if (options.json && options.output == "-")
        throw Error(ErrorKind::Usage, "--json and --output - both want standard output");
    CheckAppearance(options);
    CountOf(options.framesPerSecond, "--fps takes a number of pictures from 1 to 120", 1, 120);
}

void CheckAppearance(const RenderingOptions& options)
{
    if (!options.preset.empty() && !options.palette.empty())
        throw Error(ErrorKind::Usage, "give --preset or --palette, not both");
    SizeOf(options);
    BackgroundOf(options);
    PaddingOf(options.pad, {});
}

PictureSize SizeOf(const RenderingOptions& options)
{
    const std::string what = "--size takes COLUMNSxROWS or one number, from 2 to " + std::to_string(kLongestSide);
    const std::vector<std::string> sides = host::Split(options.size, 'x');
    if (sides.size() > 2)
        throw Error(ErrorKind::Usage, what + ", not '" + options.size + "'");
    const auto side = [&](const std::string& text) { return uint32_t(CountOf(text, what, 2, kLongestSide)); };
    return {side(sides.back()), side(sides.front())};
}

host::Rgb BackgroundOf(const RenderingOptions& options)
{
    const std::string& text = options.background;
    uint32_t colour = 0;
    const char* const end = text.data() + text.size();
    if (text.size() != 6 || std::from_chars(text.data(), end, colour, 16).ptr != end)
        throw Error(ErrorKind::Usage, "--background takes RRGGBB, as in 102030, not '" + text + "'");
    return {uint8_t(colour >> 16), uint8_t(colour >> 8), uint8_t(colour)};
}

host::Vec3 PointOf(const std::string& text, bool ras, const std::string& what)
{
    const std::vector<double> numbers = host::RequireNumbers(text, ',', 3, what);
    return TurnedIf(ras, {numbers[0], numbers[1], numbers[2]});
}

int CountOf(const std::string& text, const std::string& what, int least, int most)
{
    const int number = host::RequireInteger(text, what);
    if (number < least || number > most)
        throw Error(ErrorKind::Usage, what + ", not '" + text + "'");
    return number;
}
} // namespace corvane::app
