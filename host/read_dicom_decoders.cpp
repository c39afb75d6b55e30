#include "read_dicom_decoders.h"

#include "error.h"
#include "read_dicom_elements.h"
#include "read_dicom_picture_size.h"
#include "read_dicom_rle.h"
#include "read_text.h"
#include "run_apart.h"

#include <gdcmImage.h>
#include <gdcmSequenceOfFragments.h>
#include <gdcmTrace.h>
#include <span>

namespace corvane::host
{
namespace
{
[[noreturn]] void Fail(const DicomHeader& header, const std::string& what)
{
    throw Error(ErrorKind::Input, FileNameOf(header.path) + ": " + what);
}

// Decoders trust what a compressed picture says of itself, so it is compared with the header before.
void CheckPictures(const DicomHeader& header, const std::vector<std::string>& fragments)
{
    size_t pictureCount = 0;
    for (const std::string& fragment : fragments)
    {
        const std::optional<PictureSize> size = PictureSizeOf(fragment);
        if (!size)
            continue; // a later piece of a picture
        ++pictureCount;
        const bool sameBytes = (size->bits + 7) / 8 == header.bitsAllocated / 8;
        if (size->columns != uint32_t(header.columns) || size->rows != uint32_t(header.rows) || size->components != 1 ||
            !sameBytes)
            Fail(header, "a compressed picture has " + std::to_string(size->columns) + " x " +
                             std::to_string(size->rows) + " pixels of " + std::to_string(size->components) + " x " +
                             std::to_string(size->bits) + " bits, the header says " + std::to_string(header.columns) +
                             " x " + std::to_string(header.rows) + " of " + std::to_string(header.bitsAllocated));
    }
    if (pictureCount != header.frames.size())
        Fail(header, "holds " + std::to_string(pictureCount) + " whole compressed pictures, the header says " +
                         std::to_string(header.frames.size()) + "; the file is damaged");
}

gdcm::DataElement PixelElement(const std::vector<std::string>& fragments)
{
    gdcm::SmartPointer<gdcm::SequenceOfFragments> sequence = gdcm::SequenceOfFragments::New();
    for (const std::string& bytes : fragments)
    {
        gdcm::Fragment fragment;
        fragment.SetByteValue(bytes.data(), uint32_t(bytes.size()));
        sequence->AddFragment(fragment);
    }
    gdcm::DataElement element(gdcm::Tag(0x7fe0, 0x0010));
    element.SetVR(gdcm::VR::OB);
    element.SetValue(*sequence);
    return element;
}

// The compressed pixels of a file.
struct CompressedFile
{
    const DicomHeader& header;
    gdcm::TransferSyntax syntax;
    std::vector<std::string> fragments;
};

CompressedFile ReadCompressed(const DicomHeader& header)
{
    const gdcm::TransferSyntax syntax(gdcm::TransferSyntax::GetTSType(header.transferSyntax.c_str()));
    if (!syntax.IsValid() || !syntax.IsEncapsulated())
        Fail(header, "the compression '" + header.transferSyntax + "' is not known");
    std::vector<std::string> fragments = ReadDicomFragments(header.path, header.pixelOffset);
    if (fragments.empty())
        Fail(header, "holds no pixels");
    CheckPictures(header, fragments);
    return {header, syntax, std::move(fragments)};
}

bool Decode(const CompressedFile& file, char* pixels)
{
    const DicomHeader& header = file.header;
    gdcm::Image image;
    image.SetNumberOfDimensions(header.frames.size() > 1 ? 3 : 2);
    image.SetDimension(0, unsigned(header.columns));
    image.SetDimension(1, unsigned(header.rows));
    if (header.frames.size() > 1)
        image.SetDimension(2, unsigned(header.frames.size()));
    // All bits up to the highest: the library knows no unused ones below, and the stored ones are taken out later.
    image.SetPixelFormat(gdcm::PixelFormat(1, uint16_t(header.bitsAllocated), uint16_t(header.highBit + 1),
                                           uint16_t(header.highBit), header.isSigned));
    image.SetPhotometricInterpretation(gdcm::PhotometricInterpretation::MONOCHROME2);
    image.SetTransferSyntax(file.syntax);
    image.SetDataElement(PixelElement(file.fragments));
    return image.GetBufferLength() == file.header.PixelBytes() && image.GetBuffer(pixels);
}

// The pixels of several files, one after the other; nothing when one of them is damaged. Damaged pictures let the
// decoders run for hours, end the program or lose memory, so they work in another process.
std::optional<std::vector<char>> DecodeApart(std::span<const CompressedFile> files)
{
    size_t byteCount = 0;
    for (const CompressedFile& file : files)
        byteCount += file.header.PixelBytes();
    const auto decode = [&](char* pixels)
    {
        gdcm::Trace::DebugOff();
        gdcm::Trace::WarningOff();
        gdcm::Trace::ErrorOff();
        for (const CompressedFile& file : files)
        {
            if (!Decode(file, pixels))
                return false;
            pixels += file.header.PixelBytes();
        }
        return true;
    };
    const std::optional<FilledBytes> pixels = RunApart(byteCount, decode);
    if (!pixels)
        return std::nullopt;
    return std::vector<char>(pixels->Bytes().begin(), pixels->Bytes().end());
}

std::vector<char> DecodedPixels(std::span<const CompressedFile> files)
{
    if (std::optional<std::vector<char>> pixels = DecodeApart(files))
        return std::move(*pixels);
    for (const CompressedFile& file : files)
        if (files.size() == 1 || !DecodeApart({&file, 1}))
            Fail(file.header, "the compressed pixels are damaged; replace or remove the file");
    throw Error(ErrorKind::Computation, "the pixels of " + FileNameOf(files.front().header.path) +
                                            " and the files after it could not be decompressed; try again");
}

// Reads compressed files from `first` on, as many as one process shall decode: starting one takes milliseconds for
// every hundred megabytes that this one holds.
std::vector<CompressedFile> ReadBatch(const std::vector<DicomHeader>& files, size_t first)
{
    constexpr size_t kBatchBytes = 32 << 20;
    std::vector<CompressedFile> batch;
    size_t byteCount = 0;
    for (size_t n = first; n < files.size() && NeedsDecoders(files[n]) && byteCount < kBatchBytes; ++n)
    {
        batch.push_back(ReadCompressed(files[n]));
        byteCount += files[n].PixelBytes();
    }
    return batch;
}
} // namespace

bool NeedsDecoders(const DicomHeader& header)
{
    return !header.HasPlainPixels() && header.transferSyntax != kRleSyntax;
}

std::vector<char> DecodeBatch(const std::vector<DicomHeader>& files, size_t first)
{
    return DecodedPixels(ReadBatch(files, first));
}
} // namespace corvane::host
