#ifndef CORVANE_HOST_READ_DICOM_ELEMENTS_H
#define CORVANE_HOST_READ_DICOM_ELEMENTS_H

#include <cstdint>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace corvane::host
{
// Group in the upper 16 bits, element in the lower.
using DicomTag = uint32_t;

struct DicomElement;

// The elements of a file, or of one item of a sequence.
struct DicomDataSet
{
    std::map<DicomTag, DicomElement> elements;

    // Empty when the element is absent.
    const std::string& Value(DicomTag tag) const;
    const std::vector<DicomDataSet>& Items(DicomTag tag) const;
};

struct DicomElement
{
    std::string value; // bytes as in the file; long values, which no header needs, are left out
    std::vector<DicomDataSet> items;
};

// A DICOM file up to its pixels.
struct DicomFile
{
    DicomDataSet data;
    std::string transferSyntax; // UID
    bool bigEndian = false;
    uint64_t size = 0;                   // bytes of the file
    uint64_t pixelOffset = 0;            // of the pixel data's value in the file; 0: none
    std::optional<uint64_t> pixelLength; // bytes; none: in pieces (compressed)
};

// Reads the elements of a file, with or without preamble, in explicit or implicit form. Written here rather than left
// to the imaging library, whose parser ends the program on some damaged files.
// Throws Error for a damaged file.
DicomFile ReadDicomElements(const std::string& path);

// The pieces of compressed pixels, without the table of offsets in front of them.
std::vector<std::string> ReadDicomFragments(const std::string& path, uint64_t pixelOffset);
} // namespace corvane::host

#endif
