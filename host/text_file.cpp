#include "text_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "error.h"

namespace corvane::host
{
namespace
{
namespace fs = std::filesystem;

constexpr uintmax_t kLargestFile = uintmax_t(16) << 20; // bytes

[[noreturn]] void Refuse(const std::string& path, const std::string& what)
{
    throw Error(ErrorKind::Input, path + ": " + what);
}
} // namespace

void RefuseUnlessFile(const std::string& path)
{
    std::error_code problem;
    const fs::file_status status = fs::status(path, problem);
    if (fs::is_directory(status))
        Refuse(path, "cannot be read, it is a folder; give a file");
    if (fs::exists(status) && !fs::is_regular_file(status))
        Refuse(path, "cannot be read, it is a pipe or a device; copy what it gives into a file first");
}

std::string TextOfFile(const std::string& path, const std::string& what)
{
    RefuseUnlessFile(path);
    std::ifstream file(path, std::ios::binary);
    if (!file)
        Refuse(path, std::string("cannot be read (") + std::strerror(errno) + "); give " + what);
    std::error_code problem;
    if (fs::file_size(path, problem) > kLargestFile || problem)
        Refuse(path, "is too large for " + what);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (file.bad())
        Refuse(path, "cannot be read to its end; is the disk damaged?");
    return text;
}
} // namespace corvane::host
