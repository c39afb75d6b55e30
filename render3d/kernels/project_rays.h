#ifndef CORVANE_RENDER3D_KERNELS_PROJECT_RAYS_H
#define CORVANE_RENDER3D_KERNELS_PROJECT_RAYS_H

#include "kernels.h"

namespace corvane::KERNEL_ISA
{
// See KernelTable.
void ProjectMaximum(const render3d::Scene& scene, const render3d::RayBatch& rays, int16_t* values);
void ProjectMinimum(const render3d::Scene& scene, const render3d::RayBatch& rays, int16_t* values);
void ProjectAverage(const render3d::Scene& scene, const render3d::RayBatch& rays, int16_t* values);
} // namespace corvane::KERNEL_ISA

#endif
