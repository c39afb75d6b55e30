#include "bench_volume.h"
#include "core/fan_out.h"
#include "host/palette_presets.h"
#include "host/palette_tables.h"
#include "host/view.h"
#include "mpr/resampling.h"
#include "render3d/projection.h"
#include "render3d/volume_rendering.h"

#include <benchmark/benchmark.h>

#include <memory>

// How cost grows: with the size of the picture, with the size of the volume (the phantom, whatever the input) and with
// the number of workers. The unit of work is a pixel.
namespace corvane::bench
{
namespace
{
using render3d::ProjectionKind;

constexpr float kWhole = 10000.0f; // mm

// The volume, drawn with its default palette from the front so that its whole diagonal fits a square picture.
class Frames
{
public:
    explicit Frames(const BenchVolume& volume)
        : volume_(volume),
          tables_({{0, host::PaletteOf(*host::PresetOf("default", volume.volume), volume.volume.valueSlope,
                                       volume.volume.valueIntercept, double(volume.geometry.minSpacing))}})
    {
        render3d::LoadSlot(volume.records.Data(), {}, slot_);
        render3d::UpdateSlot(slot_, tables_.Records());
    }

    void Run(benchmark::State& state, bool rendering, int side) const
    {
        const core::Box& box = volume_.geometry.boundingBox;
        const PnImageParam plane =
            host::ViewPlaneOf(host::NamedView("anterior"), host::CornersOf(volume_.volume.grid), uint32_t(side),
                              uint32_t(side), double(core::Length(box.max - box.min)) / side);
        std::vector<uint32_t> pixels(size_t(side) * size_t(side));
        std::vector<int16_t> values(pixels.size());
        KsImageVAL image = {values.data(), plane};
        for ([[maybe_unused]] const auto iteration : state)
        {
            if (rendering)
                render3d::RenderVolume(slot_, tables_.Records(), {}, {pixels.data(), plane}, render3d::Kernels());
            else
                render3d::Project(ProjectionKind::Maximum, slot_, nullptr, kWhole, image);
            benchmark::ClobberMemory();
        }
        state.counters["pixels/s"] =
            benchmark::Counter(double(state.iterations()) * double(pixels.size()), benchmark::Counter::kIsRate);
        state.SetLabel(volume_.name);
    }

private:
    const BenchVolume& volume_;
    host::PaletteTables tables_;
    render3d::VolumeSlot slot_;
};

template <class Run>
void Register(const std::string& name, const Run& run)
{
    benchmark::RegisterBenchmark(name.c_str(), run)
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime()
        ->UseRealTime();
}

// A plane through the middle of the volume, dealt out to workers in bands of rows.
void ResampleInBands(benchmark::State& state, const BenchVolume& volume, int workers)
{
    constexpr int kSide = 2048;
    const host::Corners corners = host::CornersOf(volume.volume.grid);
    const core::Box& box = volume.geometry.boundingBox;
    PnImageParam plane = host::ViewPlaneOf(host::Turned(host::NamedView("anterior"), 30, 20, 0), corners, kSide, kSide,
                                           double(core::Length(box.max - box.min)) / kSide);
    const core::Vec3d row = core::VecOf(plane.rowDirection), column = core::VecOf(plane.columnDirection);
    const core::Vec3d centre = 0.5 * core::ToDouble(box.min + box.max);
    core::Store(centre - (0.5 * kSide * plane.rowSpacing) * (row + column), plane.position);
    std::vector<int16_t> values(size_t(kSide) * kSide);
    const auto firstRow = [&](int64_t band) { return band * kSide / workers; };
    for ([[maybe_unused]] const auto iteration : state)
    {
        core::FanOut(workers,
                     [&](int64_t first, int64_t end) noexcept
                     {
                         KsImageVAL band = {values.data() + firstRow(first) * kSide, plane};
                         band.param.rows = uint32_t(firstRow(end) - firstRow(first));
                         core::Store(core::VecOf(plane.position) +
                                         (double(firstRow(first)) * plane.rowSpacing) * column,
                                     band.param.position);
                         mpr::ResamplePlane(volume.view, volume.geometry, band);
                     });
        benchmark::ClobberMemory();
    }
    state.counters["pixels/s"] =
        benchmark::Counter(double(state.iterations()) * double(values.size()), benchmark::Counter::kIsRate);
    state.SetLabel(volume.name);
}
} // namespace

void RegisterGrowth(const BenchVolume& volume)
{
    const auto frames = std::make_shared<const Frames>(volume);
    for (const int side : {256, 512, 1024, 2048})
        for (const bool rendering : {true, false})
            Register(std::string("frame_size/") + (rendering ? "rendering/" : "maximum/") + std::to_string(side),
                     [frames, rendering, side](benchmark::State& state) { frames->Run(state, rendering, side); });
    // Made when it is its turn: the largest takes most of a gigabyte.
    for (const int edge : {64, 128, 256, 512})
        for (const bool rendering : {true, false})
            Register(std::string("volume_size/") + (rendering ? "rendering/" : "maximum/") + std::to_string(edge),
                     [rendering, edge](benchmark::State& state)
                     {
                         const std::string size = std::to_string(edge);
                         const BenchVolume phantom("phantom:size=" + size + "x" + size + "x" + size);
                         Frames(phantom).Run(state, rendering, 512);
                     });
    // The items are dealt out one each up to 47; 48 make 24 pairs.
    for (const int workers : {1, 2, 4, 8, 16, 32, 47})
        Register("workers/" + std::to_string(workers),
                 [&volume, workers](benchmark::State& state) { ResampleInBands(state, volume, workers); });
}
} // namespace corvane::bench
