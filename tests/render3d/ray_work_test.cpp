#include "render3d/frame.h"
#include "render3d/projection.h"
#include "scenes.h"
#include "work_counter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

// However a ray lies and whatever a volume's numbers are, its walk is over after so many steps. A step is a fraction of
// the smallest spacing; a ray goes at most 10000 voxels far and as many steps as 2^20 would take it. Adding a step to a
// distance rounds to two thirds of it at the worst, and to nothing where numbers lie too far apart: the ray then ends
// at the next cell, which it asks for after a million steps at the latest.
namespace corvane::tests
{
namespace
{
using core::Vec3d;
using core::Vec3f;
using render3d::ProjectionKind;
using render3d::VolumeSlot;

constexpr double kNan = NAN, kInfinity = INFINITY;
constexpr double kRenderingStep = 0.33, kProjectionStep = 1.0; // of the smallest spacing
constexpr double kMostSteps = 1048576;

struct Ray
{
    Vec3d start, direction; // patient space
};

// How often a ray of a volume may be sampled.
double MostSamples(const VolumeSlot& slot, Vec3d direction, double step)
{
    const Vec3d along = core::PatientToIndexStep(slot.geometry, direction);
    const double length = core::Length(along) + 1e-6;
    const Vec3d d = 1 / length * along;
    const KsVolumeData& volume = slot.volume;
    const double smallest = std::min({volume.spacing[0], volume.spacing[1], volume.spacing[2]});
    const double s = step * smallest /
                     core::Length(Vec3d{d.x * double(volume.spacing[0]), d.y * double(volume.spacing[1]),
                                        d.z * double(volume.spacing[2])});
    const double diagonal = std::hypot(double(volume.sizeX), double(volume.sizeY), double(volume.sizeZ));
    const double steps = std::min(std::min(10000.0, diagonal / core::Length(d)) / s, kMostSteps);
    if (!std::isfinite(steps))
        return 1.5 * kMostSteps + 1e6 + 2;
    const bool roundsToNothing = s < 1.0 / 2048; // half of what lies between two numbers near 10000
    return 1.5 * steps + 2 + (roundsToNothing ? 1e6 : 0);
}

// The rays of an image of one pixel, as a projection sets them up.
render3d::ParallelRays ParallelRaysOf(const VolumeSlot& slot, const Ray& ray)
{
    static render3d::ParallelRays taken;
    const auto take = [](const render3d::Scene&, const render3d::ParallelRays& rays, int64_t, int64_t, int16_t*)
    { taken = rays; };
    const Vec3d d = ray.direction;
    const Vec3d row = d.x != 0 || d.y != 0 ? core::Unit(Vec3d{d.y, -d.x, 0}) : Vec3d{1, 0, 0};
    const Vec3d column = core::Cross(d, row);
    PnImageParam param = {1, 1, 1, 1, {}, {}, {}};
    core::Store(row, param.rowDirection);
    core::Store(column, param.columnDirection);
    core::Store(ray.start, param.position);
    int16_t value;
    KsImageVAL image = {&value, param};
    render3d::Project(ProjectionKind::Maximum, slot, nullptr, 1e30f, image, {"", nullptr, take, take, take});
    return taken;
}

render3d::RayBatch BatchOf(const Ray& ray)
{
    render3d::RayBatch batch = {};
    batch.count = 1;
    batch.startX[0] = float(ray.start.x);
    batch.startY[0] = float(ray.start.y);
    batch.startZ[0] = float(ray.start.z);
    const Vec3f d = core::ToFloat(ray.direction);
    batch.directionX[0] = d.x;
    batch.directionY[0] = d.y;
    batch.directionZ[0] = d.z;
    return batch;
}

// The most of each that any ray did.
struct Most
{
    int64_t samples = 0, jumps = 0;
};

void ExpectBoundedWork(const VolumeSlot& slot, const VolumePalette& palette, const Ray& ray, Most& most)
{
    const KsVolumeData& volume = slot.volume;
    const int64_t jumps = int64_t(volume.sizeX) + volume.sizeY + volume.sizeZ + 64;
    const auto run = [&](const char* name, int64_t samples, const auto& kernel)
    {
        const int64_t rounds = samples + jumps + 1; // the last one finds that the ray has ended
        StartCounting(rounds);
        try
        {
            kernel();
            const Work work = WorkDone();
            EXPECT_LE(work.samples, samples) << name;
            EXPECT_LE(work.jumps, jumps) << name;
            most = {std::max(most.samples, work.samples), std::max(most.jumps, work.jumps)};
        }
        catch (const TooMuchWork& what)
        {
            ADD_FAILURE() << name << ": more than " << rounds << " " << what.what();
        }
    };
    const render3d::Frame frame(slot, &palette);
    const render3d::Scene& scene = frame.SceneOf();
    const int64_t renderingSamples = int64_t(MostSamples(slot, ray.direction, kRenderingStep));
    uint32_t pixel;
    run("rendering", renderingSamples, [&] { kCountingKernels.integrateRays(scene, BatchOf(ray), &pixel); });

    const render3d::ParallelRays rays = ParallelRaysOf(slot, ray);
    const int64_t samples = int64_t(MostSamples(slot, ray.direction, kProjectionStep));
    int16_t value;
    run("maximum", samples, [&] { kCountingKernels.projectMaximum(scene, rays, 0, 1, &value); });
    run("minimum", samples, [&] { kCountingKernels.projectMinimum(scene, rays, 0, 1, &value); });
    run("average", samples, [&] { kCountingKernels.projectAverage(scene, rays, 0, 1, &value); });
}

// Tables in which samples are worth taking and show nothing: no ray is ever opaque.
struct EndlessPalette
{
    explicit EndlessPalette(int firstVisible)
    {
        entry = {-32768, 32767, 65536, colours.data(), opacities.data(), 1.0f, true, {}};
        std::fill(sums.begin() + (firstVisible + 32768), sums.end(), 1.0f);
        palette.entries[0] = &entry;
        palette.sumStart = -32768;
        palette.sumLength = 65536;
        palette.opacitySums = sums.data();
    }
    EndlessPalette(const EndlessPalette&) = delete;
    EndlessPalette& operator=(const EndlessPalette&) = delete;

