#ifndef CORVANE_HOST_READ_DICOM_DECODERS_H
#define CORVANE_HOST_READ_DICOM_DECODERS_H

#include "read_dicom_header.h"

namespace corvane::host
{
// True for pixels that are compressed as only the imaging library's decoders know it: JPEG, JPEG-LS, JPEG 2000.
bool NeedsDecoders(const DicomHeader& header);

// The pixels of files[first], which needs the decoders, and of as many files after it as are decoded together: all
// frames of each, one file after the other. Throws Error, with the file's name, when they are damaged.
std::vector<char> DecodeBatch(const std::vector<DicomHeader>& files, size_t first);
} // namespace corvane::host

#endif
