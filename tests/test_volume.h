#ifndef CORVANE_TESTS_TEST_VOLUME_H
#define CORVANE_TESTS_TEST_VOLUME_H

#include "corvane/Records.h"

#include <cstdint>
#include <vector>

namespace corvane::tests
{
// A small volume in memory with its record; axes along patient space and unit spacing until a test says otherwise.
struct TestVolume
{
    std::vector<std::vector<int16_t>> voxels;
    std::vector<const int16_t*> slices;
    KsVolumeData data = {};

    TestVolume() = default;
    TestVolume(TestVolume&&) = default; // moving keeps the buffers that the record points to
    TestVolume& operator=(TestVolume&&) = default;
};

// A volume whose stored values are value(i, j, k).
template <class Value>
TestVolume MakeVolume(int sizeX, int sizeY, int sizeZ, const Value& value)
{
    TestVolume volume;
    for (int k = 0; k < sizeZ; ++k)
    {
        std::vector<int16_t>& slice = volume.voxels.emplace_back();
        slice.reserve(size_t(sizeX) * size_t(sizeY));
        for (int j = 0; j < sizeY; ++j)
            for (int i = 0; i < sizeX; ++i)
                slice.push_back(int16_t(value(i, j, k)));
    }
    for (const std::vector<int16_t>& slice : volume.voxels)
        volume.slices.push_back(slice.data());
    volume.data = {volume.slices.data(), sizeX, sizeY, sizeZ, {1, 1, 1}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    return volume;
}

// A label volume in memory with its record.
struct TestLabels
{
    std::vector<std::vector<uint8_t>> labels;
    std::vector<uint8_t*> slices;
    KsVolumeMark mark = {};

    TestLabels() = default;
    TestLabels(TestLabels&&) = default;
    TestLabels& operator=(TestLabels&&) = default;
};

// Labels that are label(i, j, k).
template <class Label>
TestLabels MakeLabels(int sizeX, int sizeY, int sizeZ, const Label& label)
{
    TestLabels result;
    for (int k = 0; k < sizeZ; ++k)
    {
        std::vector<uint8_t>& slice = result.labels.emplace_back();
        slice.reserve(size_t(sizeX) * size_t(sizeY));
        for (int j = 0; j < sizeY; ++j)
            for (int i = 0; i < sizeX; ++i)
                slice.push_back(uint8_t(label(i, j, k)));
    }
    for (std::vector<uint8_t>& slice : result.labels)
        result.slices.push_back(slice.data());
    result.mark = {result.slices.data(), uint32_t(sizeX), uint32_t(sizeY), uint32_t(sizeZ)};
    return result;
}
} // namespace corvane::tests

#endif
