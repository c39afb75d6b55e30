#ifndef CORVANE_TESTS_ENGINE3D_RECORDING_TREVIK_H
#define CORVANE_TESTS_ENGINE3D_RECORDING_TREVIK_H

#include "trevik/Cuda3D.h"

#include <array>
#include <functional>
#include <string>
#include <vector>

// A library of the same name as the one that supplies Cuda3D, to be found in its place by the library as it is shipped.
// It writes down what it is told and answers as a test wishes.
namespace corvane::tests::gpu
{
// Lookup tables, read through their pointers while the call lasted.
struct TableCopy
{
    int label;
    VolumePaletteEntry entry;
    std::vector<uint8_t> colours;
    std::vector<float> opacities;
};

// One call. Records are copied, with the pointers that they held; what an operation is not given is zero.
struct Call
{
    std::string operation; // of Cuda3D; "create" and "destroy" for its constructor and destructor
    const void* renderer = nullptr;
    KsVolumeData volume = {};
    KsVolumeMark mark = {};
    std::vector<uint8_t> labels; // all that `mark` names
    VolumePalette palette = {};
    std::vector<TableCopy> tables; // all that `palette` names
    std::vector<float> sums;
    std::array<float, 6> box = {}; // both corners
    PnImageRGB image = {};
    int volumeIndex = 0;
    KsViewPoint view = {};
    float viewAngle = 0.0f;
    const KsBlendImage* blendPointer = nullptr;
    int blendCount = 0;
    std::vector<KsBlendImage> blends;
};

struct Recording
{
    std::vector<Call> calls;

    bool supportsGpu = true;
    bool takesVolumes = true;
    bool drawsVolumes = true;
    bool drawsEndoscopies = true;
    std::function<void(const Call&)> during; // runs inside every call, after it was written down
};

// What a picture of this library shows, and the geometry that it writes, drawn or not.
constexpr uint32_t kVolumePaint = 0x10203000, kEndoscopyPaint = 0x40506000; // plus the pixel's number
constexpr double kWrittenPosition = 4711.0;                                 // position[2]

TREVIK_API Recording& TheRecording();
} // namespace corvane::tests::gpu

#endif
