#include "dicom_writer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <gdcmImageChangeTransferSyntax.h>
#include <gdcmImageReader.h>
#include <gdcmImageWriter.h>
#include <gdcmSequenceOfItems.h>
#include <gdcmWriter.h>
#include <stdexcept>

namespace corvane::host
{
namespace
{
using gdcm::DataElement;
using gdcm::DataSet;
using gdcm::Tag;
using gdcm::VR;

std::vector<double> Numbers(Vec3 v) { return {v.x, v.y, v.z}; }

std::string Position(const Grid& grid, int k)
{
    return DecimalString(Numbers(IndexToPatient(grid, {0, 0, double(k)})));
}

std::string Orientation(const Grid& grid)
{
    return DecimalString({grid.rowDirection.x, grid.rowDirection.y, grid.rowDirection.z, grid.columnDirection.x,
                          grid.columnDirection.y, grid.columnDirection.z});
}

std::string PixelSpacing(const Grid& grid) { return DecimalString({grid.spacing.y, grid.spacing.x}); }

void AppendPixel(std::vector<char>& bytes, int value, const DicomSeriesOptions& options)
{
    const double pixel = std::round((value - options.intercept) / options.slope);
    const uint32_t bits = uint32_t(int64_t(pixel)) & uint32_t((uint64_t(1) << options.bitsStored) - 1);
    const uint32_t placed = bits << (options.highBit + 1 - options.bitsStored);
    for (int byte = 0; byte < options.bitsAllocated / 8; ++byte)
        bytes.push_back(char(placed >> 8 * byte));
}

void SetPixels(DataSet& data, const Grid& grid, int firstSlice, int endSlice,
               const std::function<int(int, int, int)>& value, const DicomSeriesOptions& options)
{
    std::vector<char> bytes;
    for (int k = firstSlice; k < endSlice; ++k)
        for (int j = 0; j < grid.sizeY; ++j)
            for (int i = 0; i < grid.sizeX; ++i)
                AppendPixel(bytes, value(i, j, k), options);
    if (bytes.size() % 2)
        bytes.push_back(0);
    DataElement element(Tag(0x7fe0, 0x0010));
    element.SetVR(options.bitsAllocated == 8 ? VR::OB : VR::OW);
    element.SetByteValue(bytes.data(), uint32_t(bytes.size()));
    data.Replace(element);
}

void SetCommon(DataSet& data, const Grid& grid, const DicomSeriesOptions& options, const std::string& sopClass,
               const std::string& instance)
{
    SetText(data, Tag(0x0008, 0x0016), VR::UI, sopClass);
    SetText(data, Tag(0x0008, 0x0018), VR::UI, options.uid + "." + instance);
    SetText(data, Tag(0x0008, 0x0060), VR::CS, options.modality);
    SetText(data, Tag(0x0008, 0x103e), VR::LO, options.description);
    SetText(data, Tag(0x0020, 0x000d), VR::UI, "1.2.3.4");
    SetText(data, Tag(0x0020, 0x000e), VR::UI, options.uid);
    SetNumber(data, Tag(0x0028, 0x0002), 1);
    SetText(data, Tag(0x0028, 0x0004), VR::CS, options.photometric);
    SetNumber(data, Tag(0x0028, 0x0010), grid.sizeY);
    SetNumber(data, Tag(0x0028, 0x0011), grid.sizeX);
    SetNumber(data, Tag(0x0028, 0x0100), options.bitsAllocated);
    SetNumber(data, Tag(0x0028, 0x0101), options.bitsStored);
    SetNumber(data, Tag(0x0028, 0x0102), options.highBit);
    SetNumber(data, Tag(0x0028, 0x0103), options.isSigned);
}

// One element that is a sequence of one item.
void SetSequence(DataSet& data, Tag tag, const std::vector<DataSet>& contents)
{
    gdcm::SmartPointer<gdcm::SequenceOfItems> sequence = new gdcm::SequenceOfItems;
    sequence->SetLengthToUndefined();
    for (const DataSet& content : contents)
    {
        gdcm::Item item;
        item.SetVLToUndefined();
        item.SetNestedDataSet(content);
        sequence->AddItem(item);
    }
    DataElement element(tag);
    element.SetVR(VR::SQ);
    element.SetValue(*sequence);
    element.SetVLToUndefined();
    data.Replace(element);
}

void Compress(const std::string& path, gdcm::TransferSyntax::TSType syntax)
{
    gdcm::ImageReader reader;
    reader.SetFileName(path.c_str());
    if (!reader.Read())
        throw std::runtime_error("cannot read back " + path);
    gdcm::ImageChangeTransferSyntax change;
    change.SetTransferSyntax(syntax);
    change.SetInput(reader.GetImage());
    if (!change.Change())
        throw std::runtime_error("cannot compress " + path);
    if (syntax == gdcm::TransferSyntax::ExplicitVRBigEndian) // the image writer turns the pixels
    {
        gdcm::ImageWriter writer;
        writer.SetFileName(path.c_str());
        writer.SetFile(reader.GetFile());
        writer.SetImage(change.GetOutput());
        if (!writer.Write())
            throw std::runtime_error("cannot write " + path);
        return;
    }
    // The image writer would straighten the positions of tilted frames, so only the pixels are exchanged.
    reader.GetFile().GetDataSet().Replace(change.GetOutput().GetDataElement());
    reader.GetFile().GetHeader().SetDataSetTransferSyntax(syntax);
    gdcm::Writer writer;
    writer.SetFileName(path.c_str());
    writer.SetFile(reader.GetFile());
    if (!writer.Write())
        throw std::runtime_error("cannot write " + path);
}

void WriteFile(const std::filesystem::path& file, const DataSet& data, gdcm::TransferSyntax::TSType syntax)
{
    const bool isPlain = syntax == gdcm::TransferSyntax::ExplicitVRLittleEndian ||
                         syntax == gdcm::TransferSyntax::ImplicitVRLittleEndian;
    gdcm::Writer writer;
    writer.SetFileName(file.c_str());
    writer.GetFile().SetDataSet(data);
    writer.GetFile().GetHeader().SetDataSetTransferSyntax(isPlain ? syntax
                                                                  : gdcm::TransferSyntax::ExplicitVRLittleEndian);
    if (!writer.Write())
        throw std::runtime_error("cannot write " + file.string());
    if (!isPlain)
        Compress(file.string(), syntax);
}
} // namespace

void SetText(DataSet& data, Tag tag, VR::VRType type, const std::string& text)
{
    std::string padded = text;
    if (padded.size() % 2)
        padded += type == VR::UI ? '\0' : ' ';
    DataElement element(tag);
    element.SetVR(type);
    element.SetByteValue(padded.data(), uint32_t(padded.size()));
    data.Replace(element);
}

void SetNumber(DataSet& data, Tag tag, int number)
{
    const uint16_t value = uint16_t(number);
    char bytes[2];
    std::memcpy(bytes, &value, sizeof value);
    DataElement element(tag);
    element.SetVR(VR::US);
    element.SetByteValue(bytes, sizeof bytes);
    data.Replace(element);
}

std::string DecimalString(const std::vector<double>& numbers)
{
    constexpr size_t kMaxLength = 16;
    std::string text;
    for (const double number : numbers)
    {
        std::string part;
        for (int digits = 17; digits > 0 && (part.empty() || part.size() > kMaxLength); --digits)
        {
            char buffer[64];
            part.assign(buffer,
                        std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::general, digits).ptr);
        }
        text += (text.empty() ? "" : "\\") + part;
    }
    return text;
}

