#ifndef CORVANE_HOST_READ_RAW_H
#define CORVANE_HOST_READ_RAW_H

#include "volume.h"

#include <optional>
#include <string>
#include <vector>

namespace corvane::host
{
enum class SampleType
{
    UInt8,
    Int8,
    UInt16,
    Int16,
    UInt32,
    Int32,
    UInt64,
    Int64,
    Float32,
    Float64
};

size_t BytesPerSample(SampleType type);

// Real value = slope * sample + intercept.
struct Rescale
{
    double slope = 1.0;
    double intercept = 0.0;
};

// A volume as its file holds it: samples of the file's type in this machine's byte order, x fastest, then y, then z.
struct RawVolume
{
    Grid grid;
    SampleType type = SampleType::Int16;
    std::vector<int16_t> memory;                // the samples' bytes; 16-bit samples become stored values in place
    std::vector<Rescale> rescale = {Rescale()}; // one for all slices, or one each
    std::string modality, description;          // as in Volume
    std::vector<std::string> warnings;
    bool marksCuts = false; // as labels: 64 is added where a voxel is cut away

    // Takes memory for the samples of the grid, zeroed. Throws Error when there is too little.
    //   name  of the file, for the message
    void Allocate(const std::string& name);
    size_t ByteCount() const { return grid.VoxelCount() * BytesPerSample(type); }
    const Rescale& RescaleOf(size_t slice) const { return rescale.size() == 1 ? rescale[0] : rescale[slice]; }
};

// Turns samples into 16-bit stored values, the first of these that fits:
//   real values that are whole numbers of 16 bits are stored as they are;
//   samples that are whole numbers of 16 bits under one rising rescale are stored with that rescale, nothing is lost;
//   CT-like values are rounded to whole numbers and clamped, if only few lie outside 16 bits;
//   all else is scaled to 16 bits, with 0 stored as 0 where the values reach it.
// The last two warn with the numbers. Values that are not finite become the smallest finite one, with a warning.
Volume StoredVolume(RawVolume&& raw);

// The samples as label bytes. Throws Error for a value that is no whole number from 0 to 63, or to 127 where the file
// says that it marks cuts.
//   name  of the file, for the message
std::vector<uint8_t> LabelsOf(const RawVolume& raw, const std::string& name);
} // namespace corvane::host

#endif
