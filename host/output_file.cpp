#include "output_file.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "error.h"

namespace corvane::host
{
namespace
{
namespace fs = std::filesystem;

// Holds back the signals by which users and systems end a program, as long as it lives.
class SignalsHeld
{
public:
    SignalsHeld()
    {
        sigset_t ending;
        sigemptyset(&ending);
        for (int signal : {SIGINT, SIGTERM, SIGHUP})
            sigaddset(&ending, signal);
        pthread_sigmask(SIG_BLOCK, &ending, &before_);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
    sigset_t before_;
};

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
    if (fs::is_directory(path))
        Refuse(path, "is a folder; give a file name");
    std::error_code ignored;
    if (!replace && fs::exists(fs::symlink_status(path, ignored)))
        Refuse(path, "exists already; add --force to replace it");
    const fs::path folder = fs::path(path).parent_path();
    if (!folder.empty() && !fs::is_directory(folder, ignored))
        Refuse(path, "its folder does not exist; create it first");
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
    const std::string partial = path + "." + std::to_string(getpid()) + ".part";
    const int descriptor = open(partial.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0)
        Refuse(path, std::string("cannot be written: ") + std::strerror(errno));
    bool done = WriteAll(descriptor, bytes);
    int problem = errno;
    if (close(descriptor) != 0 && done)
    {
        done = false;
        problem = errno;
    }
    if (done && rename(partial.c_str(), path.c_str()) != 0)
    {
        done = false;
        problem = errno;
    }
    if (!done)
    {
        unlink(partial.c_str());
        Refuse(path, std::string("cannot be written: ") + std::strerror(problem));
    }
}
} // namespace corvane::host
