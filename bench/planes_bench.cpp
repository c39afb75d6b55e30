#include "bench_volume.h"
#include "mpr/resampling.h"

#include <benchmark/benchmark.h>

#include <algorithm>

// Oblique planes through the middle of the volume on one thread. The unit of work is a sample: a pixel inside the
// volume.
namespace corvane::bench
{
namespace
{
void Resample(benchmark::State& state, const BenchVolume& volume, const mpr::KernelTable& kernels, int side)
{
    std::vector<int16_t> values(size_t(side) * size_t(side));
    KsImageVAL image = {values.data(), volume.ObliquePlane(side)};
    for ([[maybe_unused]] const auto iteration : state)
    {
        mpr::ResamplePlane(volume.view, volume.geometry, image, kernels);
        benchmark::DoNotOptimize(values.data());
    }
    // Counted on a volume without the background value.
    const std::vector<int16_t> slice(size_t(volume.view.nx) * size_t(volume.view.ny), 0);
    const std::vector<const int16_t*> slices(size_t(volume.view.nz), slice.data());
    mpr::ResamplePlane({slices.data(), volume.view.nx, volume.view.ny, volume.view.nz}, volume.geometry, image);
    const auto samples = double(std::count(values.begin(), values.end(), int16_t(0)));
    state.counters["samples"] = samples;
    state.counters["samples/s"] = benchmark::Counter(double(state.iterations()) * samples, benchmark::Counter::kIsRate);
    state.SetLabel(volume.name);
}
} // namespace

void RegisterPlanes(const BenchVolume& volume)
{
    for (const int side : {512, 1024})
    {
        for (const mpr::KernelTable* kernels : mpr::AvailableKernels())
        {
            const std::string name =
                std::string("plane/trilinear/") + kernels->instructionSet + "/" + std::to_string(side);
            benchmark::RegisterBenchmark(name.c_str(), [&volume, kernels, side](benchmark::State& state)
                                         { Resample(state, volume, *kernels, side); })
                ->Unit(benchmark::kMillisecond);
        }
    }
}
} // namespace corvane::bench
