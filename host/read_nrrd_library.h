#ifndef CORVANE_HOST_READ_NRRD_LIBRARY_H
#define CORVANE_HOST_READ_NRRD_LIBRARY_H

#include "read_raw.h"

#include <span>

namespace corvane::host
{
// What the library for NRRD files is asked. Damaged files make it read and write outside its memory: call these in a
// process of their own.

// All that the header says, without voxels. Throws Error when the file is damaged, promises more voxels than it holds
// or describes no volume.
RawVolume ReadNrrdHeader(const std::string& path);

// The voxels of that volume.
//   voxels  where to put them: as many bytes as the header makes it
// Throws Error when they are damaged.
void ReadNrrdVoxels(const std::string& path, std::span<char> voxels);
} // namespace corvane::host

#endif
