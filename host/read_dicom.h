#ifndef CORVANE_HOST_READ_DICOM_H
#define CORVANE_HOST_READ_DICOM_H

#include "read_raw.h"

namespace corvane::host
{
// Reads one DICOM series of a folder.
//   wanted  UID or number of the series; may be empty when there is only one
RawVolume ReadDicomFolder(const std::string& folder, const std::string& wanted);

// Reads one DICOM file: all its frames, or its single slice.
RawVolume ReadDicomFile(const std::string& path);
} // namespace corvane::host

#endif
