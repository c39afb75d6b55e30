#ifndef CORVANE_HOST_PLANE_H
#define CORVANE_HOST_PLANE_H

#include "volume.h"

#include <string>

namespace corvane::host
{
Vec3 RowDirection(const PnImageParam& plane);
Vec3 ColumnDirection(const PnImageParam& plane);
Vec3 FirstPixel(const PnImageParam& plane);

// Patient position of a pixel.
Vec3 PixelToPatient(const PnImageParam& plane, double row, double column);

// The same plane, `distance` mm further along `normal`.
PnImageParam Shifted(const PnImageParam& plane, Vec3 normal, double distance);

// The same rectangle with square pixels of another size. The first pixel's centre stays.
PnImageParam WithPixelSize(const PnImageParam& plane, double pixelSize);

// Makes unit vectors of a plane's directions, whatever their length.
// Throws Error (Usage) unless these are at right angles (within 0.06 degrees; the column direction is made exact),
// spacings are above 0, and the picture has at least one and at most 32768 pixels along either side.
void CheckPlane(PnImageParam& plane);

// How far the part of a grid that the library samples reaches along a direction, mm, measured from a point. That part
// ends 1.1 voxels within the outermost voxel centres; where a side has fewer than four voxels there is none, and low
// lies above high.
struct Extent
{
    double low, high;
};
Extent SampledExtent(const Grid& grid, Vec3 point, Vec3 direction);

// Labels of a plane's pixels, row by row: that of the nearest voxel, never a mixture; 0 where the pixel lies outside
// every voxel. Exact for tilted grids. They reach to the grid's edge, where the picture itself may end a voxel or two
// earlier.
std::vector<uint8_t> SampleLabels(const std::vector<uint8_t>& labels, const Grid& grid, const PnImageParam& plane);
} // namespace corvane::host

#endif
