#ifndef CORVANE_TESTS_ENGINE3D_SEQUENCE_STEPS_H
#define CORVANE_TESTS_ENGINE3D_SEQUENCE_STEPS_H

#include "corvane/Engine3D.h"
#include "tests/core/random.h"
#include "tests/test_volume.h"

#include <vector>

// Long sequences of calls with arguments of every kind, sound and hostile.
namespace corvane::tests
{
constexpr int kLongestSide = 24; // of a picture, pixels

// One or a few calls; everything about them follows from the two numbers.
struct Step
{
    int kind;
    uint32_t seed;
};

// What the steps hand to engines. It is only read, so any number of engines can play over it.
class SequenceWorld
{
public:
    SequenceWorld();

    // The next step of a sequence.
    static Step Draw(Random& random);

    // Whether a step only draws or asks. An engine that has played a sequence without such steps is in the same state.
    static bool OnlyLooks(const Step& step);
    static bool SwitchesGpu(const Step& step);

    void Play(Engine3D& engine, const Step& step) const;

private:
    void Load(Engine3D& engine, Random& random) const;
    void Look(Engine3D& engine, Random& random) const;
    void SetBlends(Engine3D& engine, Random& random) const;

    std::vector<TestVolume> volumes_;
    std::vector<KsVolumeData> records_;           // of the volumes, and such as must be refused
    std::vector<const int16_t*> slicesWithAHole_; // of the first volume
    mutable std::vector<uint32_t> blendPixels_;   // the interface takes them without const; nobody writes
};

// Everything that can be seen of an engine: pictures by the CPU, labels, palette, boxes, cameras.
std::vector<double> Everything(Engine3D& engine);
} // namespace corvane::tests

#endif
