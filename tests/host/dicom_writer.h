#ifndef CORVANE_TESTS_HOST_DICOM_WRITER_H
#define CORVANE_TESTS_HOST_DICOM_WRITER_H

#include "host/volume.h"

#include <filesystem>
#include <functional>
#include <gdcmDataSet.h>
#include <gdcmTransferSyntax.h>
#include <string>
#include <vector>

namespace corvane::host
{
// How a series is written. The defaults are a plain CT.
struct DicomSeriesOptions
{
    std::string uid = "1.2.3.4.1", modality = "CT", description = "test series";
    std::string filePrefix = "IM";
    bool isSigned = true;
    int bitsAllocated = 16, bitsStored = 16, highBit = 15;
    double slope = 1, intercept = 0; // pixel = (value - intercept) / slope
    std::string photometric = "MONOCHROME2";
    gdcm::TransferSyntax::TSType transferSyntax = gdcm::TransferSyntax::ExplicitVRLittleEndian;
    std::vector<int> leftOut;                            // slices that get no file
    std::function<void(int slice, gdcm::DataSet&)> edit; // last change to a slice's elements
};

// Writes one file per slice of the grid into a folder, which is made when absent. The file names' order is not the
// slices' order.
//   value  real value of voxel (i, j, k)
void WriteDicomSeries(const std::filesystem::path& folder, const Grid& grid,
                      const std::function<int(int, int, int)>& value, const DicomSeriesOptions& options = {});

// Writes all slices as frames of one file, with a position for each frame and the rest shared by all.
void WriteDicomFrames(const std::filesystem::path& file, const Grid& grid,
                      const std::function<int(int, int, int)>& value, const DicomSeriesOptions& options = {});

// Sets an element of a data set: text, or an unsigned 16-bit number.
void SetText(gdcm::DataSet& data, gdcm::Tag tag, gdcm::VR::VRType type, const std::string& text);
void SetNumber(gdcm::DataSet& data, gdcm::Tag tag, int number);

// The numbers as a decimal string, as exact as its 16 characters each allow.
std::string DecimalString(const std::vector<double>& numbers);
} // namespace corvane::host

#endif
