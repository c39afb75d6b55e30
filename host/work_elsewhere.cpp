#include "work_elsewhere.h"

#include <cstdlib>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "signals_held.h"

namespace corvane::host
{
namespace
{
// Makes a folder in `parent` (an absolute path), enters it and takes it away at once: nothing can be put there, and
// nothing stays when the program is ended. False when it cannot be made.
bool EnterVanishedFolder(const std::filesystem::path& parent)
{
    if (parent.empty())
        return false;
    const SignalsHeld held;
    std::string pattern = (parent / "corvane_XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        return false;
    const bool entered = chdir(pattern.c_str()) == 0;
    rmdir(pattern.c_str());
    return entered;
}
} // namespace

WorkElsewhere::WorkElsewhere() : home_(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (home_ < 0)
        return;             // there would be no way back
    std::error_code failed; // leaves an empty path
    away_ = EnterVanishedFolder(std::filesystem::temp_directory_path(failed)) ||
            EnterVanishedFolder(std::filesystem::current_path(failed));
}

WorkElsewhere::~WorkElsewhere()
{
    if (away_) [[maybe_unused]]
        const bool back = fchdir(home_) == 0; // else no relative name is found any more; files say so
    if (home_ >= 0)
        close(home_);
}
} // namespace corvane::host
