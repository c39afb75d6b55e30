#ifndef CORVANE_HOST_LABEL_COLOURS_H
#define CORVANE_HOST_LABEL_COLOURS_H

#include <array>
#include <cstdint>
#include <string>

namespace corvane::host
{
// How one label is shown.
struct LabelColour
{
    std::string name;
    uint8_t red = 0, green = 0, blue = 0;
    double opacity = 0; // 0: not shown
};

using LabelColours = std::array<LabelColour, 64>; // by label

// A colour of its own for each label; label 0 is not shown.
LabelColours DefaultLabelColours();

// Reads a colour table: either lines of
//   label name red green blue opacity               (0 to 255 each; 3D Slicer's .ctbl)
//   label red green blue opacity shown mesh "name"  (opacity 0 to 1, the other two 0 or 1; ITK-SNAP's descriptions)
// # starts a comment. Labels that the file does not name are not shown; those above 63 are left out.
// Throws Error (Input) with file and line for anything else.
LabelColours ReadLabelColours(const std::string& path);
} // namespace corvane::host

#endif
