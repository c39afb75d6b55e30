#include "patient.h"

#include <algorithm>

namespace corvane::tests
{
namespace
{
constexpr int kSizeX = 72, kSizeY = 56, kSizeZ = 40;

enum class Tissue
{
    Outside,
    Body,
    Skull,
    Vessel,
    Airway,
};

// Places count half voxels from the centre.
Tissue TissueAt(int i, int j, int k)
{
    const int x = 2 * i - 71, y = 2 * j - 55, z = 2 * k - 39;
    if ((x - 10) * (x - 10) + y * y < 150)
        return Tissue::Airway;
    const int distance = 1000 * x * x / (66 * 66) + 1000 * y * y / (50 * 50) + 1000 * z * z / (36 * 36);
    if (distance > 1000)
        return Tissue::Outside;
    if ((y + 20) * (y + 20) + (z - 4) * (z - 4) < 40)
        return Tissue::Vessel;
    return distance > 620 && distance < 800 ? Tissue::Skull : Tissue::Body;
}

template <class Value>
TestVolume Make(const Value& value)
{
    TestVolume volume = MakeVolume(kSizeX, kSizeY, kSizeZ, value);
    volume.data = {volume.slices.data(),       kSizeX,         kSizeY,          kSizeZ,
                   {0.75f, 1, 1.75f},          {-20, 15, -10}, {0.8f, 0.6f, 0}, {-0.48f, 0.64f, 0.6f},
                   {0.2112f, -0.2816f, 0.936f}};
    return volume;
}
} // namespace

TestVolume MakePatient()
{
    return Make(
        [](int i, int j, int k)
        {
            switch (TissueAt(i, j, k))
            {
            case Tissue::Body:
                return 40 + (7 * i + 13 * j + 29 * k) % 41;
            case Tissue::Skull:
                return 700 + (3 * i + 5 * j + 11 * k) % 120;
            case Tissue::Vessel:
                return 350;
            default:
                return -1000;
            }
        });
}

TestVolume MakeSecondPatient()
{
    return Make([](int i, int j, int k)
                { return TissueAt(i, j, k) == Tissue::Outside ? -1000 : 20 * i + 3 * j - 10 * k; });
}

TestLabels MakePatientLabels()
{
    return MakeLabels(kSizeX, kSizeY, kSizeZ,
                      [](int i, int j, int k)
                      {
                          if (i % 23 == 5 && j % 19 == 3)
                              return 200 + k;
                          const int cut = i > 46 && j < 25 && k > 18 ? 64 : 0;
                          switch (TissueAt(i, j, k))
                          {
                          case Tissue::Skull:
                              return 1 | cut;
                          case Tissue::Vessel:
                              return 2 | cut;
                          case Tissue::Airway:
                              return 3 | cut;
                          case Tissue::Outside:
                              return 4 | cut;
                          default:
                              return 0 | cut;
                          }
                      });
}

TestLabels MakeManyLabels()
{
    return MakeLabels(kSizeX, kSizeY, kSizeZ, [](int i, int j, int k) { return (5 * i + 3 * j + 7 * k) % 256; });
}

TestPalette MakeTranslucentPalette()
{
    const auto ramp = [](int from, int divisor)
    { return [=](int value) { return float(std::max(0, value - from)) / float(divisor); }; };
    TestPalette palette;
    palette.Add(0, -200, 300, ramp(-200, 16384),
                [](int value) {
                    return Colour{uint8_t(150 + value / 8), 110, uint8_t(90 - value / 8)};
                },
                {0.25f, 0.75f, 0.5f});
    palette.Add(1, 200, 1200, ramp(200, 4096),
                [](int value) {
                    return Colour{235, uint8_t(200 + value / 64), uint8_t(value / 8)};
                },
                {0.2f, 0.8f, 0.3f});
    palette.Add(2, 0, 600, ramp(0, 1024),
                [](int value) {
                    return Colour{uint8_t(100 + value / 4), 20, 30};
                },
                {0.5f, 0.5f, 1.0f});
    return palette;
}

TestPalette MakeSolidPalette()
{
    TestPalette palette;
    const Colour colours[4] = {{222, 170, 140}, {240, 235, 210}, {200, 30, 40}, {90, 150, 230}};
    for (int label = 0; label < 4; ++label)
        palette.AddOpaqueFrom(label, -300, colours[label], {0.125f, 0.875f, 0.25f});
    return palette;
}
} // namespace corvane::tests
