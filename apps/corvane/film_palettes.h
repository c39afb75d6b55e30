#ifndef CORVANE_APPS_FILM_PALETTES_H
#define CORVANE_APPS_FILM_PALETTES_H

#include <map>
#include <string>
#include <vector>

#include "film_options.h"
#include "host/palette_tables.h"

namespace corvane::app
{
// The transfer functions of a rendering.
struct ChosenPalettes
{
    std::map<int, host::Palette> byLabel; // labels that are missing are not shown
    host::TransferFunction base;          // what is shown where no label has a palette of its own
    std::vector<std::string> warnings;
};

// Reads what the options name; also gives the volume its labels, or takes them away where they are not asked for.
//   otherwise  the preset when the options name none
// Throws Error for what cannot be.
ChosenPalettes ChoosePalettes(const RenderingOptions& options, const std::string& otherwise, host::Volume& volume);
} // namespace corvane::app

#endif
