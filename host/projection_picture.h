#ifndef CORVANE_HOST_PROJECTION_PICTURE_H
#define CORVANE_HOST_PROJECTION_PICTURE_H

#include "picture.h"
#include "projection.h"

#include <optional>
#include <vector>

namespace corvane::host
{
// What the rays of a projection could meet.
struct ProjectedSpace
{
    Grid grid;                       // as the library samples it, padded or not
    std::optional<double> thickness; // mm, half of it on either side of the plane; else all of the volume
    std::optional<PatientBox> box;   // the visible part; else all of the volume
    bool someHidden = false;         // some voxels are cut away
};

// One entry for each pixel, row by row: true where the library found nothing, so that its -1024 is no value. When
// labels are hidden, every -1024 counts as nothing.
std::vector<bool> EmptyPixels(const ProjectedImage& image, const ProjectedSpace& space);

// The window between percentiles 1 and 99 of the pixels that are not empty, in real values of `volume`.
Window WindowOfProjection(const ProjectedImage& image, const std::vector<bool>& empty, const Volume& volume);

// Grey through a window; empty pixels are black, whatever the window.
Picture GreyProjection(const ProjectedImage& image, const std::vector<bool>& empty, const Volume& volume,
                       const Window& window);

// How the kind of projection hides stored values of a volume that is not in Hounsfield units: one line each, or none.
//   storedValues  whether the picture holds the stored values themselves
std::vector<std::string> ProjectionWarnings(Projection projection, const Volume& volume, bool storedValues);
} // namespace corvane::host

#endif
