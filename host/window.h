#ifndef CORVANE_HOST_WINDOW_H
#define CORVANE_HOST_WINDOW_H

#include "volume.h"

#include <string>
#include <vector>

namespace corvane::host
{
// The range of real values (HU for CT) that a grey picture shows, from black to white.
struct Window
{
    double centre = 0;
    double width = 1; // above 0
};

// Black at centre - width / 2 and below, white at centre + width / 2 and above, even steps between, rounded.
// Source: DICOM PS3.3 C.11.2.1.3.2 (LINEAR_EXACT).
uint8_t GreyOf(const Window& window, double realValue);

// The window between two percentiles of all voxels' real values (0 to 100); of width 1 where both are the same.
Window PercentileWindow(const Volume& volume, double lowPercent, double highPercent);

// Whether real values are Hounsfield units: modality CT or, where a format knows no modality, at least a hundredth of
// the volume is air (-3100 to -900).
bool HoldsHounsfieldUnits(const Volume& volume);

// The customary windows of CT consoles.
struct NamedWindow
{
    const char* name;
    Window window; // HU
};
const std::vector<NamedWindow>& NamedWindows();

// Reads "CENTRE,WIDTH", the name of a CT window (bone, lung, brain, abdomen, mediastinum) or "auto" (percentiles 1 and
// 99 of the volume); an empty text is abdomen for Hounsfield units and auto for the rest.
// Throws Error (Usage) for anything else.
Window ParseWindow(const std::string& text, const Volume& volume);
} // namespace corvane::host

#endif
