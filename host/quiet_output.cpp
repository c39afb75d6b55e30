#include "quiet_output.h"

#include <cstdio>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

namespace corvane::host
{
QuietOutput::QuietOutput()
{
    std::cout.flush();
    std::fflush(stdout);
    kept_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (kept_ >= 0 && nowhere >= 0)
        dup2(nowhere, STDOUT_FILENO);
    if (nowhere >= 0)
        close(nowhere);
}

QuietOutput::~QuietOutput()
{
    std::fflush(stdout);
    if (kept_ < 0)
        return;
    dup2(kept_, STDOUT_FILENO);
    close(kept_);
}
} // namespace corvane::host
