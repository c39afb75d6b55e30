#ifndef CORVANE_HOST_READ_DICOM_PIXELS_H
#define CORVANE_HOST_READ_DICOM_PIXELS_H

#include "read_dicom_header.h"

namespace corvane::host
{
// Throws Error for images whose pixels are not one grey value of 8, 16 or 32 bits each.
void CheckPixelsAreGrey(const DicomHeader& header);

// The narrowest type that holds the pixels of all files.
// Throws Error when there is none, because signed files stand beside unsigned ones that use every bit.
SampleType CommonSampleType(const std::vector<DicomHeader>& files);

// The pixels of all frames of a file, decompressed, without the bits outside the stored ones, as samples of `type`.
// Throws Error when the pixels are damaged or fewer than the header says.
std::vector<char> ReadPixels(const DicomHeader& header, SampleType type);
} // namespace corvane::host

#endif
