#ifndef CORVANE_HOST_PALETTE_FILE_H
#define CORVANE_HOST_PALETTE_FILE_H

#include "transfer_function.h"

#include <string>

namespace corvane::host
{
// Reads a transfer function; the kind of file is told by its first character.
//   path  a palette as docs/palettes.md describes it, 3D Slicer's volume properties (.vp.json), or its presets in XML;
//         one of several in a file is chosen as FILE#NAME
// Throws Error (Input) with the file's name for what cannot be understood; what is understood and cannot be shown
// stands in the function's warnings.
TransferFunction ReadTransferFunction(const std::string& path);
} // namespace corvane::host

#endif
