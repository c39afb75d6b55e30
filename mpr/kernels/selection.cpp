#include "core/simd/isa.h"
#include "kernels.h"

namespace corvane::base
{
extern const mpr::KernelTable kMprKernels;
}

namespace corvane::avx2
{
extern const mpr::KernelTable kMprKernels;
}

namespace corvane::mpr
{
namespace
{
constexpr const KernelTable* kCopies[] = {
    &base::kMprKernels,
#if defined(CORVANE_KERNELS_AVX2)
    &avx2::kMprKernels,
#endif
};
} // namespace

std::span<const KernelTable* const> AvailableKernels() { return core::Runnable(kCopies); }

const KernelTable& Kernels() { return *AvailableKernels().back(); }
} // namespace corvane::mpr
