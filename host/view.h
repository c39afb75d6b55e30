#ifndef CORVANE_HOST_VIEW_H
#define CORVANE_HOST_VIEW_H

#include "volume.h"

#include <string>
#include <vector>

namespace corvane::host
{
// How one looks at the patient along parallel rays.
struct View
{
    Vec3 direction; // from the eye into the patient, unit vector
    Vec3 up;        // unit vector, perpendicular to it
};

// Image axes: to the right and downwards.
Vec3 RightOf(const View& view);
Vec3 DownOf(const View& view);

// A view by name: anterior (coronal), posterior, left (sagittal), right, superior, inferior (axial). The name says
// where the eye stands; superior and inferior have the patient's front at the top.
// Throws Error (Usage) for another name.
View NamedView(const std::string& name);

// Moves the eye round the patient, in this order.
//   azimuth    degrees to the viewer's right
//   elevation  degrees upwards
//   roll       degrees by which the picture turns clockwise
View Turned(const View& view, double azimuth, double elevation, double roll);

// Patient points around what is to be seen: all voxels, or those from one index to another, out to their outer faces.
using Corners = std::vector<Vec3>;
Corners CornersOf(const Grid& grid);
Corners CornersOf(const Grid& grid, Vec3 low, Vec3 high);

// The middle of the box around them.
Vec3 MiddleOf(const Corners& corners);

// The largest size of pixels, mm, with which the corners fit a picture from each of the views, with a narrow margin
// and their middle in its own.
double FittingPixelSize(const std::vector<View>& views, const Corners& corners, uint32_t rows, uint32_t columns);

// The image plane of a view with the corners' middle in its middle, so far before them that rays start outside: for
// rendering without the engine, whose camera places its own.
PnImageParam ViewPlaneOf(const View& view, const Corners& corners, uint32_t rows, uint32_t columns, double pixelSize);
} // namespace corvane::host

#endif
