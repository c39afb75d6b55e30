#include "core/fan_out.h"
#include "operations.h"
#include "plain_build.h"
#include "tests/core/failing_allocator.h"
#include "tests/render3d/scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <ostream>
#include <set>

// Every exported operation, again and again, each time with another allocation that fails or another thread that cannot
// be started. What it says it has done is done bit for bit; what it has not done leaves the object as it was, or empty
// where that is said, and is done the next time; nothing stays allocated.
namespace corvane::tests
{
namespace
{
// Operations that are refused with everything there is: what is not offered, and what no machine without a GPU has.
const std::set<std::string> kNeverDone = {
    "Engine3D::CutSubtract(KsVolumeMark const&)",
    "Engine3D::IsGPUEnabled()",
    "Engine3D::SetGPUEnabled(bool)",
    "Engine3D::SupportGPU()",
    "EngineMPR::ImagingAIP(KsMPRType, float, KsImageData*)",
    "EngineMPR::ImagingAIP(KsSliceParam, float, KsImageData*)",
    "EngineMPR::ImagingMIP(KsMPRType, float, KsImageData*)",
    "EngineMPR::ImagingMIP(KsSliceParam, float, KsImageData*)",
    "EngineMPR::ImagingMinIP(KsMPRType, float, KsImageData*)",
    "EngineMPR::ImagingMinIP(KsSliceParam, float, KsImageData*)",
    "RenderMPR::ImagingAIP(float, KsImageVAL*)",
    "RenderMPR::ImagingMIP(float, KsImageVAL*)",
    "RenderMPR::ImagingMinIP(float, KsImageVAL*)",
    "corvane_engine3d_cut_clear",
    "corvane_engine3d_cut_subtract",
    "corvane_engine3d_set_gpu_enabled",
    "corvane_engine_mpr_imaging_aip_by_slice",
    "corvane_engine_mpr_imaging_aip_by_type",
    "corvane_engine_mpr_imaging_minip_by_slice",
    "corvane_engine_mpr_imaging_minip_by_type",
    "corvane_engine_mpr_imaging_mip_by_slice",
    "corvane_engine_mpr_imaging_mip_by_type",
    "corvane_render_mpr_imaging_aip",
    "corvane_render_mpr_imaging_minip",
    "corvane_render_mpr_imaging_mip",
};

// Operations that leave the object empty when memory is short.
const std::set<std::string> kMayEmpty = {
    "Engine3D::InitData(KsVolumeData const&)",
    "Render3D::InitData(KsVolumeData const&, KsVolumeMark const&, VolumePalette const&)",
    "Engine3D::Engine3D()",
    "EngineMPR::EngineMPR()",
    "Render3D::Render3D()",
    "Render3D::Render3D(Render3D const&)",
    "RenderMPR::RenderMPR()",
    "corvane_engine3d_init_data",
    "corvane_render3d_assign",
    "corvane_render3d_init_data",
    "corvane_scene_set_volume",
    "corvane_scene_set_voxels",
};

// Operations that say that they have drawn even when nothing could be drawn, since hosts count on it.
const std::set<std::string> kSayNothing = {
    "Engine3D::ImagingVE(int, int, unsigned int*, float, bool, PnImageRGB*)",
    "corvane_engine3d_imaging_ve",
};

// What was tried, for the line at the end.
struct Totals : testing::Environment
{
    void TearDown() override
    {
        std::printf("%zu operations: %d with %d failed allocations, %d with %d threads not started\n",
                    AllOperations().size(), int(allocating.size()), failedAllocations, int(fanningOut.size()),
                    threadsNotStarted);
    }

