#ifndef CORVANE_CAPI_LABEL_PLANE_H
#define CORVANE_CAPI_LABEL_PLANE_H

#include "corvane/Records.h"

namespace corvane::capi
{
// Labels of a plane's pixels, row by row: that of the voxel whose centre is nearest in voxel coordinates, so exact for
// tilted stacks; 0 where a pixel lies outside every voxel.
//   labels  of all voxels in one piece
//   volume  sizes and geometry; voxels are not read
//   image   receives rows * columns labels
// False, with nothing written, for a volume whose directions do not span space.
bool SampleLabels(const uint8_t* labels, const KsVolumeData& volume, const PnImageParam& plane, uint8_t* image);
} // namespace corvane::capi

#endif
