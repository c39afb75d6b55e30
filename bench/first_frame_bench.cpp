#include "bench_volume.h"
#include "host/palette_presets.h"
#include "host/palette_tables.h"
#include "host/view.h"
#include "render3d/volume_rendering.h"

#include <benchmark/benchmark.h>

// What a user waits for once: from a volume in memory to its first rendering, all set-up included. And what a change
// costs before the next frame: the tree classified again after a new palette, and after a cut. The unit of work is a
// voxel.
namespace corvane::bench
{
namespace
{
host::PaletteTables TablesOf(const BenchVolume& volume)
{
    return host::PaletteTables(
        {{0, host::PaletteOf(*host::PresetOf("default", volume.volume), volume.volume.valueSlope,
                             volume.volume.valueIntercept, double(volume.geometry.minSpacing))}});
}

void CountVoxels(benchmark::State& state, const BenchVolume& volume)
{
    state.counters["voxels/s"] = benchmark::Counter(
        double(state.iterations()) * double(volume.volume.grid.VoxelCount()), benchmark::Counter::kIsRate);
    state.SetLabel(volume.name);
}

void DrawFirstFrame(benchmark::State& state, const BenchVolume& volume)
{
    constexpr int kSide = 512;
    const core::Box& box = volume.geometry.boundingBox;
    const PnImageParam plane = host::ViewPlaneOf(host::NamedView("anterior"), host::CornersOf(volume.volume.grid),
                                                 kSide, kSide, double(core::Length(box.max - box.min)) / kSide);
    std::vector<uint32_t> pixels(size_t(kSide) * kSide);
    for ([[maybe_unused]] const auto iteration : state)
    {
        const host::PaletteTables tables = TablesOf(volume);
        render3d::VolumeSlot slot;
        render3d::LoadSlot(volume.records.Data(), {}, slot);
        render3d::UpdateSlot(slot, tables.Records());
        render3d::RenderVolume(slot, tables.Records(), {}, {pixels.data(), plane}, render3d::Kernels());
        benchmark::DoNotOptimize(pixels.data());
    }
    CountVoxels(state, volume);
}

void ReclassifyForPalette(benchmark::State& state, const BenchVolume& volume)
{
    const host::PaletteTables tables = TablesOf(volume);
    render3d::VolumeSlot slot;
    render3d::LoadSlot(volume.records.Data(), {}, slot);
    for ([[maybe_unused]] const auto iteration : state)
    {
        slot.dataChanged = true;
        render3d::UpdateSlot(slot, tables.Records());
        benchmark::DoNotOptimize(slot.blocks.nodes.data());
    }
    CountVoxels(state, volume);
}

// The left half of the volume has label 1, which no table shows.
void ReclassifyForCut(benchmark::State& state, const BenchVolume& volume)
{
    const host::PaletteTables tables = TablesOf(volume);
    const core::VolumeView& view = volume.view;
    std::vector<uint8_t> slice(size_t(view.nx) * size_t(view.ny));
    for (size_t voxel = 0; voxel < slice.size(); ++voxel)
        slice[voxel] = voxel % size_t(view.nx) < size_t(view.nx) / 2 ? 1 : 0;
    std::vector<uint8_t> labels;
    for (int32_t k = 0; k < view.nz; ++k)
        labels.insert(labels.end(), slice.begin(), slice.end());
    std::vector<uint8_t*> slices(size_t(view.nz));
    for (size_t k = 0; k < slices.size(); ++k)
        slices[k] = labels.data() + k * slice.size();
    KsVolumeMark mark = {};
    mark.slices = slices.data();
    mark.sizeX = uint32_t(view.nx);
    mark.sizeY = uint32_t(view.ny);
    mark.sizeZ = uint32_t(view.nz);

    render3d::VolumeSlot slot;
    render3d::LoadSlot(volume.records.Data(), mark, slot);
    for ([[maybe_unused]] const auto iteration : state)
    {
        slot.dataChanged = true;
        render3d::UpdateSlot(slot, tables.Records());
        benchmark::DoNotOptimize(slot.blocks.nodes.data());
    }
    CountVoxels(state, volume);
}
} // namespace

void RegisterFirstFrame(const BenchVolume& volume)
{
    const auto registerOne = [&](const char* name, auto run)
    {
        benchmark::RegisterBenchmark(name, [&volume, run](benchmark::State& state) { run(state, volume); })
            ->Unit(benchmark::kMillisecond)
            ->MeasureProcessCPUTime()
            ->UseRealTime();
    };
    registerOne("first_frame/512", DrawFirstFrame);
    registerOne("reclassification/palette", ReclassifyForPalette);
    registerOne("reclassification/cut", ReclassifyForCut);
}
} // namespace corvane::bench
