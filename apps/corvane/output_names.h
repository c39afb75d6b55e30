#ifndef CORVANE_APPS_OUTPUT_NAMES_H
#define CORVANE_APPS_OUTPUT_NAMES_H

#include <string>
#include <vector>

#include "mpr_planes.h"

namespace corvane::app
{
// Where the pictures go.
struct OutputNames
{
    std::vector<std::string> files; // one for each picture; "-" is standard output
    std::string newFolder;          // to be made first; empty: none
};

// png, png16 or nrrd: the format that was asked for or, with an empty text, the one that the name's ending says.
// Throws Error (Usage) for an unknown format, and for a name whose ending says something else.
std::string FormatOf(const std::string& format, const std::string& output);

// Names for all pictures. `output` is a file for one picture, a pattern with {plane} and {index}, or a folder, in
// which pictures are called axial.png or axial_001.png; its parent must exist.
// Throws Error (Usage) when two pictures would get one name, or more than one picture standard output.
OutputNames NameOutputs(const std::string& output, const std::string& format,
                        const std::vector<PlannedPicture>& pictures);
} // namespace corvane::app

#endif
