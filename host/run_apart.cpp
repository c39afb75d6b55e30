#include "run_apart.h"

#include "error.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <new>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvane::host
{
namespace
{
// Memory that this process shares with those that it starts from then on; zeroed.
std::shared_ptr<char> SharedMemory(size_t byteCount)
{
    void* const memory = mmap(nullptr, byteCount, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc();
    return {static_cast<char*>(memory), [=](char* shared) { munmap(shared, byteCount); }};
}

// What the program does on its way out, when it is interrupted or crashes, is not for this process to do.
void BecomeQuiet(rlim_t seconds)
{
    for (int number : {SIGINT, SIGTERM, SIGHUP, SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGXCPU})
        std::signal(number, SIG_DFL);
    const rlimit time = {seconds, seconds}, none = {0, 0};
    setrlimit(RLIMIT_CPU, &time);
    setrlimit(RLIMIT_CORE, &none);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0)
        return;
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
}

// How the work went; before the bytes in the memory that both share.
struct alignas(64) Result
{
    bool done, hasError;
    ErrorKind kind;
    char message[4000]; // an Error's are shorter
};

[[noreturn]] void Fill(char* bytes, Result& result, rlim_t seconds, const std::function<bool(char*)>& fill)
{
    BecomeQuiet(seconds);
    try
    {
        result.done = fill(bytes);
    }
    catch (const Error& error)
    {
        result.kind = error.Kind();
        std::strncpy(result.message, error.what(), sizeof(result.message) - 1);
        result.hasError = true;
    }
    catch (...)
    {
    }
    _exit(0);
}
} // namespace

std::optional<FilledBytes> RunApart(size_t byteCount, const std::function<bool(char* bytes)>& fill)
{
    constexpr size_t kSlowest = 1 << 20; // bytes a second
    const std::shared_ptr<char> shared = SharedMemory(sizeof(Result) + byteCount);
    Result& result = *new (shared.get()) Result();
    char* const bytes = shared.get() + sizeof(Result);
    const pid_t process = fork();
    if (process < 0)
        throw Error(ErrorKind::Computation, "no process can be started; are too many running?");
    if (process == 0)
        Fill(bytes, result, 3 + byteCount / kSlowest, fill);
    while (waitpid(process, nullptr, 0) < 0 && errno == EINTR)
    {
    }
    if (result.hasError)
        throw Error(result.kind, result.message);
    if (!result.done)
        return std::nullopt;
    return FilledBytes({shared, bytes}, byteCount);
}
} // namespace corvane::host
