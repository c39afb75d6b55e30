#ifndef CORVANE_HOST_READ_DICOM_PIXELS_H
#define CORVANE_HOST_READ_DICOM_PIXELS_H

#include "read_dicom_header.h"

#include <functional>

namespace corvane::host
{
// Throws Error for images whose pixels are not one grey value of 8, 16 or 32 bits each.
void CheckPixelsAreGrey(const DicomHeader& header);

// Throws Error when the file cannot hold the pixels that its header promises: a short file can ask for very many. Of
// pictures that are compressed by other means than run lengths nothing can be said.
void CheckPixelsFit(const DicomHeader& header);

// The narrowest type that holds the pixels of all files.
// Throws Error when there is none, because signed files stand beside unsigned ones that use every bit.
SampleType CommonSampleType(const std::vector<DicomHeader>& files);

// Takes the samples of the next file: of all its frames, one after the other.
using TakeSamples = std::function<void(const std::vector<char>& samples)>;

// Reads the pixels of files that fit, in their order: decompressed, without the bits outside the stored ones, as
// samples of `type`. Throws Error when pixels are damaged or fewer than their header says.
void ReadPixels(const std::vector<DicomHeader>& files, SampleType type, const TakeSamples& take);
} // namespace corvane::host

#endif
