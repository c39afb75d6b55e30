#include "file_of_bytes.h"
#include "reader_checks.h"

#include <cstring>
#include <zlib.h>

using namespace corvane;

extern "C" size_t LLVMFuzzerMutate(uint8_t* bytes, size_t count, size_t largest);

namespace
{
constexpr size_t kLargestInflated = 1 << 16;
constexpr int kGzip = 15 + 16; // zlib's largest window; 16 stands for a gzip header

// The bytes of a gzip stream up to where it is damaged.
std::vector<uint8_t> Inflated(const uint8_t* bytes, size_t count)
{
    std::vector<uint8_t> inflated(kLargestInflated);
    z_stream stream = {};
    inflateInit2(&stream, kGzip);
    stream.next_in = const_cast<uint8_t*>(bytes);
    stream.avail_in = uInt(count);
    stream.next_out = inflated.data();
    stream.avail_out = uInt(inflated.size());
    inflate(&stream, Z_FINISH);
    inflated.resize(stream.total_out);
    inflateEnd(&stream);
    return inflated;
}

// The gzip stream of some bytes; empty when it would be larger than `largest`.
std::vector<uint8_t> Deflated(const std::vector<uint8_t>& bytes, size_t largest)
{
    std::vector<uint8_t> deflated(largest);
    z_stream stream = {};
    deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzip, 8, Z_DEFAULT_STRATEGY);
    stream.next_in = const_cast<uint8_t*>(bytes.data());
    stream.avail_in = uInt(bytes.size());
    stream.next_out = deflated.data();
    stream.avail_out = uInt(deflated.size());
    const bool whole = deflate(&stream, Z_FINISH) == Z_STREAM_END;
    deflated.resize(whole ? stream.total_out : 0);
    deflateEnd(&stream);
    return deflated;
}
} // namespace

// Three of four changes are made to what the stream holds, so that they get past its checksum.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* bytes, size_t count, size_t largest, unsigned int seed)
{
    if (seed % 4 != 0)
    {
        std::vector<uint8_t> inflated = Inflated(bytes, count);
        const size_t before = inflated.size();
        inflated.resize(kLargestInflated);
        inflated.resize(LLVMFuzzerMutate(inflated.data(), before, inflated.size()));
        const std::vector<uint8_t> deflated = Deflated(inflated, largest);
        if (!deflated.empty())
        {
            std::memcpy(bytes, deflated.data(), deflated.size());
            return deflated.size();
        }
    }
    return LLVMFuzzerMutate(bytes, count, largest);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count)
{
    fuzz::ReadAndPrepare(fuzz::FileOfBytes("volume.nii.gz", bytes, count));
    return 0;
}
