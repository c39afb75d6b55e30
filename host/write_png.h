#ifndef CORVANE_HOST_WRITE_PNG_H
#define CORVANE_HOST_WRITE_PNG_H

#include "picture.h"

#include <string>

namespace corvane::host
{
// The bytes of a PNG file with 8 bits per channel: grey when no pixel of the picture has a colour, else RGB. The
// physical pixel size stands in it, so that unequal spacings can be shown in proportion.
std::string PngOf(const Picture& picture);

// The bytes of a PNG file with 16 bits of grey: stored value + 32768, nothing lost. Texts in the file say so, and how
// stored values become real ones.
std::string Png16Of(const KsImageData& image, double valueSlope, double valueIntercept);
} // namespace corvane::host

#endif
