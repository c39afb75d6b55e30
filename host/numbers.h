#ifndef CORVANE_HOST_NUMBERS_H
#define CORVANE_HOST_NUMBERS_H

#include <string>
#include <vector>

namespace corvane::host
{
// Numbers that a user must have given. Each throws Error (Usage) for anything but finite numbers; `what` says in the
// message what is wanted: "--center takes X,Y,Z in mm".
double RequireNumber(const std::string& text, const std::string& what);
int RequireInteger(const std::string& text, const std::string& what);
std::vector<double> RequireNumbers(const std::string& text, char separator, size_t count, const std::string& what);

// The pieces between separators; an empty text is one empty piece.
std::vector<std::string> Split(const std::string& text, char separator);

// The shortest text that reads back as the same number, the same in every locale.
std::string ExactNumber(double value);
} // namespace corvane::host

#endif
