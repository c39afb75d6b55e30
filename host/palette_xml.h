#ifndef CORVANE_HOST_PALETTE_XML_H
#define CORVANE_HOST_PALETTE_XML_H

#include "transfer_function.h"

#include <string>

namespace corvane::host
{
// A volume property of 3D Slicer's presets in XML.
//   file    its name, for messages
//   wanted  name of the preset; may be empty when there is only one
// Throws Error (Input).
TransferFunction TransferFunctionOfXml(const std::string& text, const std::string& file, const std::string& wanted);
} // namespace corvane::host

#endif
