#ifndef CORVANE_HOST_HIDDEN_LABELS_H
#define CORVANE_HOST_HIDDEN_LABELS_H

#include "volume.h"

#include <set>

namespace corvane::host
{
// Cuts away (bit 64 of the label) every voxel that has one of the labels, and every voxel that is at most `margin`
// voxels away from such a one along each axis. Samples mix the values of eight neighbours, so that with a margin of 0
// an edge of what is hidden still shows; with 1 nothing of it does.
void HideLabels(Volume& volume, const std::set<int>& labels, int margin);
} // namespace corvane::host

#endif
