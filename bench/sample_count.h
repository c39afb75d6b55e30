#ifndef CORVANE_BENCH_SAMPLE_COUNT_H
#define CORVANE_BENCH_SAMPLE_COUNT_H

#include "render3d/kernels/kernels.h"

#include <cstdint>
#include <functional>

namespace corvane::bench
{
struct RayCount
{
    int64_t rays;    // that were cast
    int64_t samples; // taken on them
    int64_t shaded;  // of these
};

// What a frame costs in rays and samples: draws it once with a kernel that follows the rays to the sample at
// which they are opaque, and only counts.
// Of a projection all samples count that lie where there are voxels, those that a kernel jumps over included.
RayCount CountSamples(const std::function<void(const render3d::KernelTable& counting)>& draw);
} // namespace corvane::bench

#endif
