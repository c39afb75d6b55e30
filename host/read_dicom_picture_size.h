#ifndef CORVANE_HOST_READ_DICOM_PICTURE_SIZE_H
#define CORVANE_HOST_READ_DICOM_PICTURE_SIZE_H

#include <cstdint>
#include <optional>
#include <string>

namespace corvane::host
{
// What a compressed picture says of itself.
struct PictureSize
{
    uint32_t columns = 0, rows = 0;
    int components = 0, bits = 0; // bits per component
};

// The size in the header of a JPEG, JPEG-LS or JPEG 2000 picture; nothing for bytes that begin otherwise.
std::optional<PictureSize> PictureSizeOf(const std::string& bytes);
} // namespace corvane::host

#endif
