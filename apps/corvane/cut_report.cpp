#include "cut_report.h"

#include <algorithm>

#include "host/plane.h"
#include "host/read_text.h"

namespace corvane::app
{
namespace
{
using host::Number;

// By more than a pixel: who draws round the whole picture is not to be warned.
bool ReachesOutside(const host::Polygon& polygon, const PnImageParam& plane)
{
    return std::any_of(polygon.begin(), polygon.end(),
                       [&](const host::PixelPoint& corner) {
                           return corner.column < -1 || corner.row < -1 || corner.column > plane.columns ||
                                  corner.row > plane.rows;
                       });
}

std::string SizeText(const PnImageParam& plane)
{
    return std::to_string(plane.columns) + " x " + std::to_string(plane.rows) + " pixels";
}

Json CornersOf(const std::vector<host::Polygon>& polygons)
{
    Json list = Json::array();
    for (const host::Polygon& polygon : polygons)
    {
        Json corners = Json::array();
        for (const host::PixelPoint& corner : polygon)
            corners.push_back({corner.column, corner.row});
        list.push_back(corners);
    }
    return list;
}

Json LabelsOf(const CutResult& result)
{
    Json labels = Json::array();
    for (size_t label = 0; label < result.counts.cut.size(); ++label)
    {
        const size_t cut = result.counts.cut[label], left = result.counts.left[label];
        if (cut + left > 0)
            labels.push_back(
                {{"label", label}, {"cut", cut}, {"cutMm3", double(cut) * result.voxelVolume}, {"left", left}});
    }
    return labels;
}

void PrintAsJson(const CutOptions& options, const CutResult& result)
{
    const auto vector = [&](host::Vec3 v) { return JsonOf(TurnedIf(options.ras, v)); };
    const PnImageParam& plane = result.plane;
    const size_t cut = result.counts.TotalCut();
    PrintJson({{"output", options.output},
               {"space", options.ras ? "RAS" : "LPS"},
               {"picture",
                {{"rows", plane.rows},
                 {"columns", plane.columns},
                 {"pixelSize", plane.columnSpacing},
                 {"rowDirection", vector(host::RowDirection(plane))},
                 {"columnDirection", vector(host::ColumnDirection(plane))},
                 {"position", vector(host::FirstPixel(plane))}}},
               {"polygons", CornersOf(result.polygons)},
               {"regionPixels", result.regionPixels},
               {"side", options.outside ? "outside" : "inside"},
               {"cut", cut},
               {"cutMm3", double(cut) * result.voxelVolume},
               {"cutBefore", result.counts.cutBefore},
               {"labels", LabelsOf(result)},
               {"previews", result.previews},
               {"warnings", result.warnings}});
}
} // namespace

std::vector<std::string> WarningsOf(const CutResult& result)
{
    std::vector<std::string> warnings;
    const auto outside = [&](const host::Polygon& polygon) { return ReachesOutside(polygon, result.plane); };
    if (std::any_of(result.polygons.begin(), result.polygons.end(), outside))
        warnings.push_back("a polygon reaches out of the picture of " + SizeText(result.plane) +
                           ", where nothing is drawn; is --size that of the picture it was made for?");
    if (result.counts.TotalCut() == 0)
        warnings.push_back("nothing was cut: no voxel that is shown and may be cut lies there");
    return warnings;
}

void PrintCut(const CutOptions& options, const CutResult& result)
{
    if (options.json)
    {
        PrintAsJson(options, result);
        return;
    }
    if (options.output == "-")
        return;
    const auto amount = [&](size_t voxels)
    { return std::to_string(voxels) + " voxels, " + Number(double(voxels) * result.voxelVolume) + " mm3"; };
    const host::CutCounts& counts = result.counts;
    PrintResult((options.output.empty() ? "to be cut away" : options.output + "  cut away") + std::string("  ") +
                amount(counts.TotalCut()));
    for (size_t label = 0; label < counts.cut.size(); ++label)
        if (counts.cut[label] > 0)
            PrintResult("  label " + std::to_string(label) + "  " + amount(counts.cut[label]) + ", " +
                        std::to_string(counts.left[label]) + " voxels left");
    if (counts.cutBefore > 0)
        PrintResult("  earlier  " + amount(counts.cutBefore));
    for (const std::string& file : result.previews)
        PrintResult(file + "  " + SizeText(result.plane) + " of " + Number(result.plane.columnSpacing) + " mm");
}
} // namespace corvane::app
