#include "read_dicom_pixels.h"

#include "error.h"
#include "read_bytes.h"
#include "read_dicom_elements.h"
#include "read_dicom_picture_size.h"
#include "read_dicom_rle.h"
#include "read_text.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <filesystem>
#include <gdcmImage.h>
#include <gdcmSequenceOfFragments.h>
#include <gdcmTrace.h>

namespace corvane::host
{
namespace
{
static_assert(std::endian::native == std::endian::little, "pixels without compression are taken as they lie");

constexpr std::string_view kDeflatedSyntax = "1.2.840.10008.1.2.1.99", kRleSyntax = "1.2.840.10008.1.2.5";

[[noreturn]] void Fail(const DicomHeader& header, const std::string& what)
{
    throw Error(ErrorKind::Input, FileNameOf(header.path) + ": " + what);
}

size_t BytesPerPixel(const DicomHeader& header) { return size_t(header.bitsAllocated) / 8; }

size_t PixelCount(const DicomHeader& header)
{
    return size_t(header.rows) * size_t(header.columns) * header.frames.size();
}

// Pixels that lie in the file as they are.
std::vector<char> PlainPixels(const DicomHeader& header)
{
    const size_t byteCount = PixelCount(header) * BytesPerPixel(header);
    std::error_code error;
    const uint64_t fileSize = std::filesystem::file_size(header.path, error);
    const uint64_t inFile = header.pixelOffset > 0 && fileSize > header.pixelOffset ? fileSize - header.pixelOffset : 0;
    const uint64_t available = std::min(inFile, header.pixelLength.value_or(0));
    if (error || available < byteCount)
        Fail(header, "the pixels end too early: " + std::to_string(available) + " of " + std::to_string(byteCount) +
                         " bytes; the file is cut off");
    std::vector<char> pixels(byteCount);
    ByteStream(header.path, header.pixelOffset, Compression::None).Read(pixels.data(), byteCount);
    if (header.bigEndian)
        SwapBytes(pixels.data(), PixelCount(header), BytesPerPixel(header));
    return pixels;
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

std::vector<char> RlePixels(const DicomHeader& header)
{
    const std::vector<std::string> fragments = ReadDicomFragments(header.path, header.pixelOffset);
    if (fragments.size() != header.frames.size())
        Fail(header, "holds " + std::to_string(fragments.size()) + " compressed pictures, the header says " +
                         std::to_string(header.frames.size()) + "; the file is damaged");
    std::vector<char> pixels;
    for (const std::string& fragment : fragments)
    {
        const auto picture = DecodeRle(fragment, PixelCount(header) / header.frames.size(), BytesPerPixel(header));
        if (!picture)
            Fail(header, "the compressed pixels are damaged");
        pixels.insert(pixels.end(), picture->begin(), picture->end());
    }
    return pixels;
}

// Pixels that the library's decoders know: JPEG, JPEG-LS, JPEG 2000.
std::vector<char> DecodedPixels(const DicomHeader& header)
{
    const gdcm::TransferSyntax syntax(gdcm::TransferSyntax::GetTSType(header.transferSyntax.c_str()));
    if (!syntax.IsValid() || !syntax.IsEncapsulated())
        Fail(header, "the compression '" + header.transferSyntax + "' is not known");
    const std::vector<std::string> fragments = ReadDicomFragments(header.path, header.pixelOffset);
    if (fragments.empty())
        Fail(header, "holds no pixels");
    CheckPictures(header, fragments);

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
    image.SetTransferSyntax(syntax);
    image.SetDataElement(PixelElement(fragments));

    const size_t byteCount = PixelCount(header) * BytesPerPixel(header);
    std::vector<char> pixels(byteCount);
    if (image.GetBufferLength() != byteCount || !image.GetBuffer(pixels.data()))
        Fail(header, "the compressed pixels are damaged");
    return pixels;
}

std::vector<char> StoredPixels(const DicomHeader& header)
{
    if (header.transferSyntax == kDeflatedSyntax)
        Fail(header, "deflated DICOM files are not read; save it without compression");
    if (header.pixelLength || header.pixelOffset == 0)
        return PlainPixels(header);
    if (header.transferSyntax == kRleSyntax)
        return RlePixels(header);
    gdcm::Trace::DebugOff();
    gdcm::Trace::WarningOff();
    gdcm::Trace::ErrorOff();
    try
    {
        return DecodedPixels(header);
    }
    catch (const Error&)
    {
        throw;
    }
    catch (const std::exception& failure) // from the decoders
    {
        Fail(header, std::string("the compressed pixels are damaged (") + failure.what() + ")");
    }
}

// Leaves the stored bits of each pixel, with their sign.
template <typename Pixel, typename Sample>
void TakeStoredBits(const DicomHeader& header, const std::vector<char>& pixels, std::vector<char>& samples)
{
    const int shift = header.highBit + 1 - header.bitsStored;
    const uint64_t mask = (uint64_t(1) << header.bitsStored) - 1;
    const uint64_t signBit = header.isSigned ? uint64_t(1) << (header.bitsStored - 1) : 0;
    for (size_t i = 0; i < pixels.size() / sizeof(Pixel); ++i)
    {
        Pixel pixel;
        std::memcpy(&pixel, &pixels[i * sizeof pixel], sizeof pixel);
        const uint64_t bits = (uint64_t(pixel) >> shift) & mask;
        const Sample sample = Sample(int64_t(bits ^ signBit) - int64_t(signBit));
        std::memcpy(&samples[i * sizeof sample], &sample, sizeof sample);
    }
}

template <typename Sample>
std::vector<char> SamplesOf(const DicomHeader& header, const std::vector<char>& pixels)
{
    std::vector<char> samples(PixelCount(header) * sizeof(Sample));
    switch (header.bitsAllocated)
    {
    case 8:
        TakeStoredBits<uint8_t, Sample>(header, pixels, samples);
        break;
    case 16:
        TakeStoredBits<uint16_t, Sample>(header, pixels, samples);
        break;
    default:
        TakeStoredBits<uint32_t, Sample>(header, pixels, samples);
        break;
    }
    return samples;
}
} // namespace

void CheckPixelsAreGrey(const DicomHeader& header)
{
    if (header.samplesPerPixel != 1 || !header.photometric.starts_with("MONOCHROME"))
        Fail(header, "colour images (" + header.photometric + ", " + std::to_string(header.samplesPerPixel) +
                         " samples per pixel) are no volume that can be shown");
    if (header.bitsAllocated != 8 && header.bitsAllocated != 16 && header.bitsAllocated != 32)
        Fail(header, "pixels of " + std::to_string(header.bitsAllocated) + " bits cannot be shown; 8, 16 and 32 can");
    if (header.bitsStored < 1 || header.bitsStored > header.bitsAllocated || header.highBit < header.bitsStored - 1 ||
        header.highBit >= header.bitsAllocated)
        Fail(header, "the header says " + std::to_string(header.bitsStored) + " bits stored up to bit " +
                         std::to_string(header.highBit) + " of " + std::to_string(header.bitsAllocated) +
                         ", which cannot be");
}

SampleType CommonSampleType(const std::vector<DicomHeader>& files)
{
    int signedBits = 0, unsignedBits = 0;
    const DicomHeader* widest = &files.front();
    for (const DicomHeader& file : files)
    {
        int& bits = file.isSigned ? signedBits : unsignedBits;
        if (file.bitsStored > bits)
        {
            bits = file.bitsStored;
            widest = &file;
        }
    }
    const int bits = signedBits > 0 ? std::max(signedBits, unsignedBits + 1) : unsignedBits;
    if (bits > 32)
        Fail(*widest, "unsigned pixels of " + std::to_string(unsignedBits) + " bits beside signed ones in one series");
    if (signedBits > 0)
        return bits <= 16 ? SampleType::Int16 : SampleType::Int32;
    if (bits <= 15)
        return SampleType::Int16;
    return bits <= 16 ? SampleType::UInt16 : SampleType::UInt32;
}

std::vector<char> ReadPixels(const DicomHeader& header, SampleType type)
{
    const std::vector<char> pixels = StoredPixels(header);
    switch (type)
    {
    case SampleType::Int16:
        return SamplesOf<int16_t>(header, pixels);
    case SampleType::UInt16:
        return SamplesOf<uint16_t>(header, pixels);
    case SampleType::Int32:
        return SamplesOf<int32_t>(header, pixels);
    default:
        return SamplesOf<uint32_t>(header, pixels);
    }
}
} // namespace corvane::host
