#ifndef CORVANE_HOST_PICTURE_MARKS_H
#define CORVANE_HOST_PICTURE_MARKS_H

#include "picture.h"

#include <string>

namespace corvane::host
{
// Writes white text with a dark outline.
//   row, column  upper left corner of the first letter; what falls outside the picture is cut off
//   scale        pixels for each dot of the 5 x 7 letters
// Knows R L A P S I H F, digits, point, m and space; leaves a gap for anything else.
void DrawText(Picture& picture, int row, int column, int scale, const std::string& text);

// Pixels that a text covers, without its outline.
int TextWidth(int scale, const std::string& text);

// The patient's directions at the middle of each edge of the picture. Pictures with a side below 40 pixels stay as
// they are.
void DrawOrientationLetters(Picture& picture, const PnImageParam& plane);

// A bar of a round number of mm with its length, at the lower left; at most a quarter as long as the picture is wide.
// Pictures with a side below 80 pixels stay as they are.
void DrawScaleBar(Picture& picture);

// The length of that bar: the largest of 1, 2 or 5 times a power of ten that does not exceed `longest` mm.
double ScaleBarLength(double longest);
} // namespace corvane::host

#endif
