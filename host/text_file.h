#ifndef CORVANE_HOST_TEXT_FILE_H
#define CORVANE_HOST_TEXT_FILE_H

#include <string>

namespace corvane::host
{
// Throws Error (Input) for what is no file that can be read from the start again and again: pipes, devices and sockets,
// which may never answer or never end, and folders. What is absent is left to whoever opens it.
void RefuseUnlessFile(const std::string& path);

// The bytes of a file that people or programs write by hand, such as a palette.
//   what  "a palette file", say
// Throws Error (Input), with what to give instead, when it cannot be read or is larger than such files are (16 MiB).
std::string TextOfFile(const std::string& path, const std::string& what);
} // namespace corvane::host

#endif
