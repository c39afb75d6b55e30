#ifndef CORVANE_FUZZ_READERS_FILE_OF_BYTES_H
#define CORVANE_FUZZ_READERS_FILE_OF_BYTES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace corvane::fuzz
{
// Writes bytes to a file of this process, in memory where the system has such a folder, and returns its path. The next
// call with the same name replaces it; all go when the process ends.
//   name  may stand in a folder: "series/1"
std::string FileOfBytes(const std::string& name, const uint8_t* bytes, size_t count);
std::string FileOfBytes(const std::string& name, std::string_view bytes);
} // namespace corvane::fuzz

#endif
