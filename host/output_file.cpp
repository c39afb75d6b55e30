#include "output_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "error.h"
#include "signals_held.h"

namespace corvane::host
{
namespace
{
namespace fs = std::filesystem;

constexpr char kStandsThere[] = "exists already; add --force to replace it";

[[noreturn]] void Refuse(const std::string& path, const std::string& what)
{
    throw Error(ErrorKind::Output, path + ": " + what);
}

// Writes all bytes; what went wrong is left in errno.
bool WriteAll(int descriptor, const std::string& bytes)
{
    size_t done = 0;
    while (done < bytes.size())
    {
        const ssize_t count = write(descriptor, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        done += size_t(count);
    }
    return true;
}

// The descriptor of a new file beside the target, whose name is put into `partial`; below 0: none, see errno. A name
// may be taken by what a run left that was killed.
int OpenBeside(const std::string& path, std::string& partial)
{
    int descriptor = -1;
    for (int attempt = 0; attempt < 100; ++attempt)
    {
        partial = path + "." + std::to_string(getpid()) + (attempt ? "-" + std::to_string(attempt) : "") + ".part";
        descriptor = open(partial.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor >= 0 || errno != EEXIST)
            break;
    }
    return descriptor;
}

// Gives a whole file its name; what went wrong is left in errno.
bool MoveInto(const std::string& partial, const std::string& path, bool replace)
{
    // A link never takes the place of a file that has come to stand there in the meantime. Where the disk knows no
    // links there is only the look that was taken before.
    if (!replace && link(partial.c_str(), path.c_str()) == 0)
        return unlink(partial.c_str()) == 0;
    return (replace || errno != EEXIST) && rename(partial.c_str(), path.c_str()) == 0;
}

// Throws Error (Output) for a folder in which nothing can be made.
void CheckFolder(const std::string& path, const std::string& folder)
{
    std::error_code problem;
    if (!fs::is_directory(folder, problem) && problem != std::errc::permission_denied)
        Refuse(path, "its folder does not exist; create it first");
    if (access(folder.c_str(), W_OK | X_OK) != 0)
        Refuse(path, std::string("its folder cannot be written: ") + std::strerror(errno));
}

// A device or a pipe: there is nothing to replace.
bool IsStream(const std::string& path)
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

void WriteToStream(const std::string& path, const std::string& bytes)
{
    const bool standardOutput = path == "-";
    const int descriptor = standardOutput ? STDOUT_FILENO : open(path.c_str(), O_WRONLY | O_CLOEXEC);
    const bool written = descriptor >= 0 && WriteAll(descriptor, bytes);
    const int problem = errno;
    if (descriptor >= 0 && !standardOutput)
        close(descriptor);
    if (!written)
        Refuse(standardOutput ? "standard output" : path, std::string("cannot be written: ") + std::strerror(problem));
}
} // namespace

void CheckOutput(const std::string& path, bool replace)
{
    if (path == "-" || IsStream(path))
        return;
    if (path.empty())
        throw Error(ErrorKind::Output, "the name of the output file is empty");
    std::error_code problem;
    const fs::file_status status = fs::symlink_status(path, problem);
    if (fs::is_directory(fs::status(path, problem)))
        Refuse(path, "is a folder; give a file name");
    if (!replace && fs::exists(status))
        Refuse(path, kStandsThere);
    const fs::path folder = fs::path(path).parent_path();
    CheckFolder(path, folder.empty() ? "." : folder.string());
}

void WriteOutput(const std::string& path, const std::string& bytes, bool replace)
{
    CheckOutput(path, replace);
    if (path == "-" || IsStream(path))
    {
        WriteToStream(path, bytes);
        return;
    }
    const SignalsHeld held;
    std::string partial;
    const int descriptor = OpenBeside(path, partial);
    if (descriptor < 0)
        Refuse(path, std::string("cannot be written: ") + std::strerror(errno));
    bool done = WriteAll(descriptor, bytes);
    int problem = errno;
    if (close(descriptor) != 0 && done)
    {
        done = false;
        problem = errno;
    }
    if (done && !MoveInto(partial, path, replace))
    {
        done = false;
        problem = errno;
    }
    if (!done)
    {
        unlink(partial.c_str());
        Refuse(path, problem == EEXIST ? kStandsThere : std::string("cannot be written: ") + std::strerror(problem));
    }
}
} // namespace corvane::host
