#include "read_dicom_picture_size.h"

#include <string_view>

namespace corvane::host
{
namespace
{
using namespace std::string_view_literals;

constexpr uint32_t kMarker = 0xff, kStartOfScan = 0xda, kJfif = 0xe0, kJfifName = 0x4a464946;

// Big-endian number at a place that the caller has checked.
uint32_t Number(const std::string& bytes, size_t at, size_t byteCount)
{
    uint32_t value = 0;
    for (size_t i = at; i < at + byteCount; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[i]);
    return value;
}

// Source: ISO/IEC 15444-1 A.5.1, image and tile size (SIZ).
std::optional<PictureSize> Jpeg2000Size(const std::string& bytes)
{
    constexpr size_t kEnd = 2 + 2 + 39; // markers and segment with one component
    if (bytes.size() < kEnd)
        return std::nullopt;
    PictureSize size;
    size.columns = Number(bytes, 8, 4) - Number(bytes, 16, 4);
    size.rows = Number(bytes, 12, 4) - Number(bytes, 20, 4);
    size.components = int(Number(bytes, 40, 2));
    size.bits = int(Number(bytes, 42, 1) & 0x7f) + 1;
    return size;
}

// True for the markers that start a frame: all of C0 to CF but three, and F7 of JPEG-LS.
bool StartsFrame(uint32_t marker)
{
    return marker == 0xf7 || (marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc);
}

// True for the other segments that may stand in front of the coded data: tables, intervals, applications, comments.
bool IsTableOrNote(uint32_t marker)
{
    return marker == 0xc4 || marker == 0xcc || marker == 0xdb || marker == 0xdd || marker == 0xf8 || marker == 0xfe ||
           (marker >= 0xe0 && marker <= 0xef);
}

// Walks the segments up to the coded data. They must follow one another without a gap: the decoder ends the program
// when it meets anything odd between them.
// Source: ISO/IEC 10918-1 B.2.2, frame header; ISO/IEC 14495-1 C.2.2 for JPEG-LS.
std::optional<PictureSize> JpegSize(const std::string& bytes)
{
    constexpr size_t kFrameHead = 10; // marker, length, and up to the count of components
    std::optional<PictureSize> size;
    for (size_t at = 2; at + kFrameHead <= bytes.size(); at += 2 + Number(bytes, at + 2, 2))
    {
        if (Number(bytes, at, 1) != kMarker)
            return std::nullopt;
        const uint32_t marker = Number(bytes, at + 1, 1);
        if (marker == kStartOfScan)
            return size;
        if (marker == kJfif && Number(bytes, at + 4, 4) == kJfifName && Number(bytes, at + 9, 1) != 1)
            return std::nullopt; // a version that is none
        if (IsTableOrNote(marker))
            continue;
        if (!StartsFrame(marker) || size)
            return std::nullopt; // one frame only, and nothing unknown
        size.emplace();
        size->bits = int(Number(bytes, at + 4, 1));
        size->rows = Number(bytes, at + 5, 2);
        size->columns = Number(bytes, at + 7, 2);
        size->components = int(Number(bytes, at + 9, 1));
    }
    return std::nullopt;
}
} // namespace

std::optional<PictureSize> PictureSizeOf(const std::string& bytes)
{
    if (bytes.starts_with("\xff\x4f\xff\x51"sv))
        return Jpeg2000Size(bytes);
    if (bytes.starts_with("\xff\xd8"sv))
        return JpegSize(bytes);
    return std::nullopt;
}
} // namespace corvane::host
