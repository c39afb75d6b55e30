#include "read_dicom_rle.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace corvane::host
{
namespace
{
constexpr size_t kHeaderBytes = 64; // count of planes and up to 15 offsets

uint32_t Number(const std::string& bytes, size_t at)
{
    uint32_t value = 0;
    for (size_t i = 4; i-- > 0;)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

// Writes one plane to every `stride`-th byte from `out`; false when the runs end before the plane is full.
bool DecodePlane(std::string_view runs, char* out, size_t pixelCount, size_t stride)
{
    size_t at = 0, done = 0;
    while (done < pixelCount)
    {
        if (at >= runs.size())
            return false;
        const int control = static_cast<unsigned char>(runs[at++]);
        if (control == 128)
            continue;
        const bool isRun = control > 128;
        const size_t count = std::min(size_t(isRun ? 257 - control : control + 1), pixelCount - done);
        if (at + (isRun ? 1 : count) > runs.size())
            return false;
        for (size_t i = 0; i < count; ++i)
            out[(done + i) * stride] = runs[isRun ? at : at + i];
        at += isRun ? 1 : count;
        done += count;
    }
    return true;
}
} // namespace

std::optional<std::vector<char>> DecodeRle(const std::string& fragment, size_t pixelCount, size_t bytesPerPixel)
{
    if (fragment.size() < kHeaderBytes || Number(fragment, 0) != bytesPerPixel)
        return std::nullopt;
    std::vector<char> pixels(pixelCount * bytesPerPixel);
    for (size_t plane = 0; plane < bytesPerPixel; ++plane)
    {
        const size_t start = Number(fragment, 4 + 4 * plane);
        const size_t end = plane + 1 < bytesPerPixel ? Number(fragment, 8 + 4 * plane) : fragment.size();
        if (start < kHeaderBytes || start > end || end > fragment.size())
            return std::nullopt;
        const std::string_view runs = std::string_view(fragment).substr(start, end - start);
        if (!DecodePlane(runs, pixels.data() + bytesPerPixel - 1 - plane, pixelCount, bytesPerPixel))
            return std::nullopt;
    }
    return pixels;
}
} // namespace corvane::host
