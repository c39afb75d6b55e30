#include "work_counter.h"

#define KERNEL_ISA counted
#define KERNEL_LANES 4
#include "render3d/kernels/integrate_rays.h"
#include "render3d/kernels/nearest_voxels.h"
#include "render3d/kernels/parallel_rays.h"
#include "render3d/kernels/project_rays.h"
#include "render3d/kernels/sample_queue.h"
#include "render3d/kernels/visible_run.h"

namespace corvane::counted
{
namespace
{
tests::Work work;
int64_t limit = 0;

void Count(int64_t& number, const char* what)
{
    if (++number > limit)
        throw tests::TooMuchWork(what);
}

class CountedQueue : public SampleQueue
{
public:
    using SampleQueue::SampleQueue;

    void Add(Quad place, int ray)
    {
        Count(work.samples, "samples");
        SampleQueue::Add(place, ray);
    }
};

IntPack CountedVisit(const render3d::Scene& scene, const RayPack& rays, const CellExits& exits, PlacePack& place,
                     IntPack& live, IntPack& steps)
{
    const bool anyLive = Any(live);
    const IntPack sampled = VisitCells(scene, rays, exits, place, live, steps);
    if (anyLive)
        Count(work.rounds, "rounds");
    if (Any(live & ~sampled))
        Count(work.jumps, "jumps");
    return sampled;
}

NearestVoxels CountedNearest(const render3d::Scene& scene, IntPack wanted, const VectorPack& p)
{
    Count(work.samples, "samples");
    return SampleNearest(scene, wanted, p);
}

// A projection that searches asks this once in each round.
IntPack CountedStepsUntil(FloatPack exit, FloatPack distance, FloatPack stepLength)
{
    Count(work.rounds, "rounds");
    return StepsUntil(exit, distance, stepLength);
}
} // namespace
} // namespace corvane::counted

// The kernels' loops call what counts.
#define SampleQueue CountedQueue
#define VisitCells CountedVisit
// NOLINTNEXTLINE(bugprone-suspicious-include): compiled once more, to be counted
#include "render3d/kernels/integrate_rays.cpp"
#define SampleNearest CountedNearest
#define StepsUntil CountedStepsUntil
// NOLINTNEXTLINE(bugprone-suspicious-include): likewise
#include "render3d/kernels/project_rays.cpp"

namespace corvane::tests
{
const render3d::KernelTable kCountingKernels = {"counted", counted::IntegrateRays, counted::ProjectMaximum,
                                                counted::ProjectMinimum, counted::ProjectAverage};

void StartCounting(int64_t limit)
{
    counted::work = {};
    counted::limit = limit;
}

Work WorkDone() { return counted::work; }
} // namespace corvane::tests
