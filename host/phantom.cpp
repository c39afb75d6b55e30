#include "phantom.h"

#include <algorithm>
#include <cmath>

#include "error.h"
#include "numbers.h"
#include "phantom_anatomy.h"

namespace corvane::host
{
namespace
{
constexpr double kAir = -1000;     // HU
constexpr double kFar = 1000;      // mm
constexpr int kLongestSide = 2048; // voxels
constexpr size_t kMostVoxels = size_t(1) << 30;

struct Parameters
{
    int size[3] = {192, 192, 160};
    double spacing[3] = {1.6, 1.6, 2.0};
    double tiltDegrees = 0;
    double noise = 8;
};

Parameters ParseParameters(const std::string& text)
{
    const std::string prefix = "phantom:";
    if (text.compare(0, prefix.size(), prefix) != 0)
        throw Error(ErrorKind::Usage, "a phantom's name starts with phantom:, not '" + text + "'");
    Parameters parameters;
    if (text == prefix)
        return parameters;
    for (const std::string& part : Split(text.substr(prefix.size()), ','))
    {
        const size_t equals = part.find('=');
        const std::string key = part.substr(0, equals);
        const std::string value = equals == std::string::npos ? "" : part.substr(equals + 1);
        if (key == "size")
        {
            const std::string what = "phantom size is three voxel counts from 8 to 2048, as in size=192x192x160";
            const std::vector<double> size = RequireNumbers(value, 'x', 3, what);
            for (int axis = 0; axis < 3; ++axis)
            {
                if (size[axis] < 8 || size[axis] > kLongestSide || size[axis] != std::floor(size[axis]))
                    throw Error(ErrorKind::Usage, what + ", not '" + value + "'");
                parameters.size[axis] = int(size[axis]);
            }
        }
        else if (key == "spacing")
        {
            const std::string what = "phantom spacing is three lengths from 0.05 to 50 mm, as in spacing=1.6x1.6x2";
            const std::vector<double> spacing = RequireNumbers(value, 'x', 3, what);
            for (int axis = 0; axis < 3; ++axis)
            {
                if (spacing[axis] < 0.05 || spacing[axis] > 50)
                    throw Error(ErrorKind::Usage, what + ", not '" + value + "'");
                parameters.spacing[axis] = spacing[axis];
            }
        }
        else if (key == "tilt")
        {
            const std::string what = "phantom tilt is an angle from -45 to 45 degrees, as in tilt=18";
            parameters.tiltDegrees = RequireNumber(value, what);
            if (std::fabs(parameters.tiltDegrees) > 45)
                throw Error(ErrorKind::Usage, what + ", not '" + value + "'");
        }
        else if (key == "noise")
        {
            const std::string what = "phantom noise is a standard deviation from 0 to 500 HU, as in noise=8";
            parameters.noise = RequireNumber(value, what);
            if (parameters.noise < 0 || parameters.noise > 500)
                throw Error(ErrorKind::Usage, what + ", not '" + value + "'");
        }
        else
            throw Error(ErrorKind::Usage, "a phantom takes size=, spacing=, tilt= and noise=, not '" + part + "'");
    }
    if (size_t(parameters.size[0]) * size_t(parameters.size[1]) * size_t(parameters.size[2]) > kMostVoxels)
        throw Error(ErrorKind::Usage, "a phantom has at most 2^30 voxels; choose a smaller size");
    return parameters;
}

// Sine and cosine of at most 45 degrees by their series: the C library's own differ in the last bit between machines.
void SineAndCosine(double degrees, double& sine, double& cosine)
{
    const double angle = degrees * (3.14159265358979323846 / 180);
    double term = 1;
    sine = 0;
    cosine = 0;
    for (int power = 0; power < 24; power += 2)
    {
        cosine += term;
        term *= angle / (power + 1);
        sine += term;
        term *= -angle / (power + 2);
    }
}

// A grid around the middle of the anatomy, patient (0, 0, 0).
Grid GridOf(const Parameters& parameters)
{
    Grid grid;
    grid.sizeX = parameters.size[0];
    grid.sizeY = parameters.size[1];
    grid.sizeZ = parameters.size[2];
    grid.spacing = {parameters.spacing[0], parameters.spacing[1], parameters.spacing[2]};
    double sine, cosine;
    SineAndCosine(parameters.tiltDegrees, sine, cosine);
    grid.rowDirection = {1, 0, 0};
    grid.columnDirection = {0, cosine, sine};
    grid.sliceDirection = {0, 0, 1};
    const double halfX = 0.5 * (grid.sizeX - 1) * grid.spacing.x;
    const double halfY = 0.5 * (grid.sizeY - 1) * grid.spacing.y;
    const double halfZ = 0.5 * (grid.sizeZ - 1) * grid.spacing.z;
    grid.origin = {-halfX, -halfY * cosine, -halfZ - halfY * sine};
    return grid;
}

// Whole voxels, the ends included.
struct IndexBox
{
    int lowX, lowY, lowZ, highX, highY, highZ;
};

// The voxels that a box in patient space may touch. The grid's x lies along the patient's; y and z follow from the
// tilt: y of the patient gives j alone, and what is left of z gives k.
IndexBox Touched(const Grid& grid, const Box& box, double margin)
{
    const auto low = [](double index) { return int(std::clamp(std::ceil(index), -1e6, 1e6)); };
    const auto high = [](double index) { return int(std::clamp(std::floor(index), -1e6, 1e6)); };
    const Vec3 first = box.low - grid.origin - Vec3{margin, margin, margin};
    const Vec3 last = box.high - grid.origin + Vec3{margin, margin, margin};
    const double rise = grid.columnDirection.z / grid.columnDirection.y; // mm of z for each mm of y
    const double riseFirst = std::min(rise * first.y, rise * last.y),
                 riseLast = std::max(rise * first.y, rise * last.y);
    const double stepY = grid.spacing.y * grid.columnDirection.y;
    return {std::max(0, low(first.x / grid.spacing.x)),
            std::max(0, low(first.y / stepY)),
            std::max(0, low((first.z - riseLast) / grid.spacing.z)),
            std::min(grid.sizeX - 1, high(last.x / grid.spacing.x)),
            std::min(grid.sizeY - 1, high(last.y / stepY)),
            std::min(grid.sizeZ - 1, high((last.z - riseFirst) / grid.spacing.z))};
}

// Paints slice after slice; holds what one slice needs.
class Painter
{
public:
    explicit Painter(const Grid& grid)
        : grid_(grid), ramp_(1.25 * std::max({grid.spacing.x, grid.spacing.y, grid.spacing.z})),
          values_(grid.VoxelsPerSlice()), depths_(grid.VoxelsPerSlice()), distances_(grid.VoxelsPerSlice()),
          labels_(grid.VoxelsPerSlice())
    {
        for (const Tissue& tissue : PhantomAnatomy())
        {
            Placed placed = {tissue, {}};
            for (const Ellipsoid& solid : tissue.ellipsoids)
                placed.boxes.push_back(Touched(grid, BoundsOf(solid), ramp_));
            for (const Capsule& solid : tissue.capsules)
                placed.boxes.push_back(Touched(grid, BoundsOf(solid), ramp_));
            for (const Cylinder& solid : tissue.cylinders)
                placed.boxes.push_back(Touched(grid, BoundsOf(solid), ramp_));
            tissues_.push_back(std::move(placed));
        }
    }

