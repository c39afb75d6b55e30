#ifndef CORVANE_FUZZ_LIBRARY_VOLUMES_H
#define CORVANE_FUZZ_LIBRARY_VOLUMES_H

#include "session.h"

namespace corvane::fuzz
{
constexpr int kMostVoxels = 65536;

// What is done with a volume, which says what it may claim to be.
enum class Slices
{
    Scanned, // every voxel is read: bounded, or too large for what scans it, which then reads nothing
    Sampled, // voxels are read where images meet them: bounded
    Vast,    // the same: up to billions of voxels
};

// A volume, sound or hostile in each of its fields; it becomes that of the session. What it says of its size is true,
// unless it must be refused without a look at the slice table.
KsVolumeData MakeVolume(Session& session, Slices slices = Slices::Scanned);

// Another one of the session's sizes, most of the time.
KsVolumeData MakeVolumeLike(Session& session);

// Labels of the session's volume, sometimes of other sizes, sometimes with gaps.
KsVolumeMark MakeLabels(Session& session);

// Gives a renderer a box of any kind to be shown.
template <class Renderer>
void SetBox(Renderer& renderer, Session& session)
{
    float box[6];
    for (float& place : box)
        place = session.input.Number(-30, 60);
    session.trace.Add(renderer.SetVisibleBox(box, box + 3));
}
} // namespace corvane::fuzz

#endif
