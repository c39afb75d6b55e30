#include "scenes.h"

#include "tests/mpr/random_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace corvane::tests
{
void TestPalette::Add(int label, int start, int end, const std::function<float(int)>& opacity,
                      const std::function<Colour(int)>& colour, Shading shading, bool visible)
{
    auto table = std::make_unique<Table>();
    for (int value = start; value <= end; ++value)
    {
        table->opacities.push_back(opacity(value));
        const Colour bytes = colour(value);
        table->colours.insert(table->colours.end(), bytes.begin(), bytes.end());
    }
    table->entry = {start, end, end - start + 1, table->colours.data(), table->opacities.data(), 1.0f, visible, {}};
    std::copy(shading.begin(), shading.end(), table->entry.shading);
    palette.entries[label] = &table->entry;
    tables_[label] = std::move(table);

    int low = 32767, high = -32768;
    for (const auto& each : tables_)
        if (each && each->entry.visible)
        {
            low = std::min(low, each->entry.rangeStart);
            high = std::max(high, each->entry.rangeEnd);
        }
    sums_.assign(size_t(std::max(0, high - low + 1)), 0.0f);
    for (const auto& each : tables_)
        for (int32_t index = 0; each && each->entry.visible && index < each->entry.size; ++index)
            sums_[size_t(each->entry.rangeStart - low + index)] += each->opacities[size_t(index)];
    palette.sumStart = low;
    palette.sumLength = int32_t(sums_.size());
    palette.opacitySums = sums_.data();
}

void TestPalette::AddOpaqueFrom(int label, int start, Colour colour, Shading shading)
{
    Add(
        label, start, 32767, [](int) { return 1.0f; }, [=](int) { return colour; }, shading);
}

TestImage::TestImage(const PnImageParam& param)
    : pixels(size_t(param.rows) * param.columns, kUntouched), image{pixels.data(), param}
{
}

namespace
{
std::function<int(int, int, int)> RandomValues(Random& random, const KsVolumeData& size)
{
    const int kind = random.Below(4);
    if (kind == 0)
        return [&random](int, int, int) { return random.Between(-1100, 3000); };
    if (kind == 1)
        return [&random](int, int, int) { return random.Between(-32768, 32767); };

    struct Blob
    {
        double x, y, z, width, height;
    };
    std::vector<Blob> blobs;
    for (int blob = random.Between(1, 4); blob > 0; --blob)
        blobs.push_back({random.Real(0, size.sizeX), random.Real(0, size.sizeY), random.Real(0, size.sizeZ),
                         random.Real(2, 9), random.Real(500, 2500)});
    const double shell = random.Real(0.4, 1.0);
    return [=](int i, int j, int k)
    {
        double value = -1000;
        for (const Blob& blob : blobs)
        {
            const double distance = std::hypot(i - blob.x, j - blob.y, k - blob.z) / blob.width;
            if (kind == 2)
                value += blob.height * std::max(0.0, 1.0 - distance * distance / 4);
            else if (std::abs(distance - 1) * blob.width < shell)
                value = blob.height;
        }
        return int(std::min(value, 32767.0));
    };
}

void AddRandomLabel(Random& random, TestPalette& palette, int label)
{
    const int start = random.Between(-1200, 300);
    const double rise = random.Real(0.0001, 0.004), wave = random.Real(0.001, 0.02);
    const uint32_t colours = uint32_t(random.Between(0, 0xFFFFFF));
    const bool opaque = random.Below(3) == 0;
    palette.Add(
        label, start, start + random.Between(200, 4000),
        [=](int value)
        {
            const double up = std::sin(value * wave) * rise * (value - start) + (opaque ? 0.4 : 0.0);
            return float(std::clamp(up, 0.0, 1.0));
        },
        [=](int value)
        {
            const uint32_t c = colours + uint32_t(value) * 0x010203;
            return Colour{uint8_t(c), uint8_t(c >> 8), uint8_t(c >> 16)};
        },
        {float(random.Real(0, 0.6)), float(random.Real(0, 1)), float(random.Real(0, 0.8))}, random.Below(6) != 0);
}
} // namespace

Scene RandomScene(Random& random, int shortest, int longest)
{
    KsVolumeData size = {};
    size.sizeX = random.Between(shortest, longest);
    size.sizeY = random.Between(shortest, longest);
    size.sizeZ = random.Between(shortest, longest);
    Scene scene;
    scene.volume = MakeVolume(size.sizeX, size.sizeY, size.sizeZ, RandomValues(random, size));
    PlaceAtRandom(random, scene.volume.data);
    if (random.Below(8) == 0)
        scene.volume.data.columnDirection[0] += 0.3f;

    std::vector<int> labels = {0};
    for (int more = random.Below(6); more > 0; --more)
        labels.push_back(random.Below(64));
    for (const int label : labels)
        AddRandomLabel(random, scene.palette, label);
    labels.insert(labels.end(), {0, 0, 0, random.Below(64), 64 + labels.back(), 128, 255});

    // Labels in lumps, so that whole cells have one.
    const int lump = random.Between(1, 9);
    if (random.Below(5) != 0)
        scene.labels = MakeLabels(size.sizeX, size.sizeY, size.sizeZ,
                                  [&](int i, int j, int k)
                                  {
                                      const uint32_t hash = uint32_t(i / lump) * 73856093u ^
                                                            uint32_t(j / lump) * 19349663u ^
                                                            uint32_t(k / lump) * 83492791u;
                                      return labels[hash % labels.size()];
                                  });
    return scene;
}

PnImageParam RandomImagePlane(Random& random, const KsVolumeData& volume)
{
    const double middle[3] = {0.5 * volume.sizeX, 0.5 * volume.sizeY, 0.5 * volume.sizeZ};
    const double first[3] = {};
    double centre[3], corner[3];
    PatientPlace(volume, middle, centre);
    PatientPlace(volume, first, corner);
    const double radius = std::hypot(centre[0] - corner[0], centre[1] - corner[1], centre[2] - corner[2]);

    RandomFrame frame = MakeRandomFrame(random);
    const int kind = random.Below(4);
    if (kind == 0)
    {
        // Rays along an axis of the volume.
        const float* axes[3] = {volume.rowDirection, volume.columnDirection, volume.sliceDirection};
        const int along = random.Below(3);
        const int down = (along + random.Between(1, 2)) % 3;
        const double sign = random.Below(2) ? 1.0 : -1.0;
        for (int axis = 0; axis < 3; ++axis)
        {
            frame.row[axis] = sign * double(axes[along][axis]);
            frame.column[axis] = double(axes[down][axis]);
        }
    }
    else if (kind == 1)
        frame = {{1, 0, 0}, {0, 0, random.Below(2) ? 1.0 : -1.0}, {0, 1, 0}};

    PnImageParam param = {};
    param.rows = uint32_t(random.Between(1, 34));
    param.columns = uint32_t(random.Between(1, 45));
    param.rowSpacing = 2 * radius / param.rows * random.Real(0.3, 1.0);
    param.columnSpacing = 2 * radius / param.columns * random.Real(0.3, 1.0);
    std::copy_n(frame.row, 3, param.rowDirection);
    std::copy_n(frame.column, 3, param.columnDirection);
    const core::Vec3d towards = core::Cross(core::VecOf(param.rowDirection), core::VecOf(param.columnDirection));
    const double back[4] = {1.3 * radius, random.Real(-1, 1) * radius, 400, 2 * radius};
    const core::Vec3d position = core::VecOf(centre) + random.Vector(-0.3 * radius, 0.3 * radius) -
                                 back[random.Below(4)] * towards -
                                 0.5 * param.columns * param.columnSpacing * core::VecOf(param.rowDirection) -
                                 0.5 * param.rows * param.rowSpacing * core::VecOf(param.columnDirection);
    core::Store(position, param.position);
    return param;
}

TestVolume MakeBall(int sizeX, int sizeY, int sizeZ, float x, float y, float z, float radius)
{
    return MakeVolume(sizeX, sizeY, sizeZ,
                      [=](int i, int j, int k)
                      {
                          const double distance = std::hypot(double(i) - x, double(j) - y, double(k) - z) - radius;
                          return int(std::clamp(1000 - 200 * distance, -1000.0, 3000.0));
                      });
}

void ExpectSamePixels(const TestImage& drawn, const TestImage& expected)
{
    ASSERT_EQ(drawn.pixels.size(), expected.pixels.size());
    size_t first = 0, count = 0;
    for (size_t pixel = drawn.pixels.size(); pixel-- > 0;)
        if (drawn.pixels[pixel] != expected.pixels[pixel])
        {
            first = pixel;
            ++count;
        }
    if (count > 0)
    {
        const size_t columns = drawn.image.param.columns;
        ADD_FAILURE() << count << " of " << drawn.pixels.size() << " pixels differ; row " << first / columns
                      << ", column " << first % columns << " is " << std::hex << drawn.pixels[first] << ", not "
                      << expected.pixels[first];
    }
}
} // namespace corvane::tests
