#ifndef CORVANE_BENCH_BENCH_VOLUME_H
#define CORVANE_BENCH_BENCH_VOLUME_H

#include "core/geometry.h"
#include "core/views.h"
#include "host/volume.h"

#include <string>

namespace corvane::bench
{
// The volume that every benchmark runs on, read once: the program's first argument, by default the phantom.
struct BenchVolume
{
    explicit BenchVolume(const std::string& input);

    std::string name;
    host::Volume volume;
    host::VolumeView records;
    core::VolumeView view;
    core::VolumeGeometry geometry = {};
};

void RegisterBlockTree(const BenchVolume& volume);
void RegisterFirstFrame(const BenchVolume& volume);
void RegisterGrowth(const BenchVolume& volume);
void RegisterPlanes(const BenchVolume& volume);
void RegisterProjections(const BenchVolume& volume);
void RegisterRenderings(const BenchVolume& volume);

// These have input of their own.
void RegisterCutting();
void RegisterPalettes();
} // namespace corvane::bench

#endif
