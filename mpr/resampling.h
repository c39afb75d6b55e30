#ifndef CORVANE_MPR_RESAMPLING_H
#define CORVANE_MPR_RESAMPLING_H

#include "core/geometry.h"
#include "core/views.h"
#include "kernels/kernels.h"

namespace corvane::mpr
{
// Fills an image with the stored values on its plane; -1024 outside the volume. Row after row on the caller's thread.
void ResamplePlane(const core::VolumeView& volume, const core::VolumeGeometry& geometry, KsImageVAL& image,
                   const KernelTable& kernels = Kernels());
} // namespace corvane::mpr

#endif
