#include "core/simd/isa.h"
#include "kernels.h"

namespace corvane::base
{
extern const render3d::KernelTable kRender3DKernels;
}

namespace corvane::avx2
{
extern const render3d::KernelTable kRender3DKernels;
}

namespace corvane::render3d
{
namespace
{
constexpr const KernelTable* kCopies[] = {
    &base::kRender3DKernels,
#if defined(CORVANE_KERNELS_AVX2)
    &avx2::kRender3DKernels,
#endif
};
} // namespace

std::span<const KernelTable* const> AvailableKernels() { return core::Runnable(kCopies); }

const KernelTable& Kernels() { return *AvailableKernels().back(); }
} // namespace corvane::render3d
