#ifndef CORVANE_MPR_LABELLING_H
#define CORVANE_MPR_LABELLING_H

#include "core/geometry.h"
#include "core/views.h"

namespace corvane::mpr
{
// Fills an image with the labels nearest to its pixels; 0 outside the volume and outside the label slices, whose own
// sizes are respected.
void LabelPlane(const core::LabelView& labels, const core::VolumeGeometry& geometry, KsImageMark& image);
} // namespace corvane::mpr

#endif
