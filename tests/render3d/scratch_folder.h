#ifndef CORVANE_TESTS_RENDER3D_SCRATCH_FOLDER_H
#define CORVANE_TESTS_RENDER3D_SCRATCH_FOLDER_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace corvane::tests
{
// A working folder of its own for as long as a test needs one: the renderer leaves a diagnostic file behind. Its name
// is a path on Windows, from where it is removed, and a plain name elsewhere.
class ScratchFolder
{
public:
    ScratchFolder() : before_(std::filesystem::current_path())
    {
        for (int number = 0; path_.empty(); ++number)
        {
            const std::filesystem::path path =
                std::filesystem::temp_directory_path() / ("corvane_render3d_" + std::to_string(number));
            if (std::filesystem::create_directory(path))
                path_ = path;
        }
        std::filesystem::current_path(path_);
        RemoveDump();
    }
    ~ScratchFolder()
    {
        RemoveDump();
        std::filesystem::current_path(before_);
        std::filesystem::remove_all(path_);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    // The bytes of the diagnostic file.
    static std::string Dump()
    {
        std::ifstream file(kDumpName, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static constexpr char kDumpName[] = "D:\\mark.data";

    // Whether the drive of the diagnostic file is there.
    static bool CanDump()
    {
#if defined(_WIN32)
        std::error_code unreadable;
        return std::filesystem::is_directory("D:\\", unreadable);
#else
        return true;
#endif
    }

private:
    static void RemoveDump()
    {
        std::error_code missing;
        std::filesystem::remove_all(kDumpName, missing);
    }

    std::filesystem::path before_, path_;
};
} // namespace corvane::tests

#endif
