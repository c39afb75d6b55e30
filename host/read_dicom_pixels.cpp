#include "read_dicom_pixels.h"

#include "error.h"
#include "read_bytes.h"
#include "read_dicom_decoders.h"
#include "read_dicom_elements.h"
#include "read_dicom_rle.h"
#include "read_text.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <span>

namespace corvane::host
{
namespace
{
static_assert(std::endian::native == std::endian::little, "pixels without compression are taken as they lie");

constexpr std::string_view kDeflatedSyntax = "1.2.840.10008.1.2.1.99";

[[noreturn]] void Fail(const DicomHeader& header, const std::string& what)
{
    throw Error(ErrorKind::Input, FileNameOf(header.path) + ": " + what);
}

// Pixels that lie in the file as they are, and fit.
std::vector<char> PlainPixels(const DicomHeader& header)
{
    const size_t byteCount = header.PixelBytes();
    std::vector<char> pixels(byteCount);
    ByteStream(header.path, header.pixelOffset, Compression::None).Read(pixels.data(), byteCount);
    if (header.bigEndian)
        SwapBytes(pixels.data(), header.PixelCount(), header.BytesPerPixel());
    return pixels;
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
        const auto picture = DecodeRle(fragment, header.PixelCount() / header.frames.size(), header.BytesPerPixel());
        if (!picture)
            Fail(header, "the compressed pixels are damaged");
        pixels.insert(pixels.end(), picture->begin(), picture->end());
    }
    return pixels;
}

// Leaves the stored bits of each pixel, with their sign.
template <typename Pixel, typename Sample>
void TakeStoredBits(const DicomHeader& header, std::span<const char> pixels, std::vector<char>& samples)
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
std::vector<char> SamplesOf(const DicomHeader& header, std::span<const char> pixels)
{
    std::vector<char> samples(header.PixelCount() * sizeof(Sample));
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

std::vector<char> SamplesOfType(SampleType type, const DicomHeader& header, std::span<const char> pixels)
{
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

void CheckPixelsFit(const DicomHeader& header)
{
    constexpr uint64_t kMaxRunRatio = 64; // a run of up to 128 bytes takes two
    const uint64_t byteCount = header.PixelBytes();
    if (header.HasPlainPixels())
    {
        const uint64_t available = std::min(header.bytesInFile, header.pixelLength.value_or(0));
        if (available < byteCount)
            Fail(header, "the pixels end too early: " + std::to_string(available) + " of " + std::to_string(byteCount) +
                             " bytes; the file is cut off");
    }
    else if (header.transferSyntax == kRleSyntax && header.bytesInFile < byteCount / kMaxRunRatio)
        Fail(header, "the header asks for " + std::to_string(byteCount) + " bytes of pixels, but only " +
                         std::to_string(header.bytesInFile) + " compressed bytes are there; the file is cut off");
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

void ReadPixels(const std::vector<DicomHeader>& files, SampleType type, const TakeSamples& take)
{
    for (size_t n = 0; n < files.size();)
    {
        if (files[n].transferSyntax == kDeflatedSyntax)
            Fail(files[n], "deflated DICOM files are not read; save it without compression");
        if (!NeedsDecoders(files[n]))
        {
            take(
                SamplesOfType(type, files[n], files[n].HasPlainPixels() ? PlainPixels(files[n]) : RlePixels(files[n])));
            ++n;
            continue;
        }
        const std::vector<char> pixels = DecodeBatch(files, n);
        std::span<const char> rest(pixels);
        while (!rest.empty())
        {
            const size_t byteCount = files[n].PixelBytes();
            take(SamplesOfType(type, files[n], rest.first(byteCount)));
            rest = rest.subspan(byteCount);
            ++n;
        }
    }
}
} // namespace corvane::host
