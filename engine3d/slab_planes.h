#ifndef CORVANE_ENGINE3D_SLAB_PLANES_H
#define CORVANE_ENGINE3D_SLAB_PLANES_H

#include "corvane/Records.h"

namespace corvane::engine3d
{
// Where slabs lie: rays run along the plane's normal (row direction x column direction) and start half a thickness
// before it.

// The camera that looks through a slice's slab.
KsCamera CameraOfSlice(const KsSliceParam& slice, float thickness);

// An image plane moved to where its slab's rays start.
PnImageParam StartOfSlab(const PnImageParam& plane, float thickness);
} // namespace corvane::engine3d

#endif
