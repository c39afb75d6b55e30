#include "fan_out.h"

#include <atomic>

namespace corvane::core
{
namespace
{
std::atomic<int> mostWorkers = kMaxWorkerThreads;
std::atomic<const ThreadCalls*> usedThreads = &kSystemThreads;
} // namespace

int MostWorkers() noexcept { return mostWorkers; }

void LimitWorkers(int most) noexcept { mostWorkers = most; }

const ThreadCalls& UsedThreads() noexcept { return *usedThreads; }

void UseThreads(const ThreadCalls& threads) noexcept { usedThreads = &threads; }

void RunTasks(const WorkerTask* tasks, int count, const ThreadCalls& threads) noexcept
{
    void* started[kMaxWorkerThreads];
    const WorkerTask* withoutThread[kMaxWorkerThreads];
    int startedCount = 0, withoutThreadCount = 0;
    for (int task = 0; task < count; ++task)
    {
        if (void* thread = threads.start(tasks[task]))
            started[startedCount++] = thread;
        else
            withoutThread[withoutThreadCount++] = &tasks[task];
    }
    for (int task = 0; task < withoutThreadCount; ++task)
        withoutThread[task]->run(withoutThread[task]->body, withoutThread[task]->first, withoutThread[task]->end);
    threads.finish(started, startedCount);
}
} // namespace corvane::core
