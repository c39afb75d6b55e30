#ifndef CORVANE_HOST_PHANTOM_H
#define CORVANE_HOST_PHANTOM_H

#include "volume.h"

#include <string>

namespace corvane::host
{
// A volume made by code, in HU: a body with bone, a branching contrast-filled vessel and an air-filled curved tube, a
// label for each, and no symmetry, so that a mirrored or turned picture shows. The same bytes on every machine.
//   text     "phantom:" and, separated by commas, any of size=XxYxZ, spacing=XxYxZ (mm), tilt=DEGREES (gantry tilt:
//            the slices lean, the table moves along z), noise=HU
// Throws Error for anything else in the text.
Volume MakePhantom(const std::string& text);
} // namespace corvane::host

#endif
