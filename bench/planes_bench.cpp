#include "bench_volume.h"
#include "mpr/resampling.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <numbers>

// Oblique planes through the middle of the volume on one thread. The unit of work is a sample: a pixel inside the
// volume.
namespace corvane::bench
{
namespace
{
using core::Vec3d;

// A square plane through the centre, turned 30 degrees about the patient's z axis and 20 about its own row direction.
// Its pixels are as large as the smallest voxel spacing at 512 pixels a side, and half of that at 1024.
PnImageParam ObliquePlane(const core::VolumeGeometry& geometry, int side)
{
    const double about = 30 * std::numbers::pi / 180, over = 20 * std::numbers::pi / 180;
    const Vec3d row = {std::cos(about), std::sin(about), 0};
    const Vec3d column = {-std::sin(about) * std::cos(over), std::cos(about) * std::cos(over), std::sin(over)};
    const Vec3d centre = 0.5 * core::ToDouble(geometry.boundingBox.min + geometry.boundingBox.max);
    PnImageParam plane = {};
    plane.rows = plane.columns = uint32_t(side);
    plane.rowSpacing = plane.columnSpacing = double(geometry.minSpacing) * 512 / side;
    core::Store(row, plane.rowDirection);
    core::Store(column, plane.columnDirection);
    core::Store(centre - (0.5 * side * plane.rowSpacing) * (row + column), plane.position);
    return plane;
}

void Resample(benchmark::State& state, const BenchVolume& volume, const mpr::KernelTable& kernels, int side)
{
    std::vector<int16_t> values(size_t(side) * size_t(side));
    KsImageVAL image = {values.data(), ObliquePlane(volume.geometry, side)};
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
