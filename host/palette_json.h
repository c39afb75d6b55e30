#ifndef CORVANE_HOST_PALETTE_JSON_H
#define CORVANE_HOST_PALETTE_JSON_H

#include "transfer_function.h"

#include <string>

namespace corvane::host
{
// A palette in JSON: in this program's form, which has "points", or as volume properties of 3D Slicer. The points'
// ranges and order are not checked.
//   file  its name, for messages
// Throws Error (Input).
TransferFunction TransferFunctionOfJson(const std::string& text, const std::string& file);
} // namespace corvane::host

#endif
