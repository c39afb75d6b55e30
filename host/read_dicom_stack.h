#ifndef CORVANE_HOST_READ_DICOM_STACK_H
#define CORVANE_HOST_READ_DICOM_STACK_H

#include "volume.h"

#include <string>
#include <vector>

namespace corvane::host
{
// Where one image of a stack lies, as its file says.
struct SlicePlace
{
    std::string name; // of the file and frame, for messages
    int rows = 0, columns = 0;
    double rowSpacing = 0, columnSpacing = 0; // mm between rows, between columns
    Vec3 position;                            // centre of the first pixel
    Vec3 rowDirection, columnDirection;       // in which columns and rows are counted; unit vectors up to rounding
    double spacingBetweenSlices = 0, thickness = 0; // mm; 0: not said
};

// The grid of a stack of images.
struct Stack
{
    Grid grid;
    std::vector<size_t> order; // of the images, along the normal row direction x column direction
    std::vector<std::string> warnings;
};

// Orders images by their positions and finds the one grid that they all lie on. Slice direction and spacing come from
// the positions alone, so a stack of a tilted gantry keeps its lean.
//   name  of the series, for messages
// Throws Error, with the numbers, for images that lie on no such grid: doubled, missing or uneven slices, images of
// different sizes, spacings or orientations.
Stack StackOf(const std::string& name, const std::vector<SlicePlace>& slices);
} // namespace corvane::host

#endif
