#ifndef CORVANE_APPS_FILM_OPTIONS_H
#define CORVANE_APPS_FILM_OPTIONS_H

#include <string>
#include <vector>

#include <CLI/App.hpp>

#include "host/view_rendering.h"

namespace corvane::app
{
// What vr and ve have in common, as it was typed; an empty text: not given.
struct RenderingOptions
{
    std::string input, series, output, video, framesPerSecond = "25", size = "512";
    std::string preset, palette, labels, labelColours, background = "000000", pad = "auto";
    std::vector<std::string> labelPalettes;
    bool showLabels = false, force = false, json = false, ras = false, listPresets = false;
};

void AddRenderingOptions(CLI::App& command, RenderingOptions& options);

// Those among them that say how the volume looks.
void AddAppearanceOptions(CLI::App& command, RenderingOptions& options);

// Prints the presets' names and what they show.
void ListPresets(bool json);

// Throws Error (Usage) when the options contradict each other; needs no file.
void CheckOptions(const RenderingOptions& options);
void CheckAppearance(const RenderingOptions& options); // only of the picture's size and looks

struct PictureSize
{
    uint32_t rows, columns;
};

// These throw Error (Usage) for what cannot be.
PictureSize SizeOf(const RenderingOptions& options);
host::Rgb BackgroundOf(const RenderingOptions& options);
host::Vec3 PointOf(const std::string& text, bool ras, const std::string& what);
int CountOf(const std::string& text, const std::string& what, int least, int most);
} // namespace corvane::app

#endif
