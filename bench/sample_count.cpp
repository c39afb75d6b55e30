#include "sample_count.h"

// The walk over the block tree is the kernel's own, compiled here once more.
#define KERNEL_ISA counting
#define KERNEL_LANES 4
#include "core/simd/sampling.h"
#include "render3d/kernels/cast_rays.h"
#include "render3d/kernels/parallel_rays.h"
#include "render3d/kernels/visible_run.h"

#include <algorithm>
#include <atomic>

namespace corvane::bench
{
namespace
{
constexpr float kOpaque = 0.001f;
constexpr float kVisibleOpacity = 0.01f;

std::atomic<int64_t> castRays, takenSamples, shadedSamples;

counting::FloatPack OpacitiesAt(const render3d::Scene& scene, const counting::VectorPack& p)
{
    const counting::IntPack values = counting::ToInt(counting::SampleTrilinear(scene.volume, p.x, p.y, p.z) + 0.5f);
    const core::PaletteEntryView& entry = scene.palette->entries[0];
    counting::FloatPack opacities = {};
    for (int lane = 0; lane < counting::kLanes; ++lane)
    {
        const int64_t index = int64_t(values[lane]) - entry.start;
        if (index >= 0 && index < int64_t(entry.size))
            opacities[lane] = entry.opacities[index];
    }
    return opacities;
}

void CountPack(const render3d::Scene& scene, const render3d::RayBatch& batch, int first)
{
    using namespace counting;
    auto [rays, place, live] = CastRays(scene, batch, first);
    FloatPack transmittance = FloatPack{} + 1.0f;
    const FloatPack somewhere = FloatPack{} + 1.0f;
    IntPack steps = {}, samples = {}, shaded = {};
    const CellExits exits(rays);
    while (Any(live))
    {
        IntPack sampled = VisitCells(scene, rays, exits, place, live, steps);
        while (Any(sampled))
        {
            place.distance += sampled ? rays.stepLength : FloatPack{};
            live &= ~sampled | (place.distance <= rays.exitDistance);
            const VectorPack next = place.position;
            place.position = {sampled ? next.x + rays.step.x : next.x, sampled ? next.y + rays.step.y : next.y,
                              sampled ? next.z + rays.step.z : next.z};
            sampled &= live;
            samples -= sampled; // a set lane is -1
            const VectorPack& p = place.position;
            const FloatPack opacities =
                OpacitiesAt(scene, {sampled ? p.x : somewhere, sampled ? p.y : somewhere, sampled ? p.z : somewhere});
            const IntPack seen = sampled & (opacities > kVisibleOpacity);
            shaded -= seen;
            transmittance = seen ? transmittance * (1.0f - opacities) : transmittance;
            live &= transmittance >= kOpaque;
            steps -= 1;
            sampled &= live & (steps > 0);
        }
    }
    for (int lane = 0; lane < kLanes; ++lane)
    {
        takenSamples += samples[lane];
        shadedSamples += shaded[lane];
    }
}

void CountRays(const render3d::Scene& scene, const render3d::RayBatch& rays, uint32_t* pixels)
{
    std::fill_n(pixels, rays.count, 0u);
    for (int first = 0; first < rays.count; first += counting::kLanes)
        CountPack(scene, rays, first);
    castRays += rays.count;
}
void CountProjection(const render3d::Scene& scene, const render3d::ParallelRays& rays, int64_t first, int64_t end,
                     int16_t* values)
{
    std::fill(values + first, values + end, int16_t(0));
    counting::InStrips(rays.columns, first, end,
                       [&](counting::PixelRun run)
                       {
                           for (; run.column < run.endColumn; run.column += counting::kLanes)
                           {
                               const counting::ParallelPack pack = counting::RaysFrom(scene, rays, run);
                               for (int lane = 0; lane < counting::kLanes; ++lane)
                                   if (pack.live[lane])
                                       takenSamples +=
                                           1 + int64_t((pack.exitDistance[lane] - pack.entry.distance[lane]) /
                                                       rays.stepLength);
                           }
                       });
    castRays += end - first;
}
} // namespace

RayCount CountSamples(const std::function<void(const render3d::KernelTable& counting)>& draw)
{
    castRays = takenSamples = shadedSamples = 0;
    draw({"counting", CountRays, CountProjection, CountProjection, CountProjection});
    return {castRays, takenSamples, shadedSamples};
}
} // namespace corvane::bench
