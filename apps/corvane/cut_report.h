#ifndef CORVANE_APPS_CUT_REPORT_H
#define CORVANE_APPS_CUT_REPORT_H

#include "cut_options.h"
#include "host/cut_counts.h"
#include "report.h"

namespace corvane::app
{
// What a cut did.
struct CutResult
{
    PnImageParam plane;                  // of the picture
    std::vector<host::Polygon> polygons; // in its pixels
    size_t regionPixels;
    host::CutCounts counts;
    double voxelVolume; // mm3
    std::vector<std::string> previews, warnings;
};

// What of the region and of what it cut deserves a warning.
std::vector<std::string> WarningsOf(const CutResult& result);

// Prints the result, as JSON if asked for; nothing when the labels go to standard output. The polygons of the JSON can
// be used again with --polygons.
void PrintCut(const CutOptions& options, const CutResult& result);
} // namespace corvane::app

#endif
