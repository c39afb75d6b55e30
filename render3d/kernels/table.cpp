#include "integrate_rays.h"
#include "project_rays.h"

#define TEXT_OF(name) #name
#define NAME_OF(macro) TEXT_OF(macro)

namespace corvane::KERNEL_ISA
{
extern const render3d::KernelTable kRender3DKernels;
const render3d::KernelTable kRender3DKernels = {NAME_OF(KERNEL_ISA), IntegrateRays, ProjectMaximum, ProjectMinimum,
                                                ProjectAverage};
} // namespace corvane::KERNEL_ISA
