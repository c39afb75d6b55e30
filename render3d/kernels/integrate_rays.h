#ifndef CORVANE_RENDER3D_KERNELS_INTEGRATE_RAYS_H
#define CORVANE_RENDER3D_KERNELS_INTEGRATE_RAYS_H

#include "kernels.h"

namespace corvane::KERNEL_ISA
{
// See KernelTable.
void IntegrateRays(const render3d::Scene& scene, const render3d::RayBatch& rays, uint32_t* pixels);
} // namespace corvane::KERNEL_ISA

#endif
