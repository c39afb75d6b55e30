#ifndef CORVANE_CAPI_POLYGON_ROWS_H
#define CORVANE_CAPI_POLYGON_ROWS_H

#include "corvane/Records.h"

#include <vector>

namespace corvane::capi
{
// Voxels [first, end) of a row of voxels.
struct VoxelRange
{
    int32_t first, end;
};

// Which voxels of each row have their centres, projected along the normal of an image plane, inside a polygon drawn on
// it. In double precision and with each of the volume's spacings and directions, so exact for tilted stacks and voxels
// that are not square. A row of voxels is a straight line on the image: where it crosses the outline decides about all
// of its voxels at once.
class PolygonRows
{
public:
    //   points      pairs of column and row of the image, finite
    //   pointCount  at least 3
    // Throws what the allocator throws.
    PolygonRows(const KsVolumeData& volume, const PnImageParam& plane, const double* points, size_t pointCount);

    // The ranges of row (j, k) that lie inside, ascending and apart. Valid until the next call.
    const std::vector<VoxelRange>& InsideOf(int32_t j, int32_t k);

private:
    // On the image, in pixels.
    struct Place
    {
        double column, row;
    };

    // A place in the direction of voxel rows: how far beside it, and how many voxels along it.
    struct Corner
    {
        double beside, along;
    };

    Place PlaceOf(const double* offset) const;
    Corner CornerOf(Place place) const;
    void FindCrossings(const Corner& start);

    PnImageParam plane_;
    int32_t sizeX_;
    Place origin_, alongX_, alongY_, alongZ_; // of voxel (0, 0, 0), and from each voxel to the next
    Place direction_;
    double voxelsPerLength_; // 0: all voxels of a row lie at the same place
    std::vector<Corner> corners_;
    std::vector<double> crossings_; // in voxels along the row
    std::vector<VoxelRange> inside_;
};
} // namespace corvane::capi

#endif
