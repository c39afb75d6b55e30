#ifndef CORVANE_HOST_PICTURE_H
#define CORVANE_HOST_PICTURE_H

#include "label_colours.h"
#include "window.h"

#include <vector>

namespace corvane::host
{
// A colour picture as it is shown; grey where red, green and blue are the same.
struct Picture
{
    int rows = 0, columns = 0;
    double rowSpacing = 0, columnSpacing = 0; // mm between pixels; 0: unknown
    std::vector<uint8_t> rgb;                 // rows * columns * 3, row by row

    uint8_t* At(int row, int column) { return &rgb[(size_t(row) * size_t(columns) + size_t(column)) * 3]; }
};

// The stored values of a plane, as grey through a window.
//   image   as the library renders it from `volume`
//   grid    the grid that the library samples: that of the volume, padded or not
// What the library leaves empty (-1024, outside or within two voxels of the grid's edge) becomes black, whatever the
// window: where values are no HU, -1024 may lie in the middle of it.
Picture GreyPicture(const KsImageData& image, const Volume& volume, const Grid& grid, const Window& window);

// Lays the labels' colours over a picture of the same plane; `opacity` (0 to 1) applies on top of each label's own.
// What is cut away is darkened instead: planes still show its values.
void BlendLabels(Picture& picture, const std::vector<uint8_t>& labels, const LabelColours& colours, double opacity);
} // namespace corvane::host

#endif
