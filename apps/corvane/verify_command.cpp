#include "verify_command.h"

#include <string>
#include <vector>

#include "host/error.h"
#include "host/quiet_output.h"
#include "host/verification.h"
#include "host/work_elsewhere.h"
#include "report.h"

namespace corvane::app
{
namespace
{
void RunVerify()
{
    std::vector<std::string> lines;
    int wrong;
    {
        const host::QuietOutput quiet;
        const host::WorkElsewhere elsewhere;
        wrong = host::VerifyPictures([&](const std::string& line) { lines.push_back(line); });
    }
    for (const std::string& line : lines)
        PrintResult(line);
    if (wrong > 0)
        throw host::Error(host::ErrorKind::Computation,
                          std::to_string(wrong) + " of " + std::to_string(lines.size()) +
                              " pictures are not what they are on other machines; please report the lines above");
    PrintResult("all " + std::to_string(lines.size()) + " pictures are what they are on every machine");
}
} // namespace

void AddVerifyCommand(CLI::App& program)
{
    CLI::App* const verify =
        program.add_subcommand("verify", "Check that this machine makes the same pictures as every other");
    verify->footer(
        std::string("Makes pictures of two computed phantoms through every operation of the library and\n"
                    "compares the hash of each picture's bytes with the one that belongs to this version.\n\n") +
        kExitCodes);
    verify->callback(RunVerify);
}
} // namespace corvane::app
