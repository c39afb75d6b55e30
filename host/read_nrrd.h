#ifndef CORVANE_HOST_READ_NRRD_H
#define CORVANE_HOST_READ_NRRD_H

#include "read_raw.h"

namespace corvane::host
{
// Reads .nrrd, or .nhdr with its data file. Of several volumes, or several values per voxel, the first.
// Throws Error for damaged files, colour, and axes that are not perpendicular in the slice plane.
RawVolume ReadNrrd(const std::string& path);
} // namespace corvane::host

#endif
