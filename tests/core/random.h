#ifndef CORVANE_TESTS_CORE_RANDOM_H
#define CORVANE_TESTS_CORE_RANDOM_H

#include "core/vec3.h"

#include <cstdint>
#include <random>

namespace corvane::tests
{
// The same numbers on every machine: only the generator's bits are used, the standard distributions differ between
// libraries.
class Random
{
public:
    explicit Random(uint32_t seed) : bits_(seed) {}

    // From 0 to count - 1.
    int Below(int count) { return int(bits_() % uint32_t(count)); }

    // From low to high, both included.
    int Between(int low, int high) { return low + Below(high - low + 1); }

    double Real(double low, double high) { return low + (high - low) * (bits_() / 4294967296.0); }

    core::Vec3d Vector(double low, double high)
    {
        const double x = Real(low, high), y = Real(low, high), z = Real(low, high);
        return {x, y, z};
    }

    core::Vec3d UnitVector()
    {
        for (;;)
        {
            const core::Vec3d vector = Vector(-1, 1);
            const double length = core::Length(vector);
            if (length > 0.1 && length < 1.0)
                return 1 / length * vector;
        }
    }

private:
    std::mt19937 bits_;
};
} // namespace corvane::tests

#endif
