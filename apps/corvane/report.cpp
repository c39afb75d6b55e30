#include "report.h"

#include <cstdio>
#include <iostream>

#include <unistd.h>

#include "host/error.h"
#include "host/read_text.h"

namespace corvane::app
{
const char* const kExitCodes = "Exit codes:\n"
                               "  0  done\n"
                               "  2  the command line is wrong\n"
                               "  3  the input cannot be read, or cannot be shown truthfully\n"
                               "  4  the output cannot be written, or stands there already (see --force)\n"
                               "  5  the computation was refused or ran out of memory\n"
                               "An interrupted run ends by its signal (in a shell: 130 after Ctrl-C).\n"
                               "Files are written whole or not at all, whatever happens.\n";

void PrintResult(const std::string& text) { std::cout << text << '\n'; }

void PrintJson(const Json& json)
{
    // Bytes that are no UTF-8, as old DICOM texts have them, become replacement characters.
    std::cout << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

void PrintMessage(const std::string& text) { std::cerr << "corvane: " << host::OneLine(text) << '\n'; }

void PrintWarnings(const std::vector<std::string>& warnings)
{
    for (const std::string& warning : warnings)
        PrintMessage("warning: " + warning);
}

void FinishResults()
{
    if (!std::cout.flush())
        throw host::Error(host::ErrorKind::Output, "standard output cannot be written; is the disk full?");
}

Progress::Progress(int total) : total_(total), shown_(total > 1 && isatty(STDERR_FILENO)) {}

Progress::~Progress()
{
    if (shown_)
        std::fprintf(stderr, "\r%40s\r", "");
}

void Progress::Show(int done)
{
    if (shown_)
        std::fprintf(stderr, "\r%d of %d pictures", done, total_);
}

host::Vec3 TurnedIf(bool ras, host::Vec3 lps) { return ras ? host::Vec3{-lps.x, -lps.y, lps.z} : lps; }

Json JsonOf(host::Vec3 vector)
{
    // Zero without a sign: -0.0 is no direction of its own.
    return Json::array({vector.x + 0.0, vector.y + 0.0, vector.z + 0.0});
}
} // namespace corvane::app
