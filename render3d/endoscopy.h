#ifndef CORVANE_RENDER3D_ENDOSCOPY_H
#define CORVANE_RENDER3D_ENDOSCOPY_H

#include "frame.h"

namespace corvane::render3d
{
// The geometry of the image that an eye sees, with pixels of the volume's smallest spacing, in front of the eye at the
// distance at which its rows fill the angle. Rows and columns are those of `param`, the rest is written.
//   fieldOfViewDegrees  the full vertical angle
void PlaceEndoscopy(const KsViewPoint& view, float fieldOfViewDegrees, float spacing, PnImageParam& param);

// Draws a volume, brought up to date, along the rays from an eye through every pixel of an image.
//   eye  patient mm
void RenderEndoscopy(const VolumeSlot& slot, const VolumePalette& palette, core::Vec3f eye, const PnImageRGB& image,
                     const KernelTable& kernels = Kernels());
} // namespace corvane::render3d

#endif
