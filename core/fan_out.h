#ifndef CORVANE_CORE_FAN_OUT_H
#define CORVANE_CORE_FAN_OUT_H

#include <cstdint>
#include <type_traits>

// The only files that know threads.
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

constexpr WorkerChunks ChunksOf(int64_t itemCount, int mostWorkers = kMaxWorkerThreads)
{
    const int64_t length = itemCount / mostWorkers + 1;
    return {length, itemCount > 0 ? int((itemCount + length - 1) / length) : 0};
}

// How many workers a fan-out has at most: kMaxWorkerThreads, unless a test that compares pictures has set another
// number from 1 up to it.
int MostWorkers() noexcept;
void LimitWorkers(int mostWorkers) noexcept;

// One worker's share. It stays in place until the worker has finished.
struct WorkerTask
{
    void (*run)(const void* body, int64_t first, int64_t end) noexcept;
    const void* body;
    int64_t first, end;
};

// The calls by which threads are had.
struct ThreadCalls
{
    void* (*start)(const WorkerTask& task) noexcept;          // null when the system will not give a thread
    void (*finish)(void* const* threads, int count) noexcept; // waits for all of them and gives them back
};
extern const ThreadCalls kSystemThreads; // the operating system's; in a file for each kind of system

// The calls that fan-outs use: the system's, unless a test that refuses threads has set others.
const ThreadCalls& UsedThreads() noexcept;
void UseThreads(const ThreadCalls& threads) noexcept;

// Runs every task and returns when all are done. A task that gets no thread runs on the caller's, so that nothing is
// ever left half done.
//   count  at most kMaxWorkerThreads
void RunTasks(const WorkerTask* tasks, int count, const ThreadCalls& threads) noexcept;

// Calls body(first, end) for contiguous, disjoint ranges that make up [0, itemCount), on at most kMaxWorkerThreads
// threads, and returns when all are done. The body must not throw and writes only what belongs to its own items.
template <class Body>
void FanOut(int64_t itemCount, const Body& body, const ThreadCalls& threads = UsedThreads()) noexcept
{
    static_assert(std::is_nothrow_invocable_v<const Body&, int64_t, int64_t>);
    const WorkerChunks chunks = ChunksOf(itemCount, MostWorkers());
    WorkerTask tasks[kMaxWorkerThreads];
    for (int chunk = 0; chunk < chunks.count; ++chunk)
    {
        const int64_t first = chunk * chunks.length;
        const int64_t end = first + chunks.length;
        tasks[chunk] = {[](const void* shared, int64_t from, int64_t to) noexcept
                        { (*static_cast<const Body*>(shared))(from, to); },
                        &body, first, end < itemCount ? end : itemCount};
    }
    RunTasks(tasks, chunks.count, threads);
}
} // namespace corvane::core

#endif
