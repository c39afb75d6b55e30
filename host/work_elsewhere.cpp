#include "work_elsewhere.h"

#include <cstdlib>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

namespace corvane::host
{
WorkElsewhere::WorkElsewhere() : home_(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    std::error_code failed;
    const std::filesystem::path temporary = std::filesystem::temp_directory_path(failed);
    if (failed || home_ < 0)
        return;
    std::string pattern = (temporary / "corvane_XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        return;
    if (chdir(pattern.c_str()) == 0)
        folder_ = pattern;
    else
        rmdir(pattern.c_str());
}

WorkElsewhere::~WorkElsewhere()
{
    if (!folder_.empty() && fchdir(home_) == 0)
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    if (home_ >= 0)
        close(home_);
}
} // namespace corvane::host
