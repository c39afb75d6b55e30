#include "verification.h"

namespace corvane::host
{
const std::vector<PictureHash>& ExpectedPictureHashes()
{
    static const std::vector<PictureHash> hashes = {
#include "verification_hashes.inc"
    };
    return hashes;
}
} // namespace corvane::host
