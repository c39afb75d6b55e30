#ifndef CORVANE_HOST_READ_META_IMAGE_H
#define CORVANE_HOST_READ_META_IMAGE_H

#include "read_raw.h"

namespace corvane::host
{
// True when the first bytes of a file look like the header of a MetaImage: lines of "Key = value" from the start.
bool IsMetaImage(const std::vector<char>& firstBytes);

// Reads .mha, or .mhd with its data file. Of several volumes the first.
// Throws Error for damaged files, several values per voxel, and axes that are not perpendicular in the slice plane.
RawVolume ReadMetaImage(const std::string& path);
} // namespace corvane::host

#endif
