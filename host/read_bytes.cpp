#include "read_bytes.h"

#include "error.h"
#include "read_text.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <zlib.h>
#if defined(__unix__)
#include <unistd.h>
#endif

namespace corvane::host
{
namespace
{
constexpr size_t kInputChunk = 1 << 16;
constexpr int kDetectHeader = 15 + 32;          // inflate tells gzip from zlib by itself
constexpr uint64_t kMaxDeflateRatio = 1032;     // zlib's documented bound
constexpr size_t kMaxInflate = size_t(1) << 30; // zlib counts in 32 bits

[[noreturn]] void Fail(const std::string& name, const std::string& what)
{
    throw Error(ErrorKind::Input, name + ": " + what);
}
} // namespace

struct ByteStream::Inflater
{
    z_stream stream = {};
    std::vector<unsigned char> input = std::vector<unsigned char>(kInputChunk);
    bool atEnd = false; // of all compressed data

    Inflater()
    {
        if (inflateInit2(&stream, kDetectHeader) != Z_OK)
            throw std::bad_alloc();
    }
    ~Inflater() { inflateEnd(&stream); }

    // More compressed bytes when all are used up; false at the end of the file.
    bool Refill(std::ifstream& file)
    {
        if (stream.avail_in > 0)
            return true;
        file.read(reinterpret_cast<char*>(input.data()), std::streamsize(input.size()));
        stream.next_in = input.data();
        stream.avail_in = uInt(file.gcount());
        return stream.avail_in > 0;
    }

    size_t Read(std::ifstream& file, const std::string& name, void* out, size_t count)
    {
        size_t done = 0;
        while (done < count && !atEnd)
        {
            if (!Refill(file))
                Fail(name, "the compressed data end too early; the file is cut off");
            const size_t wanted = std::min(count - done, kMaxInflate);
            stream.next_out = static_cast<unsigned char*>(out) + done;
            stream.avail_out = uInt(wanted);
            const int result = inflate(&stream, Z_NO_FLUSH);
            done += wanted - stream.avail_out;
            if (result == Z_STREAM_END)
                StartNextMember(file);
            else if (result != Z_OK)
                Fail(name,
                     std::string("the compressed data are damaged (") + (stream.msg ? stream.msg : "no detail") + ")");
        }
        return done;
    }

    // Compressed pieces may follow one another in one file; anything else behind a piece is ignored, as gzip does.
    void StartNextMember(std::ifstream& file)
    {
        atEnd = !Refill(file) || *stream.next_in != 0x1f || inflateReset(&stream) != Z_OK;
    }
};

ByteStream::ByteStream(const std::string& path, uint64_t offset, Compression compression)
    : name_(FileNameOf(path)), file_(path, std::ios::binary)
{
    if (!file_ || !file_.seekg(std::streamoff(offset)))
        Fail(name_, "cannot be opened; check the path and the permissions");
    if (compression == Compression::Deflate)
        inflater_ = std::make_unique<Inflater>();
}

ByteStream::~ByteStream() = default;

size_t ByteStream::ReadSome(void* out, size_t count)
{
    if (inflater_)
        return inflater_->Read(file_, name_, out, count);
    file_.read(static_cast<char*>(out), std::streamsize(count));
    return size_t(file_.gcount());
}

void ByteStream::Read(void* out, size_t count)
{
    const size_t got = ReadSome(out, count);
    if (got < count)
        Fail(name_, "the data end " + std::to_string(count - got) + " bytes too early; the file is cut off");
}

void ByteStream::Skip(uint64_t count)
{
    std::array<char, 4096> ignored;
    while (count > 0)
    {
        const size_t part = size_t(std::min<uint64_t>(count, ignored.size()));
        Read(ignored.data(), part);
        count -= part;
    }
}

void ByteStream::CheckEnd()
{
    char ignored;
    if (inflater_)
        ReadSome(&ignored, 1);
}

void CheckFileHolds(const std::string& path, uint64_t offset, uint64_t byteCount, Compression compression)
{
    std::error_code error;
    const uint64_t fileSize = std::filesystem::file_size(path, error);
    if (error)
        Fail(FileNameOf(path), "cannot be opened; check the path and the permissions");
    const uint64_t available = fileSize > offset ? fileSize - offset : 0;
    const uint64_t needed = compression == Compression::None ? byteCount : byteCount / kMaxDeflateRatio;
    if (available < needed)
        Fail(FileNameOf(path), "the header asks for " + std::to_string(byteCount) + " bytes of voxels, but only " +
                                   std::to_string(available) +
                                   (compression == Compression::None ? " bytes" : " compressed bytes") +
                                   " are there; the file is cut off or its header is wrong");
}

void CheckMemoryHolds(const std::string& name, uint64_t byteCount)
{
#if defined(__unix__)
    const uint64_t memory = uint64_t(sysconf(_SC_PHYS_PAGES)) * uint64_t(sysconf(_SC_PAGESIZE));
    if (byteCount > memory)
        Fail(name, "its voxels need " + std::to_string(byteCount) + " bytes, this machine has " +
                       std::to_string(memory) + "; crop or resample the volume first");
#else
    (void)name, (void)byteCount; // running out is found when memory is taken
#endif
}

bool IsGzip(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return file.get() == 0x1f && file.get() == 0x8b;
}

void SwapBytes(void* samples, size_t count, size_t sampleSize)
{
    char* sample = static_cast<char*>(samples);
    for (size_t i = 0; i < count; ++i, sample += sampleSize)
        std::reverse(sample, sample + sampleSize);
}
} // namespace corvane::host
