#include "core/fan_out.h"
#include "corvane/Engine3D.h"
#include "plain_build.h"
#include "subjects.h"
#include "tests/render3d/scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <vector>

#include <pthread.h>

// How much of its stack a worker uses: it is given one that is painted, and what is no longer of that colour was used.
namespace corvane::tests
{
namespace
{
constexpr size_t kStackBytes = 256 << 10;
constexpr uint8_t kPaint = 0xA7;
size_t mostUsed = 0;

struct PaintedThread
{
    pthread_t thread;
    core::WorkerTask task;
    uint8_t* stack;
};

void* RunTask(void* argument)
{
    const core::WorkerTask& task = static_cast<PaintedThread*>(argument)->task;
    task.run(task.body, task.first, task.end);
    return nullptr;
}

// One after another: a thread is waited for before the next one is started.
void* StartPainted(const core::WorkerTask& task) noexcept
{
    PaintedThread painted = {{}, task, static_cast<uint8_t*>(std::aligned_alloc(4096, kStackBytes))};
    std::fill_n(painted.stack, kStackBytes, kPaint);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, painted.stack, kStackBytes);
    const bool started = pthread_create(&painted.thread, &attributes, RunTask, &painted) == 0;
    pthread_attr_destroy(&attributes);
    if (started)
    {
        pthread_join(painted.thread, nullptr);
        const uint8_t* const end = painted.stack + kStackBytes;
        const uint8_t* const lowest =
            std::find_if(painted.stack, painted.stack + kStackBytes, [](uint8_t byte) { return byte != kPaint; });
        mostUsed = std::max(mostUsed, size_t(end - lowest));
    }
    std::free(painted.stack);
    return started ? &mostUsed : nullptr;
}
void FinishNothing(void* const*, int) noexcept {}

constexpr core::ThreadCalls kPaintedThreads = {StartPainted, FinishNothing};

size_t StackOf(const std::function<void()>& call)
{
    mostUsed = 0;
    core::UseThreads(kPaintedThreads);
    call();
    core::UseThreads(core::kSystemThreads);
    return mostUsed;
}
} // namespace

TEST(WorkerStack, IsLessThan24Kilobytes)
{
    if (!kPlainBuild)
        GTEST_SKIP() << "a sanitizer's stack frames are larger";
    const ScratchFolder folder;
    Engine3D engine;
    // A thread's own data, which the system puts there, is all that a worker without work uses.
    const size_t empty = StackOf([] { core::FanOut(1, [](int64_t, int64_t) noexcept {}); });
    const size_t load = StackOf([&] { EXPECT_TRUE(Load(engine) && Furnish(engine)); });
    std::vector<uint32_t> pixels(100 * 100);
    std::vector<int16_t> values(pixels.size());
    const size_t volume = StackOf([&] { EXPECT_TRUE(engine.ImagingVR(100, 100, pixels.data(), false, nullptr, 0)); });
    const size_t endoscopy =
        StackOf([&] { EXPECT_TRUE(engine.ImagingVE(100, 100, pixels.data(), 90, false, nullptr)); });
    const size_t projection = StackOf([&] { EXPECT_TRUE(engine.ImagingAIP(100, 100, values.data(), false, nullptr)); });
    ASSERT_GT(empty, 0u);
    for (const size_t used : {load, volume, endoscopy, projection})
    {
        EXPECT_GT(used, empty);
        EXPECT_LT(used, empty + (24u << 10));
    }
}
} // namespace corvane::tests
