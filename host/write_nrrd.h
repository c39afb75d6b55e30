#ifndef CORVANE_HOST_WRITE_NRRD_H
#define CORVANE_HOST_WRITE_NRRD_H

#include "volume.h"

#include <string>

namespace corvane::host
{
// The bytes of a NRRD file: stored values in 16 bits as a volume of one slice, with the plane's place in patient
// space (LPS mm). How stored values become real ones stands in it as the key-value pairs "value slope" and "value
// intercept" where that is more than the value itself.
//   thickness  mm from this slice to the next one
std::string NrrdOf(const KsImageData& image, double thickness, double valueSlope, double valueIntercept);
} // namespace corvane::host

#endif
