#ifndef CORVANE_TESTS_HOST_NIFTI_WRITER_H
#define CORVANE_TESTS_HOST_NIFTI_WRITER_H

#include "host/volume.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane::host
{
// A NIfTI file as bytes, put together field by field from the definition of the format.
// Source: the NIfTI-1 and NIfTI-2 header layouts of the NIfTI Data Format Working Group.
struct NiftiFile
{
    int version = 1;
    bool bigEndian = false;
    bool twoFiles = false; // header and voxels in files of their own
    std::vector<int64_t> sizes;
    int16_t datatype = 4, bitsPerVoxel = 16; // signed 16-bit integers
    std::array<double, 3> spacing = {1, 1, 1};
    double slope = 0, intercept = 0;
    int units = 2; // mm
    // Rows of the matrix from voxel index to right, anterior, superior; none: no sform.
    std::optional<std::array<std::array<double, 4>, 3>> sform;
    // Quaternion b, c, d, offset x, y, z, and the sign of the third axis; none: no qform.
    std::optional<std::array<double, 7>> qform;
    std::string voxels; // bytes in the file's byte order

    // The sform that puts the voxels where a grid says.
    void SetSform(const Grid& grid);
    std::string Header() const;
    std::string Bytes() const { return Header() + voxels; }
};
} // namespace corvane::host

#endif
