#include "core/fan_out.h"
#include "core/simd/isa.h"
#include "host/verification.h"

#include <gtest/gtest.h>

// The pictures of every machine, over the inside of the library: by each instruction set that this one runs, and dealt
// out to other numbers of workers.
namespace corvane::host
{
namespace
{
void ExpectThePicturesOfEveryMachine()
{
    const std::vector<PictureHash>& expected = ExpectedPictureHashes();
    size_t made = 0;
    MakeVerificationPictures(
        [&](const PictureHash& picture)
        {
            ASSERT_LT(made, expected.size());
            EXPECT_EQ(picture.name, expected[made].name);
            EXPECT_EQ(picture.hash, expected[made].hash) << picture.name;
            ++made;
        });
    EXPECT_EQ(made, expected.size());
}

TEST(VerificationInside, EachInstructionSetMakesThePicturesOfEveryMachine)
{
    for (const core::InstructionSet set : {core::InstructionSet::Base, core::InstructionSet::Avx2})
    {
        if (!core::Runs(set))
            continue;
        SCOPED_TRACE(set == core::InstructionSet::Base ? "base" : "AVX2");
        core::LimitInstructionSet(set);
        ExpectThePicturesOfEveryMachine();
        core::LimitInstructionSet(core::InstructionSet::Avx2);
    }
}

TEST(VerificationInside, AnyNumberOfWorkersMakesThePicturesOfEveryMachine)
{
    for (const int workers : {1, 2, 5, 17, 47})
    {
        SCOPED_TRACE(std::to_string(workers) + " workers");
        core::LimitWorkers(workers);
        ExpectThePicturesOfEveryMachine();
        core::LimitWorkers(core::kMaxWorkerThreads);
    }
}

TEST(VerificationInside, ALimitOfWorkersIsALimit)
{
    for (const int most : {1, 2, 7, 48})
        for (const int64_t items : {1, 6, 7, 48, 1000})
        {
            const core::WorkerChunks chunks = core::ChunksOf(items, most);
            EXPECT_LE(chunks.count, most);
            EXPECT_GE(chunks.count * chunks.length, items);
            EXPECT_LT((chunks.count - 1) * chunks.length, items);
        }
}
} // namespace
} // namespace corvane::host
