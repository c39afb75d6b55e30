#include "process.h"

#include <csignal>
#include <initializer_list>

#include <fcntl.h>
#include <unistd.h>

namespace corvane::app
{
namespace
{
void HoldStandardStreams()
{
    for (int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) < 0)
            // Opened the wrong way round, so that use of the stream still fails. The lowest free number is its own.
            [[maybe_unused]]
            const int held = open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

// Calls only what a signal may interrupt. The handler is gone when it runs, so the signal then ends the process.
void SayAndEnd(int signal)
{
    constexpr char kMessage[] = "corvane: interrupted; files that were complete by now stay\n";
    [[maybe_unused]] const ssize_t ignored = write(STDERR_FILENO, kMessage, sizeof kMessage - 1);
    raise(signal);
}
} // namespace

void PrepareProcess()
{
    HoldStandardStreams();
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    struct sigaction ending = {};
    ending.sa_handler = SayAndEnd;
    ending.sa_flags = int(SA_RESETHAND | SA_NODEFER);
    for (int signal : {SIGINT, SIGTERM, SIGHUP})
    {
        struct sigaction before = {};
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            sigaction(signal, &ending, nullptr);
    }
}
} // namespace corvane::app
