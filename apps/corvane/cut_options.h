#ifndef CORVANE_APPS_CUT_OPTIONS_H
#define CORVANE_APPS_CUT_OPTIONS_H

#include "host/cut_selection.h"
#include "host/polygon.h"
#include "output_names.h"
#include "vr_options.h"

namespace corvane::app
{
// The command line as it was typed; an empty text: not given. What vr knows, too, stands in VrOptions.
struct CutOptions : VrOptions
{
    std::vector<std::string> polygons, polygonFiles, onlyLabels;
    std::string preview, depth;
    bool inside = false, outside = false;
};

void AddCutOptions(CLI::App& cut, CutOptions& options);

// Throws Error (Usage) when the options contradict each other; needs no file.
void CheckCutOptions(const CutOptions& options);

// These throw Error (Usage) for what cannot be, and Error (Input) for a file that cannot be read.
std::vector<host::GivenPolygon> PolygonsOf(const CutOptions& options);
host::CutSide SideOf(const CutOptions& options);

// The pictures before.png, region.png and after.png that --preview asks for; none without it.
OutputNames PreviewNames(const CutOptions& options);

// What may be cut: labels that are shown and meant, in the box and in the depth.
//   shown  labels that have a palette
//   plane  of the picture
host::CutLimits LimitsOf(const CutOptions& options, const std::array<bool, 64>& shown, const Crop& crop,
                         const PnImageParam& plane);
} // namespace corvane::app

#endif
