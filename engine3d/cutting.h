#ifndef CORVANE_ENGINE3D_CUTTING_H
#define CORVANE_ENGINE3D_CUTTING_H

#include "corvane/Records.h"

namespace corvane::engine3d
{
// Selects what a region covers, as Engine3D::CutFill says. A selection is of the volume's sizes, as the labels are, and
// neither has a missing slice; a region has a buffer.
//   tables  which labels are visible
// Throws what the allocator throws, with nothing written.
void SelectCovered(const KsVolumeData& volume, const KsVolumeMark& labels, const VolumePalette& tables,
                   const KsImageMark& region, uint8_t value, const KsVolumeMark& selection);

// Sets the cut bit of every selected voxel. Both are of the same sizes; a slice that is missing in either has nothing
// to select or to cut.
void CutSelected(const KsVolumeMark& selection, const KsVolumeMark& labels);

bool SameSizes(const KsVolumeMark& a, const KsVolumeMark& b);

// Labels of a volume's sizes, their slice table without gaps.
bool FitsVolume(const KsVolumeMark& mark, const KsVolumeData& volume);
} // namespace corvane::engine3d

#endif
