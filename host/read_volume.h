#ifndef CORVANE_HOST_READ_VOLUME_H
#define CORVANE_HOST_READ_VOLUME_H

#include "volume.h"

#include <string>
#include <vector>

namespace corvane::host
{
// One DICOM series of a folder.
struct Series
{
    std::string uid;
    std::string modality;
    std::string description;
    std::vector<std::string> files; // paths, not in slice order
};

// The DICOM image series of a folder (not of its subfolders), by UID. Files that are not DICOM images are left out.
// Throws Error when the folder cannot be read.
std::vector<Series> ListSeries(const std::string& folder);

struct ReadOptions
{
    std::string series; // UID or number (from 1, in the order of ListSeries); empty: the only one
};

// Reads a volume; the one entry for every kind of input.
//   input    a DICOM folder or file, .nii, .nii.gz, .hdr/.img, .nrrd, .nhdr, .mha, .mhd, or "phantom:..."; the kind is
//            told by content where the format has a signature, else by name
//   returns  stored values in 16 bits with the geometry of the file; what was lost or is doubtful stands in warnings
// Throws Error for what cannot be read, and for what cannot be shown truthfully.
Volume ReadVolume(const std::string& input, const ReadOptions& options = {});

// Reads a label volume of the same grid as `grid` (the formats of ReadVolume; integers 0 to 63, and from 64 where the
// file says that it marks cuts, as those of LabelFileOf do). Throws Error when size or geometry differ, or values are
// no labels.
std::vector<uint8_t> ReadLabels(const std::string& input, const Grid& grid);
} // namespace corvane::host

#endif
