#include "bench_volume.h"
#include "host/view.h"
#include "render3d/projection.h"
#include "sample_count.h"

#include <benchmark/benchmark.h>

#include <memory>

// Intensity projections on all workers, labels ignored: the whole volume from the front (once obliquely), and a slab of
// 20 mm about the oblique plane. The unit of work is a sample, jumped over or not. CPU is the time of all threads
// together, which is what one core would take; Time is that of the machine's cores.
namespace corvane::bench
{
namespace
{
using render3d::ProjectionKind;

struct Projection
{
    const char* name;
    ProjectionKind kind;
    float thickness; // mm
    double zoom;
    double leftDegrees = 0, upDegrees = 0; // turned from the front
};

constexpr float kWhole = 10000.0f;
constexpr Projection kProjections[] = {
    {"projection/maximum", ProjectionKind::Maximum, kWhole, 1.0},
    {"projection/maximum_zoom", ProjectionKind::Maximum, kWhole, 2.2},
    {"projection/maximum_oblique", ProjectionKind::Maximum, kWhole, 1.0, 30, 20},
    {"projection/minimum", ProjectionKind::Minimum, kWhole, 1.0},
    {"projection/average", ProjectionKind::Average, kWhole, 1.0},
    {"slab_20mm/maximum", ProjectionKind::Maximum, 20.0f, 1.0},
    {"slab_20mm/average", ProjectionKind::Average, 20.0f, 1.0},
};

// The whole diagonal of the volume fits the picture, magnified by `zoom`; a slab has the oblique plane in its middle.
PnImageParam PlaneOf(const BenchVolume& volume, const Projection& projection, int side)
{
    if (projection.thickness < kWhole)
    {
        PnImageParam plane = volume.ObliquePlane(side);
        const core::Vec3d normal = core::Cross(core::VecOf(plane.rowDirection), core::VecOf(plane.columnDirection));
        core::Store(core::VecOf(plane.position) - (0.5 * double(projection.thickness)) * normal, plane.position);
        return plane;
    }
    const core::Box& box = volume.geometry.boundingBox;
    const double diagonal = double(core::Length(box.max - box.min));
    const host::View view = host::Turned(host::NamedView("anterior"), projection.leftDegrees, projection.upDegrees, 0);
    return host::ViewPlaneOf(view, host::CornersOf(volume.volume.grid), uint32_t(side), uint32_t(side),
                             diagonal / projection.zoom / side);
}

void Run(benchmark::State& state, const BenchVolume& volume, const render3d::VolumeSlot& slot,
         const Projection& projection, const render3d::KernelTable& kernels, int side)
{
    std::vector<int16_t> values(size_t(side) * size_t(side));
    KsImageVAL image = {values.data(), PlaneOf(volume, projection, side)};
    for ([[maybe_unused]] const auto iteration : state)
    {
        render3d::Project(projection.kind, slot, nullptr, projection.thickness, image, kernels);
        benchmark::DoNotOptimize(values.data());
    }
    const RayCount count =
        CountSamples([&](const render3d::KernelTable& counting)
                     { render3d::Project(projection.kind, slot, nullptr, projection.thickness, image, counting); });
    const auto rate = [&](int64_t perFrame)
    { return benchmark::Counter(double(state.iterations()) * double(perFrame), benchmark::Counter::kIsRate); };
    state.counters["samples"] = double(count.samples);
    state.counters["rays/s"] = rate(count.rays);
    state.counters["samples/s"] = rate(count.samples);
    state.SetLabel(volume.name);
}
} // namespace

void RegisterProjections(const BenchVolume& volume)
{
    const auto slot = std::make_shared<render3d::VolumeSlot>();
    render3d::LoadSlot(volume.records.Data(), {}, *slot);
    for (const Projection& projection : kProjections)
    {
        for (const int side : {512, 1024})
        {
            for (const render3d::KernelTable* kernels : render3d::AvailableKernels())
            {
                const std::string name =
                    std::string(projection.name) + "/" + kernels->instructionSet + "/" + std::to_string(side);
                benchmark::RegisterBenchmark(name.c_str(),
                                             [&volume, slot, &projection, kernels, side](benchmark::State& state)
                                             { Run(state, volume, *slot, projection, *kernels, side); })
                    ->Unit(benchmark::kMillisecond)
                    ->MeasureProcessCPUTime()
                    ->UseRealTime();
            }
        }
    }
}
} // namespace corvane::bench
