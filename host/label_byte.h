#ifndef CORVANE_HOST_LABEL_BYTE_H
#define CORVANE_HOST_LABEL_BYTE_H

#include <cstdint>

namespace corvane::host
{
// What a label byte says, here and in the library's KsVolumeMark.
constexpr uint8_t kLabelBits = 63; // the label
constexpr uint8_t kCutBit = 64;    // added where a voxel is cut away: it is not shown in three dimensions
} // namespace corvane::host

#endif
