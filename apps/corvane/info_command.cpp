#include "info_command.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>

#include "host/read_text.h"
#include "host/read_volume.h"
#include "host/window.h"
#include "input_option.h"
#include "report.h"

namespace corvane::app
{
namespace
{
using host::Number;
using host::PointText;
using host::Vec3;

struct InfoOptions
{
    std::string input, series;
    bool json = false, ras = false;
};

struct Range
{
    double low, high;
};

Range RealRange(const host::Volume& volume)
{
    const auto [low, high] = std::minmax_element(volume.voxels.begin(), volume.voxels.end());
    const double a = volume.valueSlope * *low + volume.valueIntercept;
    const double b = volume.valueSlope * *high + volume.valueIntercept;
    return {std::min(a, b), std::max(a, b)};
}

Vec3 Centre(const host::Grid& grid)
{
    return host::IndexToPatient(grid, {0.5 * (grid.sizeX - 1), 0.5 * (grid.sizeY - 1), 0.5 * (grid.sizeZ - 1)});
}

std::array<size_t, 256> LabelCounts(const host::Volume& volume)
{
    std::array<size_t, 256> counts = {};
    for (uint8_t label : volume.labels)
        ++counts[label];
    return counts;
}

void ListAll(const std::vector<host::Series>& series, const InfoOptions& options)
{
    if (options.json)
    {
        Json list = Json::array();
        for (size_t n = 0; n < series.size(); ++n)
            list.push_back({{"number", n + 1},
                            {"uid", series[n].uid},
                            {"modality", series[n].modality},
                            {"description", series[n].description},
                            {"files", series[n].files.size()}});
        PrintJson({{"input", options.input}, {"series", list}});
        return;
    }
    PrintResult(std::to_string(series.size()) + " series; choose one with --series NUMBER or --series UID");
    for (size_t n = 0; n < series.size(); ++n)
        PrintResult("  " + std::to_string(n + 1) + "  " + series[n].modality + "  " +
                    std::to_string(series[n].files.size()) + " files  " + series[n].description + "  " + series[n].uid);
}

void DescribeAsJson(const host::Volume& volume, const InfoOptions& options)
{
    const host::Grid& grid = volume.grid;
    const Range range = RealRange(volume);
    const auto vector = [&](Vec3 v) { return JsonOf(TurnedIf(options.ras, v)); };
    Json labels = Json::array();
    const std::array<size_t, 256> counts = LabelCounts(volume);
    for (size_t label = 0; label < counts.size(); ++label)
        if (counts[label] > 0)
            labels.push_back({{"label", label}, {"voxels", counts[label]}});
    PrintJson({{"input", options.input},
               {"description", volume.description},
               {"modality", volume.modality},
               {"size", {grid.sizeX, grid.sizeY, grid.sizeZ}},
               {"spacing", JsonOf(grid.spacing)},
               {"space", options.ras ? "RAS" : "LPS"},
               {"rowDirection", vector(grid.rowDirection)},
               {"columnDirection", vector(grid.columnDirection)},
               {"sliceDirection", vector(grid.sliceDirection)},
               {"origin", vector(grid.origin)},
               {"center", vector(Centre(grid))},
               {"tiltDegrees", host::TiltDegrees(grid)},
               {"orientation", host::OrientationLetters(grid)},
               {"valueRange", {range.low, range.high}},
               {"unit", host::HoldsHounsfieldUnits(volume) ? "HU" : ""},
               {"valueSlope", volume.valueSlope},
               {"valueIntercept", volume.valueIntercept},
               {"labels", labels},
               {"warnings", volume.warnings}});
}

void DescribeAsText(const host::Volume& volume, const InfoOptions& options)
{
    const host::Grid& grid = volume.grid;
    const auto line = [](std::string name, const std::string& text)
    {
        name.resize(18, ' ');
        PrintResult(name + text);
    };
    const auto vector = [&](Vec3 v)
    {
        const Vec3 turned = TurnedIf(options.ras, v);
        return PointText({turned.x + 0.0, turned.y + 0.0, turned.z + 0.0}); // zero without a sign
    };
    const auto triple = [](double x, double y, double z) { return Number(x) + " x " + Number(y) + " x " + Number(z); };
    const std::string space = options.ras ? " mm (RAS)" : " mm (LPS)";

    line("description", volume.description);
    line("modality", volume.modality.empty() ? "unknown" : volume.modality);
    line("size", triple(grid.sizeX, grid.sizeY, grid.sizeZ) + " voxels");
    line("spacing", triple(grid.spacing.x, grid.spacing.y, grid.spacing.z) + " mm");
    line("row direction", vector(grid.rowDirection));
    line("column direction", vector(grid.columnDirection));
    line("slice direction", vector(grid.sliceDirection));
    line("orientation", host::OrientationLetters(grid) + " (where the three directions point)");
    const double tilt = host::TiltDegrees(grid);
    char tiltText[64];
    std::snprintf(tiltText, sizeof tiltText, "tilted by %.1f degrees", tilt);
    line("slices", tilt < 0.05 ? "straight" : tiltText);
    line("origin", vector(grid.origin) + space);
    line("center", vector(Centre(grid)) + space);
    const Range range = RealRange(volume);
    line("values", Number(range.low) + " to " + Number(range.high) + (host::HoldsHounsfieldUnits(volume) ? " HU" : ""));
    const std::array<size_t, 256> counts = LabelCounts(volume);
    for (size_t label = 0; label < counts.size(); ++label)
        if (counts[label] > 0)
            line("label " + std::to_string(label), std::to_string(counts[label]) + " voxels");
    for (const std::string& warning : volume.warnings)
        line("warning", warning);
}

void RunInfo(const InfoOptions& options)
{
    std::error_code ignored;
    if (options.series.empty() && std::filesystem::is_directory(options.input, ignored))
    {
        const std::vector<host::Series> series = host::ListSeries(options.input);
        if (series.size() > 1)
        {
            ListAll(series, options);
            return;
        }
    }
    const host::Volume volume = host::ReadVolume(options.input, {options.series});
    if (options.json)
        DescribeAsJson(volume, options);
    else
        DescribeAsText(volume, options);
}
} // namespace

void AddInfoCommand(CLI::App& program)
{
    auto options = std::make_shared<InfoOptions>();
    CLI::App* info = program.add_subcommand("info", "Say what a volume is: size, geometry, values, labels");
    AddInput(*info, options->input);
    info->add_option("--series", options->series, "which series of a DICOM folder, by number or UID")
        ->type_name("SERIES");
    info->add_flag("--ras", options->ras, "print patient space as RAS instead of LPS");
    info->add_flag("--json", options->json, "print JSON");
    info->footer(
        std::string("Examples:\n"
                    "  corvane info study/                what the only series is, or which series there are\n"
                    "  corvane info study/ --series 2     the second series\n"
                    "  corvane info head.nii.gz --json    the same for programs\n"
                    "  corvane info phantom:tilt=18       a made-up patient on a tilted gantry\n\n"
                    "A phantom takes size=XxYxZ, spacing=XxYxZ, tilt=DEGREES, noise=HU, separated by commas.\n\n") +
        kExitCodes);
    info->callback([options] { RunInfo(*options); });
}
} // namespace corvane::app
