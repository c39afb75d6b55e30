#ifndef CORVANE_HOST_READ_NIFTI_H
#define CORVANE_HOST_READ_NIFTI_H

#include "read_raw.h"

namespace corvane::host
{
// True when the first bytes of a file (540 or fewer, inflated) are a NIfTI header.
bool IsNifti(const std::vector<char>& firstBytes);

// Reads .nii, .nii.gz, or the .hdr of a pair with its .img, which may be compressed too. Of several volumes the first.
// Throws Error for damaged files, colour and complex data, and axes that are not perpendicular in the slice plane.
RawVolume ReadNifti(const std::string& path);
} // namespace corvane::host

#endif
