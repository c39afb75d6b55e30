#ifndef CORVANE_FUZZ_READERS_DICOM_CHECKS_H
#define CORVANE_FUZZ_READERS_DICOM_CHECKS_H

#include <string>

namespace corvane::fuzz
{
// Whether a file holds pictures that only the packaged decoders can decode (JPEG, JPEG-LS, JPEG 2000). Those work in a
// process of their own, are not what is tried here, and a process for each input would take most of the time: such a
// file is taken apart down to the sizes of its pictures, and then left.
bool NeedsPackagedDecoder(const std::string& path);
} // namespace corvane::fuzz

#endif
