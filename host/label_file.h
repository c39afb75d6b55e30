#ifndef CORVANE_HOST_LABEL_FILE_H
#define CORVANE_HOST_LABEL_FILE_H

#include "volume.h"

#include <string>
#include <vector>

namespace corvane::host
{
// What label files with cuts say of themselves: a key-value pair of NRRD, the description of NIfTI. Values from 64 in
// any other file are refused as labels: there they are labels that have no place here.
constexpr const char* kCutMarkName = "labels";
constexpr const char* kCutMark = "64 added where a voxel is cut away";

enum class LabelFormat
{
    Nrrd,      // compressed
    Nifti,     // one part
    NiftiGzip, // the same, compressed
};

// By the ending of a file's name: .nrrd, .nii or .nii.gz; NRRD for "-". Throws Error (Usage) for another ending.
LabelFormat LabelFormatOf(const std::string& path);

// The bytes of a label file on the volume's grid, tilted ones included, as ReadLabels and the programs of others read
// it: one byte per voxel.
// Throws Error (Output) for sizes that the format cannot hold.
std::string LabelFileOf(const std::vector<uint8_t>& labels, const Grid& grid, LabelFormat format);
} // namespace corvane::host

#endif