void WriteDicomSeries(const std::filesystem::path& folder, const Grid& grid,
                      const std::function<int(int, int, int)>& value, const DicomSeriesOptions& options)
{
    std::filesystem::create_directories(folder);
    for (int k = 0; k < grid.sizeZ; ++k)
    {
        if (std::find(options.leftOut.begin(), options.leftOut.end(), k) != options.leftOut.end())
            continue;
        DataSet data;
        SetCommon(data, grid, options, "1.2.840.10008.5.1.4.1.1.2", std::to_string(k + 1));
        SetText(data, Tag(0x0020, 0x0013), VR::IS, std::to_string(k + 1));
        SetText(data, Tag(0x0020, 0x0032), VR::DS, Position(grid, k));
        SetText(data, Tag(0x0020, 0x0037), VR::DS, Orientation(grid));
        SetText(data, Tag(0x0028, 0x0030), VR::DS, PixelSpacing(grid));
        SetText(data, Tag(0x0018, 0x0050), VR::DS, DecimalString({grid.spacing.z}));
        SetText(data, Tag(0x0028, 0x1052), VR::DS, DecimalString({options.intercept}));
        SetText(data, Tag(0x0028, 0x1053), VR::DS, DecimalString({options.slope}));
        SetPixels(data, grid, k, k + 1, value, options);
        if (options.edit)
            options.edit(k, data);
        // Neighbouring slices get numbers far apart; no two of up to 10007 slices get the same.
        const std::string number = std::to_string(10000 + k * 7919 % 10007);
        WriteFile(folder / (options.filePrefix + number + ".dcm"), data, options.transferSyntax);
    }
}

void WriteDicomFrames(const std::filesystem::path& file, const Grid& grid,
                      const std::function<int(int, int, int)>& value, const DicomSeriesOptions& options)
{
    DataSet data;
    SetCommon(data, grid, options, "1.2.840.10008.5.1.4.1.1.2.1", "1"); // enhanced CT
    SetText(data, Tag(0x0028, 0x0008), VR::IS, std::to_string(grid.sizeZ));
    SetPixels(data, grid, 0, grid.sizeZ, value, options);

    DataSet orientation, measures, transformation, shared;
    SetText(orientation, Tag(0x0020, 0x0037), VR::DS, Orientation(grid));
    SetText(measures, Tag(0x0028, 0x0030), VR::DS, PixelSpacing(grid));
    SetText(transformation, Tag(0x0028, 0x1052), VR::DS, DecimalString({options.intercept}));
    SetText(transformation, Tag(0x0028, 0x1053), VR::DS, DecimalString({options.slope}));
    SetSequence(shared, Tag(0x0020, 0x9116), {orientation});
    SetSequence(shared, Tag(0x0028, 0x9110), {measures});
    SetSequence(shared, Tag(0x0028, 0x9145), {transformation});
    SetSequence(data, Tag(0x5200, 0x9229), {shared});

    std::vector<DataSet> frames;
    for (int k = 0; k < grid.sizeZ; ++k)
    {
        DataSet position, frame;
        SetText(position, Tag(0x0020, 0x0032), VR::DS, Position(grid, k));
        SetSequence(frame, Tag(0x0020, 0x9113), {position});
        frames.push_back(frame);
    }
    SetSequence(data, Tag(0x5200, 0x9230), frames);
    if (options.edit)
        options.edit(0, data);
    WriteFile(file, data, options.transferSyntax);
}
} // namespace corvane::host
