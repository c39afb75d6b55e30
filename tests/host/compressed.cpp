#include "compressed.h"

#include <gtest/gtest.h>
#include <zlib.h>

namespace corvane::host
{
namespace
{
std::string Compressed(const std::string& bytes, int windowBits)
{
    z_stream stream = {};
    deflateInit2(&stream, 6, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY);
    std::string out(deflateBound(&stream, bytes.size()) + 64, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = uInt(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = uInt(out.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}
} // namespace

std::string Gzipped(const std::string& bytes) { return Compressed(bytes, 15 + 16); }
std::string Deflated(const std::string& bytes) { return Compressed(bytes, 15); }
} // namespace corvane::host
