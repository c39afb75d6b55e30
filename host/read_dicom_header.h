#ifndef CORVANE_HOST_READ_DICOM_HEADER_H
#define CORVANE_HOST_READ_DICOM_HEADER_H

#include "read_raw.h"

#include <optional>
#include <string>
#include <vector>

namespace corvane::host
{
// What a DICOM file says about one of its images.
struct DicomFrame
{
    std::optional<Vec3> position;
    std::optional<Vec3> rowDirection, columnDirection;
    double rowSpacing = 0, columnSpacing = 0;       // mm; 0: not said
    double spacingBetweenSlices = 0, thickness = 0; // mm; 0: not said
    Rescale rescale;
};

// A DICOM image file without its pixels.
struct DicomHeader
{
    std::string path, seriesUid, modality, description;
    int rows = 0, columns = 0;
    int samplesPerPixel = 1;
    std::string photometric; // "MONOCHROME2" and the like
    int bitsAllocated = 0, bitsStored = 0, highBit = 0;
    bool isSigned = false;
    bool wasLossy = false;
    std::vector<DicomFrame> frames; // at least one

    std::string transferSyntax; // UID: how elements and pixels are written; empty: not said
    bool bigEndian = false;
    uint64_t pixelOffset = 0;            // of the pixels in the file; 0: none
    std::optional<uint64_t> pixelLength; // bytes; none: in compressed pieces
    uint64_t bytesInFile = 0;            // from the pixels on to its end

    size_t PixelCount() const { return size_t(rows) * size_t(columns) * frames.size(); }
    size_t BytesPerPixel() const { return size_t(bitsAllocated) / 8; }
    size_t PixelBytes() const { return PixelCount() * BytesPerPixel(); } // without compression
    bool HasPlainPixels() const { return pixelLength || pixelOffset == 0; }
};

// Reads the header of a DICOM file, with or without preamble; nothing when the file holds no image.
// Throws Error for a damaged file.
std::optional<DicomHeader> ReadDicomHeader(const std::string& path);

// True when the first bytes of a file have the mark of DICOM after the preamble.
bool HasDicomMark(const std::vector<char>& firstBytes);

// True also for a first element as files without preamble have it.
bool MayBeDicom(const std::vector<char>& firstBytes);
} // namespace corvane::host

#endif
