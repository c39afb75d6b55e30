#ifndef CORVANE_HOST_READ_TEXT_H
#define CORVANE_HOST_READ_TEXT_H

#include "vec3.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::host
{
// A number for a message: six significant digits, the same in every locale.
std::string Number(double value);

// "(x, y, z)" for a message.
std::string PointText(Vec3 point);

// The text without blanks, line ends and zero bytes around it.
std::string Trimmed(std::string_view text);

// Text of a file as it can be shown: control characters, line ends among them, become blanks, and of more than 2,000
// bytes the middle is left out.
std::string OneLine(std::string text);

// The number that the whole text spells (blanks around it allowed), or nothing. Infinities and NaN are no numbers here.
std::optional<double> ParseNumber(std::string_view text);

// The numbers of a list, or nothing when one of them is none. Two separators in a row count as one for blanks only.
std::optional<std::vector<double>> ParseNumbers(std::string_view text, char separator);

// The last part of a path.
std::string FileNameOf(const std::string& path);
} // namespace corvane::host

#endif
