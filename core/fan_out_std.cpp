#include "fan_out.h"

#include <memory>
#include <thread>

// Threads of every system but Windows: those of the standard library.
namespace corvane::core
{
namespace
{
void* Start(const WorkerTask& task) noexcept
{
    try
    {
        return new std::thread(task.run, task.body, task.first, task.end);
    }
    catch (...)
    {
        return nullptr;
    }
}

void Finish(void* const* threads, int count) noexcept
{
    for (int index = 0; index < count; ++index)
    {
        const std::unique_ptr<std::thread> thread(static_cast<std::thread*>(threads[index]));
        thread->join();
    }
}
} // namespace

const ThreadCalls kSystemThreads = {Start, Finish};
} // namespace corvane::core
