#include "sequence_steps.h"
#include "tests/render3d/scratch_folder.h"

#include <algorithm>
#include <gtest/gtest.h>

// Any calls in any order on two engines at once. A sanitizer watches the memory; now and then an engine must look
// exactly like a new one that was told the same but never drew a picture.
namespace corvane::tests
{
namespace
{
constexpr int kSteps = 320, kBetweenComparisons = 32;

void PlaySequence(uint32_t seed)
{
    const ScratchFolder folder;
    const SequenceWorld world;
    Random random(seed);
    Engine3D engines[2];
    std::vector<Step> told[2];
    int pictures = 0; // that show something
    for (int step = 1; step <= kSteps; ++step)
    {
        const int which = random.Below(2);
        const Step next = SequenceWorld::Draw(random);
        world.Play(engines[which], next);
        if (!SequenceWorld::OnlyLooks(next))
            told[which].push_back(next);
        if (step % kBetweenComparisons != 0)
            continue;
        for (int engine = 0; engine < 2; ++engine)
        {
            Engine3D fresh;
            for (const Step& each : told[engine])
                world.Play(fresh, each);
            const std::vector<double> seen = Everything(engines[engine]);
            pictures +=
                std::count_if(seen.begin() + 1, seen.begin() + 400, [](double pixel) { return pixel > 0; }) > 20;
            ASSERT_EQ(seen, Everything(fresh)) << "engine " << engine << " after step " << step;
        }
    }
    EXPECT_GE(pictures, 6) << "there was little to compare";
}
} // namespace

TEST(EngineSequence, TwoEnginesPlayTheFirstSequence) { PlaySequence(1); }
TEST(EngineSequence, TwoEnginesPlayTheSecondSequence) { PlaySequence(22); }
TEST(EngineSequence, TwoEnginesPlayTheThirdSequence) { PlaySequence(333); }
} // namespace corvane::tests
