#ifndef CORVANE_HOST_READ_DICOM_RLE_H
#define CORVANE_HOST_READ_DICOM_RLE_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::host
{
constexpr std::string_view kRleSyntax = "1.2.840.10008.1.2.5"; // transfer syntax of run-length coded pictures

// The pixels of one run-length coded picture, least significant byte first; nothing when it is damaged.
//   pixelCount     pixels of the picture
//   bytesPerPixel  each byte of a pixel is a plane of its own, the most significant first
// Source: DICOM PS3.5 annex G.
std::optional<std::vector<char>> DecodeRle(const std::string& fragment, size_t pixelCount, size_t bytesPerPixel);
} // namespace corvane::host

#endif
