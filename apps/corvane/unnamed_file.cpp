#include "unnamed_file.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

#include "host/error.h"
#include "host/signals_held.h"

namespace corvane::app
{
UnnamedFile::UnnamedFile()
{
    std::error_code failed;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(failed);
    const host::SignalsHeld held;
    std::string name = (folder / "corvane_XXXXXX").string();
    descriptor_ = failed ? -1 : mkostemp(name.data(), O_CLOEXEC);
    if (descriptor_ < 0)
        throw host::Error(host::ErrorKind::Output, "no temporary file can be made (" +
                                                       (failed ? failed.message() : std::string(std::strerror(errno))) +
                                                       "); set TMPDIR to a folder that can be written");
    unlink(name.c_str());
}

UnnamedFile::~UnnamedFile() { close(descriptor_); }

std::string UnnamedFile::Bytes() const
{
    std::string bytes;
    char buffer[1 << 16];
    for (off_t at = 0;;)
    {
        const ssize_t count = pread(descriptor_, buffer, sizeof buffer, at);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return bytes;
        bytes.append(buffer, size_t(count));
        at += count;
    }
}
} // namespace corvane::app
