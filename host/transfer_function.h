#ifndef CORVANE_HOST_TRANSFER_FUNCTION_H
#define CORVANE_HOST_TRANSFER_FUNCTION_H

#include "corvane/Records.h"

#include <string>
#include <vector>

namespace corvane::host
{
// How values become colour and opacity, as people write it: over real values (HU for CT). Between the points of either
// curve values are interpolated linearly; two points of the same value make a step.
struct TransferFunction
{
    struct OpacityPoint
    {
        double value, opacity; // 0 to 1
    };
    struct ColourPoint
    {
        double value, red, green, blue; // 0 to 1
    };

    std::string name;
    std::vector<OpacityPoint> opacities; // at least one of each, by rising value
    std::vector<ColourPoint> colours;
    double opacityDistance = 0; // mm of material that the opacities are for; 0: they are for one sample
    bool holdEnds = true;       // beyond its ends a curve goes on with its last value; else nothing shows there
    double ambient = 0.11, diffuse = 0.816, specular = 0;
    std::vector<std::string> warnings; // what of the file cannot be shown, one line each
};

// The opacity of one sample of a rendering, which takes one every 0.33 times the smallest spacing.
//   opacity   of material `distance` mm thick
//   spacing   the volume's smallest, mm
double OpacityOfSample(double opacity, double distance, double spacing);

// A transfer function over stored values, as the library takes it.
struct Palette
{
    std::vector<KsPalettePoint> points; // at least two, by rising value, no value twice
    float shading[3];                   // ambient, diffuse, specular
    std::vector<std::string> warnings;  // those of the transfer function, and what is lost in this volume
};

// Turns real values into stored ones (real = slope * stored + intercept) and opacities into those of one sample.
// Throws Error (Usage) when no stored value has a place in the transfer function.
Palette PaletteOf(const TransferFunction& function, double valueSlope, double valueIntercept, double smallestSpacing);
} // namespace corvane::host

#endif
