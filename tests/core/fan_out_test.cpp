#include "core/fan_out.h"

#include "failing_allocator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace corvane::core
{
namespace
{
struct Range
{
    int64_t first, end;
    bool operator==(const Range&) const = default;
};

// The ranges that a fan-out asks for, in order of their first item.
std::vector<Range> RangesOf(int64_t itemCount, const ThreadCalls& threads = kSystemThreads)
{
    std::mutex mutex;
    std::vector<Range> ranges;
    FanOut(
        itemCount,
        [&](int64_t first, int64_t end) noexcept
        {
            const std::lock_guard lock(mutex);
            ranges.push_back({first, end});
        },
        threads);
    std::sort(ranges.begin(), ranges.end(), [](const Range& a, const Range& b) { return a.first < b.first; });
    return ranges;
}

// The rule, written out: one chunk after another of total / 48 + 1 items, the last one cut off at the total.
std::vector<Range> ExpectedRanges(int64_t total)
{
    std::vector<Range> ranges;
    const int64_t chunk = total / 48 + 1;
    for (int64_t start = 0; start < total; start += chunk)
        ranges.push_back({start, std::min(start + chunk, total)});
    return ranges;
}

// What a thread that is none is called by.
char noThread;

// Runs its task at once, on the caller's thread.
void* RunAtOnce(const WorkerTask& task) noexcept
{
    task.run(task.body, task.first, task.end);
    return &noThread;
}
void FinishNothing(void* const*, int) noexcept {}
constexpr ThreadCalls kAtOnce = {RunAtOnce, FinishNothing};

// Runs its tasks as late as they can be, the last one first.
void* Note(const WorkerTask& task) noexcept { return const_cast<WorkerTask*>(&task); }
void RunNoted(void* const* threads, int count) noexcept
{
    while (count-- > 0)
    {
        const WorkerTask& task = *static_cast<const WorkerTask*>(threads[count]);
        task.run(task.body, task.first, task.end);
    }
}
constexpr ThreadCalls kAtTheLastMoment = {Note, RunNoted};

void* NeverStart(const WorkerTask&) noexcept { return nullptr; }
constexpr ThreadCalls kNever = {NeverStart, FinishNothing};

// The one worker that cannot be started, counted from 0, and how many were asked for.
int refusedWorker = 0;
int askedWorkers = 0;
void* StartAllButOne(const WorkerTask& task) noexcept
{
    return askedWorkers++ == refusedWorker ? nullptr : kSystemThreads.start(task);
}
const ThreadCalls kAllButOne = {StartAllButOne, kSystemThreads.finish};

// How often each item was worked on.
std::vector<int> VisitsOf(int itemCount, const ThreadCalls& threads)
{
    std::vector<int> visits(size_t(itemCount), 0);
    FanOut(
        itemCount,
        [&](int64_t first, int64_t end) noexcept
        {
            for (int64_t item = first; item < end; ++item)
                ++visits[size_t(item)];
        },
        threads);
    return visits;
}
} // namespace

TEST(FanOut, StartsNothingForNoItems)
{
    EXPECT_EQ(ChunksOf(0).count, 0);
    EXPECT_TRUE(RangesOf(0).empty());
    EXPECT_TRUE(RangesOf(-1).empty());
    EXPECT_TRUE(RangesOf(-1'000'000'000'000).empty());
}

TEST(FanOut, DealsOutFewItemsByTheRuleOfFortyEight)
{
    struct Expected
    {
        int64_t items, length;
        int workers;
        int64_t inTheLast;
    };
    // The length is items / 48 + 1, the one unconditional; so 48 items need only 24 workers.
    for (const Expected& e : std::vector<Expected>{{1, 1, 1, 1},
                                                   {2, 1, 2, 1},
                                                   {47, 1, 47, 1},
                                                   {48, 2, 24, 2},
                                                   {49, 2, 25, 1},
                                                   {95, 2, 48, 1},
                                                   {96, 3, 32, 3},
                                                   {100, 3, 34, 1},
                                                   {262144, 5462, 48, 5430}})
    {
        const std::vector<Range> ranges = RangesOf(e.items);
        ASSERT_EQ(int(ranges.size()), e.workers) << e.items;
        EXPECT_EQ(ranges.front().first, 0);
        EXPECT_EQ(ranges.front().end, std::min(e.length, e.items)) << e.items;
        EXPECT_EQ(ranges.back().end, e.items);
        EXPECT_EQ(ranges.back().end - ranges.back().first, e.inTheLast) << e.items;
    }
}

TEST(FanOut, MakesUpTheWholeOfContiguousDisjointRanges)
{
    std::vector<int64_t> totals;
    for (int64_t total = 0; total <= 5000; ++total)
        totals.push_back(total);
    for (int64_t power = 1; power <= int64_t(1) << 61; power *= 2)
        for (const int64_t total : {power - 1, power, power + 1, 48 * (power / 48), 48 * (power / 48) - 1})
            totals.push_back(total);
    for (const int64_t total : totals)
    {
        const std::vector<Range> ranges = RangesOf(total, kAtOnce);
        ASSERT_EQ(ranges, ExpectedRanges(total)) << total;
        ASSERT_LE(ranges.size(), 48u) << total;
        int64_t next = 0;
        for (const Range& range : ranges)
        {
            ASSERT_EQ(range.first, next) << total;
            ASSERT_GT(range.end, range.first) << total;
            next = range.end;
        }
        ASSERT_EQ(next, std::max<int64_t>(total, 0));
    }
}

TEST(FanOut, NumbersItemsBeyondThirtyTwoBits)
{
    const int64_t total = 3'000'000'000; // chunks of 62500001, the last one 48 items shorter
    const std::vector<Range> ranges = RangesOf(total);
    ASSERT_EQ(ranges.size(), 48u);
    EXPECT_EQ(ranges[1].first, 62'500'001);
    EXPECT_EQ(ranges[47].first, 2'937'500'047);
    EXPECT_EQ(ranges[47].end, total);
}

TEST(FanOut, WorksOnEveryItemOnceWhicheverWorkerCannotBeStarted)
{
    for (const int total : {1, 2, 47, 48, 100, 1000})
    {
        const std::vector<int> onceEach(size_t(total), 1);
        const int workers = ChunksOf(total).count;
        for (refusedWorker = 0; refusedWorker < workers; ++refusedWorker)
        {
            askedWorkers = 0;
            ASSERT_EQ(VisitsOf(total, kAllButOne), onceEach) << total << " items, worker " << refusedWorker;
            ASSERT_EQ(askedWorkers, workers);
        }
        EXPECT_EQ(VisitsOf(total, kNever), onceEach);
        EXPECT_EQ(VisitsOf(total, kAtOnce), onceEach);
        EXPECT_EQ(VisitsOf(total, kAtTheLastMoment), onceEach);
        EXPECT_EQ(VisitsOf(total, kSystemThreads), onceEach);
    }
}

TEST(FanOut, WorksOnEveryItemOnceWhenMemoryForAThreadRunsOut)
{
    const int total = 500;
    std::vector<int> visits(total);
    bool ranOut = true;
    for (int allowed = 0; ranOut; ++allowed)
    {
        std::fill(visits.begin(), visits.end(), 0);
        tests::FailAllocationAfter(allowed);
        FanOut(total,
               [&](int64_t first, int64_t end) noexcept
               {
                   for (int64_t item = first; item < end; ++item)
                       ++visits[size_t(item)];
               });
        ranOut = tests::StopFailingAllocations();
        ASSERT_EQ(visits, std::vector<int>(total, 1)) << allowed;
    }
}

TEST(FanOut, RunsItsWorkersSideBySideAndLeavesTheCallerIdle)
{
    const int workers = 47; // of one item each
    std::mutex mutex;
    std::condition_variable someoneCame;
    int present = 0;
    std::atomic<int> sawAll = 0;
    std::set<std::thread::id> threads;
    FanOut(workers,
           [&](int64_t, int64_t) noexcept
           {
               std::unique_lock lock(mutex);
               threads.insert(std::this_thread::get_id());
               ++present;
               someoneCame.notify_all();
               // Waits for the others, but not for ever where they do not come.
               if (someoneCame.wait_for(lock, std::chrono::seconds(20), [&] { return present == workers; }))
                   ++sawAll;
           });
    EXPECT_EQ(sawAll, workers);
    EXPECT_EQ(int(threads.size()), workers);
    EXPECT_EQ(threads.count(std::this_thread::get_id()), 0u);
}

TEST(FanOut, ReturnsOnlyWhenTheSlowestWorkerHasFinished)
{
    for (int slow = 0; slow < 5; ++slow)
    {
        std::atomic<int> finished = 0;
        FanOut(5,
               [&](int64_t first, int64_t) noexcept
               {
                   if (first == slow)
                       std::this_thread::sleep_for(std::chrono::milliseconds(30));
                   ++finished;
               });
        EXPECT_EQ(finished, 5) << "slow worker " << slow;
    }
}

TEST(FanOut, GivesEachWorkerAscendingItemsOfItsOwn)
{
    // Plain, unsynchronised writes: a race between two workers is one that a thread sanitizer sees.
    const int total = 10000;
    std::vector<int64_t> order(total, -1);
    FanOut(total,
           [&](int64_t first, int64_t end) noexcept
           {
               for (int64_t item = first; item < end; ++item)
                   order[size_t(item)] = item - first;
           });
    const int64_t length = 10000 / 48 + 1;
    for (int64_t item = 0; item < total; ++item)
        ASSERT_EQ(order[size_t(item)], item % length);
}
} // namespace corvane::core
