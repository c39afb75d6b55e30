#include "bench_volume.h"
#include "core/block_tree.h"

#include <benchmark/benchmark.h>

// Building the block tree and bringing it up to date, on all workers. The unit of work is a voxel.
namespace corvane::bench
{
namespace
{
double VoxelsPerIteration(const BenchVolume& volume)
{
    return double(volume.view.nx) * double(volume.view.ny) * double(volume.view.nz);
}

void CountVoxels(benchmark::State& state, const BenchVolume& volume)
{
    state.counters["voxels/s"] =
        benchmark::Counter(double(state.iterations()) * VoxelsPerIteration(volume), benchmark::Counter::kIsRate);
    state.SetLabel(volume.name);
}

void BuildRanges(benchmark::State& state, const BenchVolume& volume)
{
    for ([[maybe_unused]] const auto iteration : state)
    {
        core::BlockTree tree;
        core::BuildBlockTree(volume.records.Data(), tree);
        core::ComputeBlockRanges(volume.view, tree);
        benchmark::DoNotOptimize(tree.nodes.data());
    }
    CountVoxels(state, volume);
}

// Values from 145 up are visible, as with the default palette.
void Classify(benchmark::State& state, const BenchVolume& volume)
{
    core::BlockTree tree;
    core::BuildBlockTree(volume.records.Data(), tree);
    core::ComputeBlockRanges(volume.view, tree);
    VolumePaletteEntry entry = {};
    entry.visible = 1;
    std::vector<float> sums(1304, 0.05f);
    VolumePalette palette = {};
    palette.entries[0] = &entry;
    palette.sumStart = 145;
    palette.sumLength = int32_t(sums.size());
    palette.opacitySums = sums.data();
    for ([[maybe_unused]] const auto iteration : state)
    {
        core::UpdateBlockVisibility({nullptr, 0, 0, 0}, palette, tree);
        benchmark::DoNotOptimize(tree.nodes.data());
    }
    CountVoxels(state, volume);
}
} // namespace

void RegisterBlockTree(const BenchVolume& volume)
{
    const auto registerOne = [&](const char* name, auto run)
    {
        benchmark::RegisterBenchmark(name, [&volume, run](benchmark::State& state) { run(state, volume); })
            ->Unit(benchmark::kMillisecond)
            ->MeasureProcessCPUTime()
            ->UseRealTime();
    };
    registerOne("block_tree/ranges", BuildRanges);
    registerOne("block_tree/visibility", Classify);
}
} // namespace corvane::bench
