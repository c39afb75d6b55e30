#ifndef CORVANE_TESTS_RENDER3D_WORK_COUNTER_H
#define CORVANE_TESTS_RENDER3D_WORK_COUNTER_H

#include "render3d/kernels/kernels.h"

#include <cstdint>
#include <stdexcept>

// The renderer's kernels once more, compiled with a counter around what their loops do.
namespace corvane::tests
{
// What the rays of one call did.
struct Work
{
    int64_t samples = 0; // places handed on to be sampled, or read at the nearest voxel
    int64_t rounds = 0;  // looks at the cell where a ray stands: rays that have met their end take none
    int64_t jumps = 0;   // moves that take no sample; of volume rendering only
};

// A loop that went on for longer than a test allows; without it a loop without end would be a test without end.
struct TooMuchWork : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// The kernels that count.
extern const render3d::KernelTable kCountingKernels;

// Sets the work to nothing. From then on kernels throw TooMuchWork as soon as any number of it passes the limit.
void StartCounting(int64_t limit);
Work WorkDone();
} // namespace corvane::tests

#endif
