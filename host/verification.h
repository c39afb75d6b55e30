#ifndef CORVANE_HOST_VERIFICATION_H
#define CORVANE_HOST_VERIFICATION_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace corvane::host
{
// The bytes of one picture, of its geometry and of the operation's result, as one number.
struct PictureHash
{
    std::string name; // operation and what it was asked for
    uint64_t hash;    // FNV-1a, 64 bits
};

// Makes a fixed set of pictures of two small phantoms (one of them a tilted stack with voxels that are not square)
// through every operation of the library, in the order of the list below, and gives each to `take` as it is done.
// Throws Error (Computation) when the library refuses one.
void MakeVerificationPictures(const std::function<void(const PictureHash&)>& take);

// What the pictures are on every machine.
const std::vector<PictureHash>& ExpectedPictureHashes();

// Sixteen hexadecimal digits.
std::string HashText(uint64_t hash);

// Makes the pictures and hands each line of a report to `print`: "ok", "DIFFERS" or "NEW" and the name, with the hash.
// Returns how many are not what they must be, those that are missing included.
int VerifyPictures(const std::function<void(const std::string&)>& print);
} // namespace corvane::host

#endif
