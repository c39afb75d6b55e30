#include "read_dicom_header.h"

#include "error.h"
#include "read_dicom_elements.h"
#include "read_text.h"

#include <algorithm>
#include <cstring>

namespace corvane::host
{
namespace
{
constexpr DicomTag kModality = 0x00080060, kSeriesDescription = 0x0008103e, kSeriesUid = 0x0020000e;
constexpr DicomTag kRows = 0x00280010, kColumns = 0x00280011, kFrameCount = 0x00280008;
constexpr DicomTag kSamplesPerPixel = 0x00280002, kPhotometric = 0x00280004;
constexpr DicomTag kBitsAllocated = 0x00280100, kBitsStored = 0x00280101, kHighBit = 0x00280102;
constexpr DicomTag kPixelRepresentation = 0x00280103, kLossy = 0x00282110;
constexpr DicomTag kPosition = 0x00200032, kOrientation = 0x00200037, kPixelSpacing = 0x00280030;
constexpr DicomTag kThickness = 0x00180050, kSpacingBetweenSlices = 0x00180088;
constexpr DicomTag kIntercept = 0x00281052, kSlope = 0x00281053;
constexpr DicomTag kSharedGroups = 0x52009229, kPerFrameGroups = 0x52009230;
constexpr DicomTag kPlanePositionGroup = 0x00209113, kPlaneOrientationGroup = 0x00209116;
constexpr DicomTag kPixelMeasuresGroup = 0x00289110, kValueTransformationGroup = 0x00289145;
constexpr int kMaxFrames = 1 << 20;

std::string Text(const DicomDataSet& data, DicomTag tag) { return OneLine(Trimmed(data.Value(tag))); }

int Unsigned16(const DicomFile& file, DicomTag tag, int otherwise)
{
    const std::string& value = file.data.Value(tag);
    if (value.size() < 2)
        return otherwise;
    const int first = static_cast<unsigned char>(value[0]), second = static_cast<unsigned char>(value[1]);
    return file.bigEndian ? first << 8 | second : second << 8 | first;
}

// The numbers of a decimal string; nothing when the element is absent or its count of numbers is another.
std::optional<std::vector<double>> Decimals(const DicomDataSet& data, DicomTag tag, size_t count)
{
    auto numbers = ParseNumbers(Text(data, tag), '\\');
    if (!numbers || numbers->size() != count)
        return std::nullopt;
    return numbers;
}

void ReadDecimal(const DicomDataSet& data, DicomTag tag, double& number)
{
    if (const auto numbers = Decimals(data, tag, 1))
        number = (*numbers)[0];
}

// Takes over what a data set says about the place and the values of an image; what it does not say stays.
void ReadFrame(const DicomDataSet& data, DicomFrame& frame)
{
    if (const auto position = Decimals(data, kPosition, 3))
        frame.position = {(*position)[0], (*position)[1], (*position)[2]};
    if (const auto directions = Decimals(data, kOrientation, 6))
    {
        const std::vector<double>& d = *directions;
        frame.rowDirection = {d[0], d[1], d[2]};
        frame.columnDirection = {d[3], d[4], d[5]};
    }
    if (const auto spacing = Decimals(data, kPixelSpacing, 2)) // between rows first
    {
        frame.rowSpacing = (*spacing)[0];
        frame.columnSpacing = (*spacing)[1];
    }
    ReadDecimal(data, kThickness, frame.thickness);
    ReadDecimal(data, kSpacingBetweenSlices, frame.spacingBetweenSlices);
    ReadDecimal(data, kSlope, frame.rescale.slope);
    ReadDecimal(data, kIntercept, frame.rescale.intercept);
    if (frame.rescale.slope == 0) // written by some for "not used"
        frame.rescale.slope = 1;
}

// Takes over the functional groups of one item: each is a sequence of one item with the elements of a plain image.
void ReadGroups(const DicomDataSet& groups, DicomFrame& frame)
{
    for (const DicomTag tag :
         {kPlanePositionGroup, kPlaneOrientationGroup, kPixelMeasuresGroup, kValueTransformationGroup})
        if (!groups.Items(tag).empty())
            ReadFrame(groups.Items(tag).front(), frame);
}

std::vector<DicomFrame> ReadFrames(const DicomDataSet& data, int frameCount)
{
    DicomFrame common;
    ReadFrame(data, common);
    const std::vector<DicomDataSet>& perFrame = data.Items(kPerFrameGroups);
    if (frameCount == 1 && perFrame.empty())
        return {common};

    // One position for many frames says nothing about each of them.
    common.position.reset();
    if (!data.Items(kSharedGroups).empty())
        ReadGroups(data.Items(kSharedGroups).front(), common);
    std::vector<DicomFrame> frames(size_t(frameCount), common);
    for (size_t i = 0; i < std::min(perFrame.size(), frames.size()); ++i)
        ReadGroups(perFrame[i], frames[i]);
    return frames;
}

std::optional<DicomHeader> HeaderOf(const DicomFile& file, const std::string& path)
{
    const DicomDataSet& data = file.data;
    DicomHeader header;
    header.path = path;
    header.rows = Unsigned16(file, kRows, 0);
    header.columns = Unsigned16(file, kColumns, 0);
    header.bitsAllocated = Unsigned16(file, kBitsAllocated, 0);
    if (header.rows == 0 || header.columns == 0 || header.bitsAllocated == 0)
        return std::nullopt;
    header.transferSyntax = file.transferSyntax;
    header.bigEndian = file.bigEndian;
    header.pixelOffset = file.pixelOffset;
    header.pixelLength = file.pixelLength;
    if (file.pixelOffset > 0 && file.size > file.pixelOffset)
        header.bytesInFile = file.size - file.pixelOffset;
    header.seriesUid = Text(data, kSeriesUid);
    header.modality = Text(data, kModality);
    header.description = Text(data, kSeriesDescription);
    header.samplesPerPixel = Unsigned16(file, kSamplesPerPixel, 1);
    header.photometric = Text(data, kPhotometric);
    header.bitsStored = Unsigned16(file, kBitsStored, header.bitsAllocated);
    header.highBit = Unsigned16(file, kHighBit, header.bitsStored - 1);
    header.isSigned = Unsigned16(file, kPixelRepresentation, 0) == 1;
    header.wasLossy = Text(data, kLossy) == "01";
    const double frameCount = ParseNumber(Text(data, kFrameCount)).value_or(1);
    if (!(frameCount >= 1 && frameCount <= kMaxFrames))
        throw Error(ErrorKind::Input, FileNameOf(path) + ": the header says " + Number(frameCount) + " frames");
    if (frameCount > 1 && frameCount > double(header.bytesInFile))
        throw Error(ErrorKind::Input, FileNameOf(path) + ": the header says " + Number(frameCount) +
                                          " frames, but only " + std::to_string(header.bytesInFile) +
                                          " bytes of pixels are there; the file is cut off");
    header.frames = ReadFrames(data, int(frameCount));
    return header;
}
} // namespace

std::optional<DicomHeader> ReadDicomHeader(const std::string& path) { return HeaderOf(ReadDicomElements(path), path); }

bool HasDicomMark(const std::vector<char>& firstBytes)
{
    constexpr size_t kPreamble = 128;
    return firstBytes.size() >= kPreamble + 4 && std::memcmp(&firstBytes[kPreamble], "DICM", 4) == 0;
}

bool MayBeDicom(const std::vector<char>& firstBytes)
{
    // Without the mark: group 2 or 8, little endian, with a small element number.
    return HasDicomMark(firstBytes) || (firstBytes.size() >= 8 && (firstBytes[0] == 2 || firstBytes[0] == 8) &&
                                        firstBytes[1] == 0 && firstBytes[3] == 0);
}
} // namespace corvane::host