    // Fills values and labels of slice k, without noise.
    void PaintSlice(int k)
    {
        std::fill(values_.begin(), values_.end(), kAir);
        std::fill(labels_.begin(), labels_.end(), PhantomRest);
        std::fill(distances_.begin(), distances_.end(), kFar);
        const Ellipsoid body = PhantomBodyShape();
        for (int j = 0; j < grid_.sizeY; ++j)
            for (int i = 0; i < grid_.sizeX; ++i)
                depths_[At(i, j)] = -Distance(body, PositionOf(i, j, k));
        for (const Placed& placed : tissues_)
            PaintTissue(placed, k);
    }

    const std::vector<double>& Values() const { return values_; }
    const std::vector<uint8_t>& Labels() const { return labels_; }

private:
    struct Placed
    {
        Tissue tissue;
        std::vector<IndexBox> boxes; // of its ellipsoids, capsules, cylinders, in that order
    };

    size_t At(int i, int j) const { return size_t(j) * size_t(grid_.sizeX) + size_t(i); }

    Vec3 PositionOf(int i, int j, int k) const
    {
        return grid_.origin + (i * grid_.spacing.x) * grid_.rowDirection +
               (j * grid_.spacing.y) * grid_.columnDirection + (k * grid_.spacing.z) * grid_.sliceDirection;
    }

