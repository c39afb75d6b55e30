// The program corvane: pictures of medical image volumes from the command line.

#include <new>

#include <CLI/CLI.hpp>

#include "cut_command.h"
#include "host/error.h"
#include "info_command.h"
#include "mpr_command.h"
#include "process.h"
#include "projection_command.h"
#include "report.h"
#include "ve_command.h"
#include "verify_command.h"
#include "vr_command.h"

namespace
{
int Run(int argumentCount, char** arguments)
{
    using namespace corvane;
    CLI::App program("Pictures from medical image volumes", "corvane");
    program.set_version_flag("--version", "corvane " CORVANE_VERSION, "print the version");
    program.set_help_flag("-h,--help", "print this help");
    program.require_subcommand(1);
    program.footer(std::string("Examples:\n"
                               "  corvane info study/\n"
                               "  corvane mpr study/ --window lung --output pictures/\n"
                               "  corvane mip study/ --plane coronal --thickness 20 --output mip.png\n"
                               "  corvane vr study/ --preset bone --output bone.png\n"
                               "  corvane mpr --help\n\n") +
                   app::kExitCodes);
    app::AddInfoCommand(program);
    app::AddMprCommand(program);
    app::AddProjectionCommands(program);
    app::AddVrCommand(program);
    app::AddVeCommand(program);
    app::AddVerifyCommand(program);
    app::AddCutCommand(program);
    try
    {
        program.parse(argumentCount, arguments);
        app::FinishResults();
        return 0;
    }
    catch (const CLI::ParseError& error)
    {
        if (error.get_exit_code() == 0) // --help, --version
        {
            program.exit(error);
            app::FinishResults();
            return 0;
        }
        const auto used = program.get_subcommands();
        if (used.empty() && argumentCount > 1 && arguments[1][0] != '-')
            throw host::Error(host::ErrorKind::Usage,
                              std::string("there is no command '") + arguments[1] + "'; see corvane --help");
        const std::string name = used.empty() ? "corvane" : "corvane " + used.front()->get_name();
        app::PrintMessage(std::string(error.what()) + "; see " + name + " --help");
        return int(host::ErrorKind::Usage);
    }
}
} // namespace

int main(int argumentCount, char** arguments)
{
    using corvane::host::ErrorKind;
    corvane::app::PrepareProcess();
    try
    {
        return Run(argumentCount, arguments);
    }
    catch (const corvane::host::Error& error)
    {
        corvane::app::PrintMessage(error.what());
        return int(error.Kind());
    }
    catch (const std::bad_alloc&)
    {
        corvane::app::PrintMessage("out of memory; choose a smaller volume or larger pixels");
    }
    catch (const std::exception& error)
    {
        corvane::app::PrintMessage(error.what());
    }
    return int(ErrorKind::Computation);
}
