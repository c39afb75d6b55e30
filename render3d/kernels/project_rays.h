#ifndef CORVANE_RENDER3D_KERNELS_PROJECT_RAYS_H
#define CORVANE_RENDER3D_KERNELS_PROJECT_RAYS_H

#include "core/simd/pack.h" // names the namespace
#include "kernels.h"

namespace corvane::KERNEL_ISA
{
// See render3d::KernelTable.
void ProjectMaximum(const render3d::Scene& scene, const render3d::ParallelRays& rays, int64_t first, int64_t end,
                    int16_t* values);
void ProjectMinimum(const render3d::Scene& scene, const render3d::ParallelRays& rays, int64_t first, int64_t end,
                    int16_t* values);
void ProjectAverage(const render3d::Scene& scene, const render3d::ParallelRays& rays, int64_t first, int64_t end,
                    int16_t* values);
} // namespace corvane::KERNEL_ISA

#endif
