#ifndef CORVANE_HOST_OUTPUT_FILE_H
#define CORVANE_HOST_OUTPUT_FILE_H

#include <string>

namespace corvane::host
{
// Throws Error (Output) when a file stands at `path` already and `replace` is false, or when its folder is missing or
// cannot be written.
// Devices, pipes and "-" (standard output) may always be written.
void CheckOutput(const std::string& path, bool replace);

// Writes a whole file, or nothing: the bytes go to a temporary name beside the target, which then takes its place.
// Signals that would end the program wait until the file is complete.
// Throws Error (Output), after removing what was written, when this fails and where CheckOutput does.
void WriteOutput(const std::string& path, const std::string& bytes, bool replace);
} // namespace corvane::host

#endif