    std::set<std::string> allocating, fanningOut;
    int failedAllocations = 0, threadsNotStarted = 0;
};
Totals& totals = *static_cast<Totals*>(testing::AddGlobalTestEnvironment(new Totals));

// Threads that cannot be had: that of one number, or all.
constexpr int kAll = -1, kNone = -2;
int refused = kNone, asked = 0;
bool IsRefused()
{
    const int number = asked++;
    return refused == kAll || number == refused;
}

void* StartRealThread(const core::WorkerTask& task) noexcept
{
    return IsRefused() ? nullptr : core::kSystemThreads.start(task);
}

// Stands for a thread that is done before it is waited for.
void* RunAtOnce(const core::WorkerTask& task) noexcept
{
    if (IsRefused())
        return nullptr;
    task.run(task.body, task.first, task.end);
    return &refused;
}
void FinishNothing(void* const*, int) noexcept {}

const core::ThreadCalls kRealThreads = {StartRealThread, core::kSystemThreads.finish};
constexpr core::ThreadCalls kNoThreads = {RunAtOnce, FinishNothing};

// Runs an operation with threads of a kind and at most so many workers; whatever else a test does is done without
// threads, which is quicker.
Answer RunWith(const core::ThreadCalls& threads, int workers, Attempt& attempt)
{
    core::LimitWorkers(workers);
    core::UseThreads(threads);
    const Answer answer = attempt.Run();
    core::UseThreads(kNoThreads);
    return answer;
}

struct Result
{
    Answer answer;
    Seen outputs, objects;
};

// What an operation does when nothing fails, and what there is before it.
struct Expected
{
    explicit Expected(const Operation& operation)
    {
        const std::unique_ptr<Attempt> untouched = operation.prepare();
        before = {Answer::Silent, untouched->Outputs(), untouched->Objects()};
        const std::unique_ptr<Attempt> attempt = operation.prepare();
        after.answer = attempt->Run();
        after.outputs = attempt->Outputs();
        after.objects = attempt->Objects();
        EXPECT_EQ(after.answer == Answer::Refused, kNeverDone.count(operation.name) > 0);
    }

    Result before, after;
};

// After a refusal: nothing has changed, or there is nothing any more; the next time it is done.
void ExpectUsable(const Operation& operation, Attempt& attempt, const Expected& expected)
{
    if (!kMayEmpty.count(operation.name))
        EXPECT_TRUE(attempt.Objects() == expected.before.objects) << "it changed something";
    else
        EXPECT_TRUE(attempt.IsEmpty() || attempt.Objects() == expected.before.objects) << "it left something behind";
    EXPECT_EQ(attempt.Run(), expected.after.answer) << "the next time";
    EXPECT_TRUE(attempt.Outputs() == expected.after.outputs) << "the next time";
    EXPECT_TRUE(attempt.Objects() == expected.after.objects) << "the next time";
}

// Returns whether an allocation failed.
bool TryWithFailure(const Operation& operation, const Expected& expected, int allowed, void (*fail)(int))
{
    const std::unique_ptr<Attempt> attempt = operation.prepare();
    fail(allowed);
    Answer answer = Answer::Refused;
    EXPECT_NO_THROW(answer = RunWith(core::kSystemThreads, 3, *attempt));
    if (!StopFailingAllocations())
    {
        EXPECT_EQ(answer, expected.after.answer);
        return false;
    }
    const Seen outputs = attempt->Outputs();
    if (answer == Answer::Done && !kSayNothing.count(operation.name))
    {
        EXPECT_EQ(expected.after.answer, Answer::Done);
        EXPECT_TRUE(outputs == expected.after.outputs) << "it said that it was done";
        EXPECT_TRUE(attempt->Objects() == expected.after.objects) << "it said that it was done";
        return true;
    }
    if (answer != Answer::Refused && outputs == expected.after.outputs && attempt->Objects() == expected.after.objects)
        return true;
    ExpectUsable(operation, *attempt, expected);
    return true;
}

void FailEachAllocation(const Operation& operation, void (*fail)(int))
{
    const Expected expected(operation);
    int failures = 0;
    for (bool failed = true; failed && !testing::Test::HasFailure();)
    {
        const int64_t before = Held().allocations;
        failed = TryWithFailure(operation, expected, failures, fail);
        EXPECT_EQ(Held().allocations, before) << "not freed";
        failures += failed;
        if (failures > 2000 || testing::Test::HasFailure())
            ADD_FAILURE() << operation.name << ", allocation " << failures;
    }
    if (failures > 0)
        totals.allocating.insert(operation.name);
    totals.failedAllocations += failures;
}

// Runs an operation with one thread refused, or all. Returns how many were asked for.
int RunRefusing(int thread, const Operation& operation, const Expected& expected, int workers,
                const core::ThreadCalls& threads)
{
    const std::unique_ptr<Attempt> attempt = operation.prepare();
    refused = thread;
    asked = 0;
    const Answer answer = RunWith(threads, workers, *attempt);
    const int count = asked;
    refused = kNone;
    EXPECT_EQ(answer, expected.after.answer);
    EXPECT_TRUE(attempt->Outputs() == expected.after.outputs);
    if (thread < 1) // a look takes longer than most operations
    {
        EXPECT_TRUE(attempt->Objects() == expected.after.objects);
    }
    if (testing::Test::HasFailure())
        ADD_FAILURE() << operation.name << ", thread " << thread << " of " << workers;
    return count;
}

void RefuseEachThread(const Operation& operation)
{
    const Expected expected(operation);
    struct Workers
    {
        int most;
        const core::ThreadCalls& threads;
    };
    for (const Workers& workers : {Workers{1, kRealThreads}, Workers{2, kRealThreads}, Workers{3, kRealThreads},
                                   Workers{7, kNoThreads}, Workers{48, kNoThreads}})
    {
        if (kFindsRaces && &workers.threads == &kNoThreads)
            break;
        const int count = RunRefusing(kAll, operation, expected, workers.most, workers.threads);
        for (int thread = 0; thread < count && !testing::Test::HasFailure(); ++thread)
            RunRefusing(thread, operation, expected, workers.most, workers.threads);
        if (count == 0)
            break;
        totals.fanningOut.insert(operation.name);
        totals.threadsNotStarted += 2 * count;
    }
}

std::set<std::string> Groups()
{
    std::set<std::string> groups;
    for (const Operation& operation : AllOperations())
        groups.insert(operation.group);
    return groups;
}

class Faults : public testing::TestWithParam<std::string>
{
protected:
    Faults()
    {
        core::UseThreads(kNoThreads);
        // A folder in the place of the diagnostic file, which would be written thousands of times.
        std::error_code noDrive;
        std::filesystem::create_directory(ScratchFolder::kDumpName, noDrive);
    }
    ~Faults() override
    {
        core::UseThreads(core::kSystemThreads);
        core::LimitWorkers(core::kMaxWorkerThreads);
    }

