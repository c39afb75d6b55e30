#ifndef CORVANE_APPS_MPR_OPTIONS_H
#define CORVANE_APPS_MPR_OPTIONS_H

#include <string>
#include <vector>

#include <CLI/App.hpp>

#include "mpr_planes.h"

namespace corvane::app
{
// The command line as it was typed; an empty text: not given.
struct MprOptions
{
    std::string input, series;
    std::string plane, center, centerVoxel, slice, count, step, pixelSize, zoom;
    std::vector<std::string> rotations;
    std::string position, row, column, size;
    std::string window, labels, labelColours, labelOpacity;
    std::string pad = "auto", format, output;
    bool ras = false, showLabels = false, noLetters = false, force = false, json = false;
};

// Tells the command line which options there are.
void AddMprOptions(CLI::App& mpr, MprOptions& options);

// The planes that the options ask for, in a volume of this grid. Throws Error (Usage) for what makes no sense.
PlaneRequest RequestOf(const MprOptions& options, const host::Grid& grid);
} // namespace corvane::app

#endif
