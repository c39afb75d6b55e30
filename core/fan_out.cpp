#include "fan_out.h"

#include <thread>

namespace corvane::core
{
namespace
{
class ThreadWorker : public Worker
{
public:
    explicit ThreadWorker(const WorkerTask& task) : thread_(task.run, task.body, task.first, task.end) {}
    ~ThreadWorker() override { thread_.join(); }

private:
    std::thread thread_;
};
} // namespace

std::unique_ptr<Worker> StartThread(const WorkerTask& task) noexcept
{
    try
    {
        return std::make_unique<ThreadWorker>(task);
    }
    catch (...)
    {
        return nullptr;
    }
}

void RunTasks(const WorkerTask* tasks, int count, StartWorker start) noexcept
{
    std::unique_ptr<Worker> workers[kMaxWorkerThreads];
    for (int task = 0; task < count; ++task)
        workers[task] = start(tasks[task]);
    for (int task = 0; task < count; ++task)
        if (!workers[task])
            tasks[task].run(tasks[task].body, tasks[task].first, tasks[task].end);
}
} // namespace corvane::core
