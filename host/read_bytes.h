#ifndef CORVANE_HOST_READ_BYTES_H
#define CORVANE_HOST_READ_BYTES_H

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace corvane::host
{
enum class Compression
{
    None,
    Deflate, // gzip or zlib, told apart by their first bytes
};

// The bytes of a file front to back, inflated where they are compressed. All functions throw Error for a file that
// cannot be read.
class ByteStream
{
public:
    // Starts `offset` bytes into the file; the compressed data begin there.
    ByteStream(const std::string& path, uint64_t offset, Compression compression);
    ~ByteStream();

    // Reads up to `count` bytes; fewer only at the end of the data.
    size_t ReadSome(void* out, size_t count);

    // Reads exactly `count` bytes. Throws Error when the data end before.
    void Read(void* out, size_t count);
    void Skip(uint64_t count);

    // Reads on past the end of compressed data, so that a damaged checksum is found. Call it after the last byte.
    void CheckEnd();

private:
    struct Inflater;

    std::string name_;
    std::ifstream file_;
    std::unique_ptr<Inflater> inflater_; // null: not compressed
};

// Throws Error when a file from `offset` on cannot hold `byteCount` bytes: a header that promises more than the file
// has is found before memory is taken.
void CheckFileHolds(const std::string& path, uint64_t offset, uint64_t byteCount, Compression compression);

// Throws Error when this machine cannot hold `byteCount` bytes of voxels: a short file can ask for very many.
void CheckMemoryHolds(const std::string& name, uint64_t byteCount);

// True when the file begins as gzip files do.
bool IsGzip(const std::string& path);

// Turns the byte order of `count` samples of `sampleSize` bytes.
void SwapBytes(void* samples, size_t count, size_t sampleSize);
} // namespace corvane::host

#endif
