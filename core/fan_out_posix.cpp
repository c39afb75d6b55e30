#include "fan_out.h"

#include <cerrno>
#include <cstring>

#include <pthread.h>

// Threads of every system but Windows: those of POSIX.
namespace corvane::core
{
namespace
{
// Many times what a worker uses. Of stacks of this size the C library keeps enough for the next fan-out; of those of
// the usual size it keeps few, and asks the system for the others again.
constexpr size_t kStackBytes = 512 << 10;

static_assert(sizeof(pthread_t) <= sizeof(void*), "a thread goes where a pointer goes");

void* Run(void* argument) noexcept
{
    const WorkerTask& task = *static_cast<const WorkerTask*>(argument);
    task.run(task.body, task.first, task.end);
    return nullptr;
}

int StartOnSmallStack(pthread_t& thread, void* task) noexcept
{
    pthread_attr_t attributes;
    if (const int problem = pthread_attr_init(&attributes))
        return problem;
    int problem = pthread_attr_setstacksize(&attributes, kStackBytes);
    if (!problem)
        problem = pthread_create(&thread, &attributes, Run, task);
    pthread_attr_destroy(&attributes);
    return problem;
}

void* Start(const WorkerTask& task) noexcept
{
    pthread_t thread;
    void* const argument = const_cast<WorkerTask*>(&task);
    int problem = StartOnSmallStack(thread, argument);
    if (problem == EINVAL) // the variables that each thread of this program has of its own take more
        problem = pthread_create(&thread, nullptr, Run, argument);
    if (problem)
        return nullptr;
    void* handle = nullptr;
    std::memcpy(&handle, &thread, sizeof thread);
    return handle;
}

void Finish(void* const* threads, int count) noexcept
{
    for (int index = 0; index < count; ++index)
    {
        pthread_t thread;
        std::memcpy(&thread, &threads[index], sizeof thread);
        pthread_join(thread, nullptr);
    }
}
} // namespace

const ThreadCalls kSystemThreads = {Start, Finish};
} // namespace corvane::core
