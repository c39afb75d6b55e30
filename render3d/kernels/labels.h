#ifndef CORVANE_RENDER3D_KERNELS_LABELS_H
#define CORVANE_RENDER3D_KERNELS_LABELS_H

#include "core/simd/pack.h"
#include "core/views.h"

namespace corvane::KERNEL_ISA
{
// The label of a voxel of the volume; 0 where the label slices do not reach.
inline uint8_t LabelAt(const core::LabelView& labels, int i, int j, int k)
{
    const bool inside = labels.slices && i < labels.nx && j < labels.ny && k < labels.nz && labels.slices[k];
    return inside ? labels.slices[k][int64_t(j) * labels.nx + i] : 0;
}
} // namespace corvane::KERNEL_ISA

#endif
