#ifndef CORVANE_HOST_PALETTE_SLICER_H
#define CORVANE_HOST_PALETTE_SLICER_H

#include "transfer_function.h"

namespace corvane::host
{
// A volume property of 3D Slicer as its files hold it.
struct SlicerProperty
{
    TransferFunction function;
    bool shade = true; // false: colours as they are, without light
    double specularPower = 1;
    bool gradientOpacity = false; // surfaces are more opaque than what lies between them
    bool bentCurves = false;      // not linear between points
    bool nearestVoxel = false;    // values are not interpolated between voxels
};

// The transfer function that shows the same as far as this renderer can; the rest becomes warnings.
TransferFunction Understood(SlicerProperty property);
} // namespace corvane::host

#endif
