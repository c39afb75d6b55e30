#include "host/phantom.h"
#include "host/phantom_anatomy.h"
#include "read_testing.h"

#include <algorithm>

namespace corvane::host
{
namespace
{
// FNV-1a, 64 bits. Source: RFC draft-eastlake-fnv.
template <typename T>
uint64_t HashOf(const std::vector<T>& values)
{
    uint64_t hash = 14695981039346656037u;
    for (T value : values)
        for (size_t byte = 0; byte < sizeof(T); ++byte)
            hash = (hash ^ ((uint64_t(value) >> (8 * byte)) & 255)) * 1099511628211u;
    return hash;
}

// The phantom at its default size, without noise.
const Volume& CleanPhantom()
{
    static const Volume volume = MakePhantom("phantom:noise=0");
    return volume;
}

size_t At(const Grid& grid, int i, int j, int k)
{
    return (size_t(k) * size_t(grid.sizeY) + size_t(j)) * size_t(grid.sizeX) + size_t(i);
}

// Calls visit(index) for every voxel whose neighbours up to two steps away carry the same label.
void ForEachInnerVoxel(const Volume& volume, int label, const std::function<void(size_t)>& visit)
{
    const Grid& grid = volume.grid;
    const auto isInner = [&](int i, int j, int k)
    {
        for (int dk = -2; dk <= 2; ++dk)
            for (int dj = -2; dj <= 2; ++dj)
                for (int di = -2; di <= 2; ++di)
                    if (std::abs(di) + std::abs(dj) + std::abs(dk) <= 2 &&
                        volume.labels[At(grid, i + di, j + dj, k + dk)] != label)
                        return false;
        return true;
    };
    for (int k = 2; k < grid.sizeZ - 2; ++k)
        for (int j = 2; j < grid.sizeY - 2; ++j)
            for (int i = 2; i < grid.sizeX - 2; ++i)
                if (volume.labels[At(grid, i, j, k)] == label && isInner(i, j, k))
                    visit(At(grid, i, j, k));
}

Vec3 CentreOf(const Volume& volume, int label)
{
    Vec3 sum;
    double count = 0;
    for (int k = 0; k < volume.grid.sizeZ; ++k)
        for (int j = 0; j < volume.grid.sizeY; ++j)
            for (int i = 0; i < volume.grid.sizeX; ++i)
                if (volume.labels[At(volume.grid, i, j, k)] == label)
                {
                    sum = sum + IndexToPatient(volume.grid, {double(i), double(j), double(k)});
                    ++count;
                }
    return (1 / count) * sum;
}

TEST(Phantom, HasTheSameBytesOnEveryMachine)
{
    // Committed once; they change only with the anatomy or the noise.
    EXPECT_EQ(HashOf(MakePhantom("phantom:").voxels), 18438045734927414765u);
    EXPECT_EQ(HashOf(CleanPhantom().labels), 10888562094483331085u);
    const Volume leaning = MakePhantom("phantom:size=80x72x48,spacing=3.5x4x6,tilt=-17.5,noise=20");
    EXPECT_EQ(HashOf(leaning.voxels), 1174534720024277625u);
    EXPECT_EQ(HashOf(leaning.labels), 8465202255199760867u);
}

TEST(Phantom, IsACtOfTheRequestedGrid)
{
    const Volume volume = MakePhantom("phantom:size=40x30x20,spacing=5x6x8,tilt=20");
    const Grid& grid = volume.grid;
    EXPECT_EQ(grid.sizeX, 40);
    EXPECT_EQ(grid.sizeY, 30);
    EXPECT_EQ(grid.sizeZ, 20);
    ExpectNear(grid.spacing, {5, 6, 8}, 0, "spacing");
    const double angle = 20 * std::numbers::pi / 180;
    ExpectNear(grid.columnDirection, {0, std::cos(angle), std::sin(angle)}, 1e-15, "column direction");
    ExpectNear(grid.sliceDirection, {0, 0, 1}, 0, "slice direction");
    EXPECT_NEAR(TiltDegrees(grid), 20, 1e-9);
    ExpectNear(IndexToPatient(grid, {19.5, 14.5, 9.5}), {0, 0, 0}, 1e-9, "centre");
    EXPECT_EQ(volume.modality, "CT");
    EXPECT_EQ(volume.voxels.size(), size_t(40 * 30 * 20));
    EXPECT_EQ(volume.labels.size(), volume.voxels.size());
}

TEST(Phantom, LabelsSayWhatTheVoxelsHold)
{
    struct Expectation
    {
        int label, low, high;
        size_t atLeast; // inner voxels
    };
    for (const Expectation& expected : {Expectation{PhantomBone, 240, 750, 2000},
                                        {PhantomVessel, 340, 650, 5000},
                                        {PhantomAirTube, -960, -960, 8000},
                                        {PhantomLiver, 109, 190, 100000},
                                        {PhantomLung, -851, 60, 200000}})
    {
        size_t count = 0;
        int low = 32767, high = -32768;
        ForEachInnerVoxel(CleanPhantom(), expected.label,
                          [&](size_t index)
                          {
                              ++count;
                              low = std::min<int>(low, CleanPhantom().voxels[index]);
                              high = std::max<int>(high, CleanPhantom().voxels[index]);
                          });
        EXPECT_GE(count, expected.atLeast) << expected.label;
        EXPECT_GE(low, expected.low) << expected.label;
        EXPECT_LE(high, expected.high) << expected.label;
    }
}

TEST(Phantom, HasTheLiverAtTheRightAndTheMarkerAtTheLeftInFrontAndAbove)
{
    EXPECT_LT(CentreOf(CleanPhantom(), PhantomLiver).x, -30);
    ExpectNear(CentreOf(CleanPhantom(), PhantomMarker), {70, -68, 112}, 0.5, "marker");
    const Vec3 index = PatientToIndex(CleanPhantom().grid, {70, -68, 112});
    EXPECT_EQ(CleanPhantom().voxels[At(CleanPhantom().grid, int(index.x), int(index.y), int(index.z))], 1500);
    EXPECT_GT(CentreOf(CleanPhantom(), PhantomLung).z, 40);
    EXPECT_GT(CentreOf(CleanPhantom(), PhantomBone).y, 10); // the spine lies at the back
}

TEST(Phantom, IsTheSamePatientOnEveryGrid)
{
    // The largest spacing is that of the clean phantom, so boundaries are as soft.
    const Grid& base = CleanPhantom().grid;
    for (const char* text : {"phantom:noise=0,tilt=20,size=100x90x70,spacing=2x2x2",
                             "phantom:noise=0,tilt=-31.5,size=90x90x60,spacing=1.3x1.9x2",
                             "phantom:noise=0,size=70x80x90,spacing=1.9x1.1x2"})
    {
        const Volume other = MakePhantom(text);
        size_t compared = 0, different = 0;
        for (int k = 0; k < other.grid.sizeZ; ++k)
            for (int j = 0; j < other.grid.sizeY; ++j)
                for (int i = 0; i < other.grid.sizeX; ++i)
                {
                    const Vec3 patient = IndexToPatient(other.grid, {double(i), double(j), double(k)});
                    const Vec3 index = PatientToIndex(base, patient);
                    const int x = int(index.x), y = int(index.y), z = int(index.z);
                    if (index.x < 0 || index.y < 0 || index.z < 0 || x + 1 >= base.sizeX || y + 1 >= base.sizeY ||
                        z + 1 >= base.sizeZ)
                        continue;
                    // Trilinear between the eight neighbours, where these lie close together.
                    double low = 1e9, high = -1e9, value = 0;
                    for (int corner = 0; corner < 8; ++corner)
                    {
                        const int dx = corner & 1, dy = corner >> 1 & 1, dz = corner >> 2;
                        const double u = index.x - x, v = index.y - y, w = index.z - z;
                        const double neighbour = CleanPhantom().voxels[At(base, x + dx, y + dy, z + dz)];
                        value += (dx ? u : 1 - u) * (dy ? v : 1 - v) * (dz ? w : 1 - w) * neighbour;
                        low = std::min(low, neighbour);
                        high = std::max(high, neighbour);
                    }
                    if (high - low > 10)
                        continue;
                    ++compared;
                    different += std::fabs(value - other.voxels[At(other.grid, i, j, k)]) > 10;
                }
        EXPECT_GT(compared, other.voxels.size() / 2) << text;
        EXPECT_LT(double(different), 0.001 * double(compared)) << text; // thin parts may fall between the neighbours
    }
}

TEST(Phantom, NoiseHasTheRequestedStrengthAndNoBias)
{
    const Volume noisy = MakePhantom("phantom:noise=20");
    double sum = 0, squares = 0, count = 0;
    ForEachInnerVoxel(CleanPhantom(), PhantomLiver,
                      [&](size_t index)
                      {
                          const double noise = noisy.voxels[index] - CleanPhantom().voxels[index];
                          sum += noise;
                          squares += noise * noise;
                          ++count;
                      });
    EXPECT_NEAR(sum / count, 0, 0.2);
    EXPECT_NEAR(std::sqrt(squares / count), 20, 0.3);
}

TEST(Phantom, RefusesWhatItDoesNotKnow)
{
    const auto refusal = [](const std::string& text) { return ErrorOf([&] { MakePhantom(text); }, ErrorKind::Usage); };
    EXPECT_TRUE(Contains(refusal("fantom:"), "starts with phantom:"));
    EXPECT_TRUE(Contains(refusal("phantom:shape=cube"), "not 'shape=cube'"));
    EXPECT_TRUE(Contains(refusal("phantom:size=10x10"), "three voxel counts"));
    EXPECT_TRUE(Contains(refusal("phantom:size=10x10x4"), "from 8 to 2048"));
    EXPECT_TRUE(Contains(refusal("phantom:size=10x10x10.5"), "from 8 to 2048"));
    EXPECT_TRUE(Contains(refusal("phantom:size=2048x2048x2048"), "smaller size"));
    EXPECT_TRUE(Contains(refusal("phantom:spacing=1x1x0"), "0.05 to 50 mm"));
    EXPECT_TRUE(Contains(refusal("phantom:tilt=60"), "-45 to 45"));
    EXPECT_TRUE(Contains(refusal("phantom:noise=-1"), "0 to 500"));
    EXPECT_TRUE(Contains(refusal("phantom:tilt"), "not ''"));
    EXPECT_TRUE(Contains(refusal("phantom:,"), "not ''"));
}
} // namespace
} // namespace corvane::host
