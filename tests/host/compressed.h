#ifndef CORVANE_TESTS_HOST_COMPRESSED_H
#define CORVANE_TESTS_HOST_COMPRESSED_H

#include <string>

namespace corvane::host
{
// Bytes as a gzip file holds them.
std::string Gzipped(const std::string& bytes);

// Bytes as a zlib stream.
std::string Deflated(const std::string& bytes);
} // namespace corvane::host

#endif
