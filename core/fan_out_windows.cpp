#include "fan_out.h"

#include <windows.h>

// Threads of Windows.
namespace corvane::core
{
namespace
{
static_assert(kMaxWorkerThreads <= MAXIMUM_WAIT_OBJECTS, "one call waits for all");

DWORD WINAPI Run(void* argument) noexcept
{
    const WorkerTask& task = *static_cast<const WorkerTask*>(argument);
    task.run(task.body, task.first, task.end);
    return 0;
}

void* Start(const WorkerTask& task) noexcept
{
    DWORD identifier;
    return CreateThread(nullptr, 0, Run, const_cast<WorkerTask*>(&task), 0, &identifier);
}

void Finish(void* const* threads, int count) noexcept
{
    WaitForMultipleObjects(DWORD(count), threads, TRUE, INFINITE);
    for (int thread = 0; thread < count; ++thread)
        CloseHandle(threads[thread]);
}
} // namespace

const ThreadCalls kSystemThreads = {Start, Finish};
} // namespace corvane::core
