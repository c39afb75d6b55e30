#ifndef CORVANE_HOST_READ_GRID_H
#define CORVANE_HOST_READ_GRID_H

#include "volume.h"

#include <array>
#include <string>
#include <vector>

namespace corvane::host
{
// Throws Error when a size is below 1 or when so many voxels cannot be held. Call it before allocating.
//   name  of the file, for the message
void CheckSizes(const std::string& name, const std::array<int64_t, 3>& sizes);

// The grid of a file that gives, in patient mm, the centre of the first voxel and the steps to its three neighbours.
// The steps' lengths become the spacing. Row and column step must be perpendicular; the slice step may lean. A step of
// length 0 along an axis with one voxel only is replaced (a warning says by what).
// Throws Error when sizes or steps describe no grid that can be shown truthfully.
Grid GridFromSteps(const std::string& name, const std::array<int64_t, 3>& sizes, Vec3 origin,
                   const std::array<Vec3, 3>& steps, std::vector<std::string>& warnings);
} // namespace corvane::host

#endif
