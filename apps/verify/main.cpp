// The program corvane_verify: what `corvane verify` does, for machines without the readers of volume files.

#include <cstdio>
#include <exception>

#include "host/verification.h"

int main()
{
    try
    {
        const int wrong =
            corvane::host::VerifyPictures([](const std::string& line) { std::printf("%s\n", line.c_str()); });
        std::printf(wrong ? "%d pictures are not what they must be\n" : "every picture is what it must be\n", wrong);
        if (std::fflush(stdout) != 0 || std::ferror(stdout))
        {
            std::fprintf(stderr, "corvane_verify: standard output cannot be written; is the disk full?\n");
            return 4;
        }
        return wrong ? 5 : 0;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "corvane_verify: %s\n", error.what());
        return 5;
    }
}