    std::vector<float> sums = std::vector<float>(65536), opacities = std::vector<float>(65536);
    std::vector<uint8_t> colours = std::vector<uint8_t>(3 * 65536);
    VolumePaletteEntry entry;
    VolumePalette palette = {};
};

// Mostly one value, so that no cell can be jumped over in a search for the highest; every third cell along each axis
// holds a higher one. The highest and the lowest of all lie where no ray comes, so that no search ends early.
TestVolume LatticeVolume(const std::array<int, 3>& size)
{
    return MakeVolume(size[0], size[1], size[2],
                      [&](int i, int j, int k)
                      {
                          if (j == 0 && k == 0 && i < 2)
                              return i == 0 ? 32767 : -32768;
                          return i / 2 % 3 == 1 && j / 2 % 3 == 1 && k / 2 % 3 == 1 ? 1000 : 100;
                      });
}

// Along the axes, in the plane of two, nearly so, and askew.
std::vector<Vec3d> Directions()
{
    std::vector<Vec3d> directions;
    for (const double sign : {1.0, -1.0})
    {
        directions.insert(directions.end(), {{sign, 0, 0}, {0, sign, 0}, {0, 0, sign}});
        for (const double tiny : {1.01e-4, 0.99e-4, 1e-7, 1e-40})
            directions.insert(directions.end(), {{sign, tiny, 0}, {tiny, -sign, 0}, {-tiny, tiny, sign}});
        directions.push_back(core::Unit(Vec3d{sign, 1, 0}));
        directions.push_back(core::Unit(Vec3d{sign, 1, 1}));
        directions.push_back(core::Unit(Vec3d{1, -0.37 * sign, 0.82}));
    }
    return directions;
}

// A few of them, where single rays take long.
std::vector<Vec3d> FewDirections()
{
    return {{1, 0, 0}, {0, -1, 0}, {0, 0, 1}, {-1, 1.01e-4, 0}, {1e-40, 1, 0}, core::Unit(Vec3d{1, -0.37, 0.82})};
}

// Through the middle, inside and outside, and along faces and edges of voxels, of cells and of blocks.
std::vector<Vec3d> Places(const std::array<int, 3>& size)
{
    const double x = size[0], y = size[1], z = size[2];
    return {{x / 2 - 0.3, y / 2 - 0.4, z / 2 - 0.2}, {2, 2, 2}, {x / 2, 3.5, 2}, {x - 2.01, 1.01, z - 2.01}};
}

Vec3d PatientPlaceOf(const VolumeSlot& slot, Vec3d index)
{
    const core::VolumeGeometry& geometry = slot.geometry;
    const Vec3d scaled = {index.x * double(geometry.spacing.x), index.y * double(geometry.spacing.y),
                          index.z * double(geometry.spacing.z)};
    return core::ToDouble(geometry.origin) + scaled.x * core::ToDouble(geometry.directions.row) +
           scaled.y * core::ToDouble(geometry.directions.column) + scaled.z * core::ToDouble(geometry.directions.slice);
}

// Rays of all directions through all places, from there and from so many voxels before.
Most ExpectBoundedWorkOf(const KsVolumeData& volume, const std::vector<Vec3d>& places, const VolumePalette& palette,
                         const std::vector<Vec3d>& directions, std::initializer_list<double> before)
{
    Most most;
    VolumeSlot slot;
    EXPECT_TRUE(render3d::LoadSlot(volume, {}, slot));
    render3d::UpdateSlot(slot, palette);
    for (const Vec3d& direction : directions)
        for (const Vec3d& place : places)
            for (const double voxels : before)
            {
                SCOPED_TRACE(testing::Message()
                             << "direction " << direction.x << ", " << direction.y << ", " << direction.z << " at "
                             << place.x << ", " << place.y << ", " << place.z << " from " << voxels);
                // The way back is so many voxels of the axis that the ray comes nearest to.
                const Vec3d along = core::PatientToIndexStep(slot.geometry, direction);
                const double length = core::Length(along);
                const double back = voxels > 0 && length > 0 ? voxels / length : 0;
                ExpectBoundedWork(slot, palette, {PatientPlaceOf(slot, place) - back * direction, direction}, most);
                if (testing::Test::HasFailure())
                    return most;
            }
    return most;
}
} // namespace

// What counts, counts: a ray along a row of 400 voxels is sampled between 1.01 and 397.99.
TEST(RayWork, IsCountedStepByStep)
{
    const std::array<int, 3> size = {400, 20, 20};
    const TestVolume volume = LatticeVolume(size);
    const EndlessPalette visible(-32768), hidden(32767);
    VolumeSlot slot;
    ASSERT_TRUE(render3d::LoadSlot(volume.data, {}, slot));
    const Ray ray = {{-5, 10.5, 10.5}, {1, 0, 0}};
    const auto rendered = [&](const VolumePalette& palette)
    {
        slot.dataChanged = true;
        render3d::UpdateSlot(slot, palette);
        const render3d::Frame frame(slot, &palette);
        uint32_t pixel;
        StartCounting(10000);
        kCountingKernels.integrateRays(frame.SceneOf(), BatchOf(ray), &pixel);
        return WorkDone();
    };
    const double steps = (397.99 - 1.01) / 0.33; // the place where a ray enters is none
    EXPECT_NEAR(double(rendered(visible.palette).samples), steps, 2);
    EXPECT_EQ(rendered(visible.palette).jumps, 0);
    EXPECT_EQ(rendered(hidden.palette).samples, 0);
    EXPECT_NEAR(double(rendered(hidden.palette).jumps), 400 / 16, 2); // whole blocks

    const render3d::ParallelRays rays = ParallelRaysOf(slot, ray);
    const render3d::Frame frame(slot, nullptr);
    int16_t value;
    StartCounting(10000);
    kCountingKernels.projectAverage(frame.SceneOf(), rays, 0, 1, &value);
    EXPECT_NEAR(double(WorkDone().samples), 397, 2);
    EXPECT_EQ(WorkDone().rounds, 0);
    StartCounting(10000);
    kCountingKernels.projectMaximum(frame.SceneOf(), rays, 0, 1, &value);
    EXPECT_NEAR(double(WorkDone().samples), 39.7, 2); // every tenth
    EXPECT_GE(WorkDone().rounds, 100);
    EXPECT_LE(WorkDone().rounds, 397 + 400 + 2);
    StartCounting(100);
    EXPECT_THROW(kCountingKernels.projectAverage(frame.SceneOf(), rays, 0, 1, &value), TooMuchWork);
}

TEST(RayWork, IsBoundedInVolumesOfEveryShape)
{
    const EndlessPalette visible(-32768), some(1000), hidden(32767);
    for (const std::array<int, 3>& size : {std::array<int, 3>{24, 21, 33}, {4, 5, 300}, {300, 33, 4}})
    {
        const TestVolume volume = LatticeVolume(size);
        for (const VolumePalette* palette : {&visible.palette, &some.palette, &hidden.palette})
        {
            const Most most =
                ExpectBoundedWorkOf(volume.data, Places(size), *palette, Directions(), {0, 20, 9000, 20000});
            EXPECT_EQ(most.jumps > 0, palette != &visible.palette);
        }
    }
}

TEST(RayWork, IsBoundedInTiltedShearedAndMirroredVolumes)
{
    const std::array<int, 3> size = {24, 21, 33};
    TestVolume volume = LatticeVolume(size);
    const EndlessPalette some(1000);
    for (const Vec3f& slice : {Vec3f{0, 0.3f, 0.954f}, {0, 0.999f, 0.01f}, {0.7f, 0.7f, -0.1f}, {0, 1, 1e-7f}})
    {
        core::Store(slice, volume.data.sliceDirection);
        ExpectBoundedWorkOf(volume.data, Places(size), some.palette, Directions(), {0, 20, 9000});
    }
}

TEST(RayWork, IsBoundedForSpacingsFarApart)
{
    const std::array<int, 3> size = {24, 21, 18};
    TestVolume volume = LatticeVolume(size);
    const EndlessPalette visible(-32768);
    Most most;
    for (const float spacing : {300.0f, 1e5f, 1e7f, 1e38f, 1e-3f, 1e-7f, 1e-20f, 1e-44f})
        for (int axis = 0; axis < 3; ++axis)
        {
            SCOPED_TRACE(testing::Message() << spacing << " along " << axis);
            const float spacings[3] = {1, 1, 1};
            std::copy_n(spacings, 3, volume.data.spacing);
            volume.data.spacing[axis] = spacing;
            const Most here = ExpectBoundedWorkOf(volume.data, {Places(size)[0], Places(size)[2]}, visible.palette,
                                                  FewDirections(), {0});
            most.samples = std::max(most.samples, here.samples);
        }
    EXPECT_GT(most.samples, 500000); // some of these rays are long
}

TEST(RayWork, IsBoundedForNumbersThatMakeNoSense)
{
    const std::array<int, 3> size = {24, 21, 18};
    const TestVolume volume = LatticeVolume(size);
    const EndlessPalette visible(-32768);
    for (const double number : {kNan, kInfinity, -kInfinity, 1e30, -1e30, 3e38, 1e-40, 0.0})
    {
        SCOPED_TRACE(number);
        KsVolumeData strange[4] = {volume.data, volume.data, volume.data, volume.data};
        strange[0].origin[1] = float(number);
        strange[1].spacing[2] = float(number);
        strange[2].columnDirection[1] = float(number);
        std::fill_n(strange[3].spacing, 3, float(number));
        for (const KsVolumeData& data : strange)
            ExpectBoundedWorkOf(data, Places(size), visible.palette, Directions(), {0, 5});

        VolumeSlot slot;
        ASSERT_TRUE(render3d::LoadSlot(volume.data, {}, slot));
        render3d::UpdateSlot(slot, visible.palette);
        Most most;
        for (int field = 0; field < 6; ++field)
        {
            Ray ray = {{10, 10, 10}, {1, 0, 0}};
            double* const fields[6] = {&ray.start.x,     &ray.start.y,     &ray.start.z,
                                       &ray.direction.x, &ray.direction.y, &ray.direction.z};
            *fields[field] = number;
            SCOPED_TRACE(field);
            ExpectBoundedWork(slot, visible.palette, ray, most);
        }
    }
}
} // namespace corvane::tests
