#ifndef CORVANE_HOST_RUN_APART_H
#define CORVANE_HOST_RUN_APART_H

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <utility>

namespace corvane::host
{
// Bytes that another process has filled.
class FilledBytes
{
public:
    FilledBytes(std::shared_ptr<const char> memory, size_t count) : memory_(std::move(memory)), count_(count) {}

    std::span<const char> Bytes() const { return {memory_.get(), count_}; }

private:
    std::shared_ptr<const char> memory_;
    size_t count_;
};

// Fills bytes in a process of its own. For libraries that damaged data can make end the program, run without end, lose
// memory or write messages: all that stays in that process, whose standard output and error go nowhere.
//   byteCount  how many bytes. The work may take 3 seconds of processor time, and one more for each million of them:
//              several times what the slowest, decoders and numbers as text, take
//   fill       does the work on bytes that are 0; false when it fails. Only the thread that calls this goes on over
//              there
//   returns    nothing when the work failed, threw anything but an Error, ended its process or took too long
// Throws the Error that the work throws, and Error (Computation) when no process can be started.
std::optional<FilledBytes> RunApart(size_t byteCount, const std::function<bool(char* bytes)>& fill);
} // namespace corvane::host

#endif