    template <class Try>
    void ForEachOperation(const Try& attempt)
    {
        for (const Operation& operation : AllOperations())
            if (operation.group == GetParam() && !HasFailure())
            {
                SCOPED_TRACE(operation.name);
                attempt(operation);
            }
    }

    const ScratchFolder folder;
};
} // namespace

TEST_P(Faults, AnAllocationThatFailsIsAnsweredAndNothingIsLost)
{
    ForEachOperation([](const Operation& operation) { FailEachAllocation(operation, FailAllocationAfter); });
}

TEST_P(Faults, MemoryThatStaysShortIsAnsweredAndNothingIsLost)
{
    if (kFindsRaces)
        GTEST_SKIP() << "the same threads as with one allocation that fails";
    ForEachOperation([](const Operation& operation) { FailEachAllocation(operation, FailAllocationsFrom); });
}

TEST_P(Faults, AThreadThatCannotBeStartedChangesNothing) { ForEachOperation(RefuseEachThread); }

// What the others compare is worth it.
TEST_P(Faults, EveryPictureShowsSomething)
{
    ForEachOperation(
        [](const Operation& operation)
        {
            const auto isIn = [&](const char* word) { return operation.name.find(word) != std::string::npos; };
            constexpr const char* kPictures[] = {"maging",        "arking",     "scene_render", "scene_endoscopy",
                                                 "scene_project", "scene_slab", "scene_reslice"};
            if (std::none_of(std::begin(kPictures), std::end(kPictures), isIn) || kNeverDone.count(operation.name))
                return;
            const Expected expected(operation);
            const Seen& outputs = expected.after.outputs;
            const bool ofLabels = isIn("arking") || isIn("labels");
            EXPECT_GE(std::set<double>(outputs.begin(), outputs.end()).size(), ofLabels ? 3u : 20u);
        });
}

INSTANTIATE_TEST_SUITE_P(Exports, Faults, testing::ValuesIn(Groups()), [](const auto& info) { return info.param; });
} // namespace corvane::tests
