#include "file_of_bytes.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace corvane::fuzz
{
namespace
{
namespace fs = std::filesystem;

class ScratchFolder
{
public:
    ScratchFolder()
    {
        const fs::path memory = "/dev/shm";
        path_ = (fs::is_directory(memory) ? memory : fs::temp_directory_path()) / ("fuzz_" + std::to_string(getpid()));
        fs::create_directories(path_);
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const fs::path& Path() const { return path_; }

private:
    fs::path path_;
};
} // namespace

std::string FileOfBytes(const std::string& name, const uint8_t* bytes, size_t count)
{
    static const ScratchFolder folder;
    const fs::path path = folder.Path() / name;
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes), std::streamsize(count));
    file.close();
    if (!file)
    {
        std::fprintf(stderr, "%s cannot be written\n", path.c_str());
        std::abort();
    }
    return path.string();
}

std::string FileOfBytes(const std::string& name, std::string_view bytes)
{
    return FileOfBytes(name, reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}
} // namespace corvane::fuzz
