#ifndef CORVANE_CORE_FAN_OUT_H
#define CORVANE_CORE_FAN_OUT_H

#include <cstdint>
#include <memory>
#include <type_traits>

// The only file that knows threads.
namespace corvane::core
{
constexpr int kMaxWorkerThreads = 48;

// How work items are dealt out: contiguous chunks, one worker each. The processor count plays no part, so neither
// does the machine.
struct WorkerChunks
{
    int64_t length; // items of a chunk; the last one may hold fewer
    int count;      // chunks, at most kMaxWorkerThreads
};

constexpr WorkerChunks ChunksOf(int64_t itemCount)
{
    const int64_t length = itemCount / kMaxWorkerThreads + 1;
    return {length, itemCount > 0 ? int((itemCount + length - 1) / length) : 0};
}

// One worker's share, for whoever starts workers.
struct WorkerTask
{
    void (*run)(const void* body, int64_t first, int64_t end) noexcept;
    const void* body;
    int64_t first, end;
};

// A worker on its own thread; destroying it waits for the thread.
class Worker
{
public:
    virtual ~Worker() = default;
};

// Starts a worker, or returns nothing when the system will not give a thread.
using StartWorker = std::unique_ptr<Worker> (*)(const WorkerTask& task) noexcept;
std::unique_ptr<Worker> StartThread(const WorkerTask& task) noexcept;

// Runs every task and returns when all are done. A task whose worker cannot be started runs on the caller's thread,
// so that nothing is ever left half done.
void RunTasks(const WorkerTask* tasks, int count, StartWorker start) noexcept;

// Calls body(first, end) for contiguous, disjoint ranges that make up [0, itemCount), on at most kMaxWorkerThreads
// threads, and returns when all are done. The body must not throw and writes only what belongs to its own items.
template <class Body>
void FanOut(int64_t itemCount, const Body& body, StartWorker start = StartThread) noexcept
{
    static_assert(std::is_nothrow_invocable_v<const Body&, int64_t, int64_t>);
    const WorkerChunks chunks = ChunksOf(itemCount);
    WorkerTask tasks[kMaxWorkerThreads];
    for (int chunk = 0; chunk < chunks.count; ++chunk)
    {
        const int64_t first = chunk * chunks.length;
        const int64_t end = first + chunks.length;
        tasks[chunk] = {[](const void* shared, int64_t from, int64_t to) noexcept
                        { (*static_cast<const Body*>(shared))(from, to); },
                        &body, first, end < itemCount ? end : itemCount};
    }
    RunTasks(tasks, chunks.count, start);
}
} // namespace corvane::core

#endif