    void PaintTissue(const Placed& placed, int k)
    {
        const Tissue& tissue = placed.tissue;
        if (placed.boxes.empty())
        {
            const IndexBox all = {0, 0, k, grid_.sizeX - 1, grid_.sizeY - 1, k};
            Mix(tissue, all, true);
            return;
        }
        // Distance to the nearest of the solids, in the rectangle around those that reach this slice.
        IndexBox rectangle = {grid_.sizeX, grid_.sizeY, k, -1, -1, k};
        size_t box = 0;
        for (const Ellipsoid& solid : tissue.ellipsoids)
            Measure(solid, placed.boxes[box++], k, rectangle);
        for (const Capsule& solid : tissue.capsules)
            Measure(solid, placed.boxes[box++], k, rectangle);
        for (const Cylinder& solid : tissue.cylinders)
            Measure(solid, placed.boxes[box++], k, rectangle);
        Mix(tissue, rectangle, false);
    }

    template <typename Solid>
    void Measure(const Solid& solid, const IndexBox& box, int k, IndexBox& rectangle)
    {
        if (k < box.lowZ || k > box.highZ)
            return;
        for (int j = box.lowY; j <= box.highY; ++j)
            for (int i = box.lowX; i <= box.highX; ++i)
            {
                double& distance = distances_[At(i, j)];
                distance = std::min(distance, Distance(solid, PositionOf(i, j, k)));
            }
        rectangle.lowX = std::min(rectangle.lowX, box.lowX);
        rectangle.lowY = std::min(rectangle.lowY, box.lowY);
        rectangle.highX = std::max(rectangle.highX, box.highX);
        rectangle.highY = std::max(rectangle.highY, box.highY);
    }

    // Mixes the tissue in, as far as it covers each voxel, and leaves the distances ready for the next tissue.
    void Mix(const Tissue& tissue, const IndexBox& rectangle, bool wholeBody)
    {
        for (int j = rectangle.lowY; j <= rectangle.highY; ++j)
            for (int i = rectangle.lowX; i <= rectangle.highX; ++i)
            {
                const size_t at = At(i, j);
                const double limit = tissue.depth - depths_[at]; // distance to the layers above
                const double distance = wholeBody ? limit : std::max(distances_[at], limit);
                distances_[at] = kFar;
                const double coverage = std::clamp(0.5 - distance / ramp_, 0.0, 1.0);
                if (coverage <= 0)
                    continue;
                values_[at] += coverage * (tissue.value - values_[at]);
                if (coverage >= 0.5)
                    labels_[at] = tissue.label;
            }
    }

    Grid grid_;
    double ramp_; // mm over which one tissue passes into the next: a little more than a voxel
    std::vector<Placed> tissues_;
    std::vector<double> values_, depths_, distances_;
    std::vector<uint8_t> labels_;
};

// Noise of standard deviation 1, the same for the same voxel everywhere: the sum of four evenly spread numbers.
// Source of the mixing: Steele, Lea, Flood, "Fast splittable pseudorandom number generators", 2014 (SplitMix64).
double NoiseAt(uint64_t voxel)
{
    uint64_t bits = (voxel + 1) * 0x9E3779B97F4A7C15u;
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9u;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBu;
    bits ^= bits >> 31;
    const uint64_t sum = (bits & 0xFFFF) + ((bits >> 16) & 0xFFFF) + ((bits >> 32) & 0xFFFF) + (bits >> 48);
    const double deviation = 65536 / std::sqrt(3.0); // of the sum: the root of four times 65536^2 / 12
    return (double(sum) - 2 * 65535.0) / deviation;
}
} // namespace

Volume MakePhantom(const std::string& text)
{
    const Parameters parameters = ParseParameters(text);
    Volume volume;
    volume.grid = GridOf(parameters);
    volume.modality = "CT";
    volume.description = text;
    volume.voxels.resize(volume.grid.VoxelCount());
    volume.labels.resize(volume.grid.VoxelCount());
    Painter painter(volume.grid);
    for (int k = 0; k < volume.grid.sizeZ; ++k)
    {
        painter.PaintSlice(k);
        const size_t first = size_t(k) * volume.grid.VoxelsPerSlice();
        for (size_t n = 0; n < volume.grid.VoxelsPerSlice(); ++n)
        {
            const double value = painter.Values()[n] + parameters.noise * NoiseAt(first + n);
            volume.voxels[first + n] = int16_t(std::floor(std::clamp(value, -1024.0, 3071.0) + 0.5));
        }
        std::copy(painter.Labels().begin(), painter.Labels().end(), volume.labels.begin() + ptrdiff_t(first));
    }
    return volume;
}
} // namespace corvane::host
