#ifndef CORVANE_BENCH_BENCH_VOLUME_H
#define CORVANE_BENCH_BENCH_VOLUME_H

#include "core/geometry.h"
#include "core/views.h"
#include "host/volume.h"

#include <optional>
#include <string>

namespace corvane::bench
{
// The volume that every benchmark runs on, read once: the program's first argument, by default the phantom. The second
// is the voxel in which the endoscopies stand.
struct BenchVolume
{
    explicit BenchVolume(const std::string& input, std::optional<core::Vec3d> eye = {});

    // A square plane through the centre, turned 30 degrees about the patient's z axis and 20 about its own row
    // direction. Its pixels are as large as the smallest voxel spacing.
    PnImageParam ObliquePlane(int side) const;

    std::string name;
    host::Volume volume;
    host::VolumeView records;
    core::VolumeView view;
    core::VolumeGeometry geometry = {};
    core::Vec3f eye = {}; // of the endoscopies, patient: by default the centre
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
