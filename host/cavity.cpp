#include "cavity.h"

#include "window.h"

#include <algorithm>
#include <array>
#include <optional>

namespace corvane::host
{
namespace
{
constexpr double kCellSize = 2.0;            // mm, about: cavities are looked for on a coarser grid
constexpr double kAirBelow[] = {-930, -700}; // HU: air alone, then air that shares its voxel with tissue
constexpr double kTissueAbove = -500;        // HU
constexpr double kFarthestWall = 60;         // mm
constexpr double kWallThickness = 8;         // mm: the shell of a patient table is thinner
constexpr int kLeastWalls = 7;               // of eight directions in the slice: on one side lung may reach far
constexpr double kRoomy = 8, kFarSight = 60; // mm: more of either makes no better view
constexpr double kRoomBeforeSight = 4;       // what a mm of room is worth in mm of sight

// Real values on a coarser grid, each the nearest voxel's.
class CoarseValues
{
public:
    explicit CoarseValues(const Volume& volume) : volume_(volume)
    {
        const Grid& grid = volume.grid;
        const double spacings[3] = {grid.spacing.x, grid.spacing.y, grid.spacing.z};
        const int sizes[3] = {grid.sizeX, grid.sizeY, grid.sizeZ};
        for (int axis = 0; axis < 3; ++axis)
        {
            stride_[axis] = std::max(1, int(kCellSize / spacings[axis]));
            size_[axis] = (sizes[axis] + stride_[axis] - 1) / stride_[axis];
            edge_[axis] = stride_[axis] * spacings[axis];
        }
    }

    using Cell = std::array<int, 3>;

    int Size(int axis) const { return size_[axis]; }

    bool Has(const Cell& cell) const
    {
        return cell[0] >= 0 && cell[0] < size_[0] && cell[1] >= 0 && cell[1] < size_[1] && cell[2] >= 0 &&
               cell[2] < size_[2];
    }

    double At(const Cell& cell) const
    {
        const Grid& grid = volume_.grid;
        const size_t row = size_t(cell[2] * stride_[2]) * size_t(grid.sizeY) + size_t(cell[1] * stride_[1]);
        const int stored = volume_.voxels[row * size_t(grid.sizeX) + size_t(cell[0] * stride_[0])];
        return volume_.valueSlope * stored + volume_.valueIntercept;
    }

    Vec3 Place(const Cell& cell) const
    {
        return IndexToPatient(
            volume_.grid, {double(cell[0] * stride_[0]), double(cell[1] * stride_[1]), double(cell[2] * stride_[2])});
    }

    // mm from a cell to its neighbour.
    double StepLength(const Cell& step) const
    {
        return Length({step[0] * edge_[0], step[1] * edge_[1], step[2] * edge_[2]});
    }

private:
    const Volume& volume_;
    int stride_[3], size_[3];
    double edge_[3];
};

using Cell = CoarseValues::Cell;

Cell Next(const Cell& cell, const Cell& step) { return {cell[0] + step[0], cell[1] + step[1], cell[2] + step[2]}; }

// The 26 neighbours of a cell; the first eight lie in its slice.
std::vector<Cell> Neighbours()
{
    std::vector<Cell> steps;
    for (const int z : {0, -1, 1})
        for (int y = -1; y <= 1; ++y)
            for (int x = -1; x <= 1; ++x)
                if (x != 0 || y != 0 || z != 0)
                    steps.push_back({x, y, z});
    return steps;
}

// Which cells of a slice lie outside the body: what is no tissue and connected with the slice's border.
std::vector<bool> OutsideOf(const CoarseValues& values, int slice)
{
    const int width = values.Size(0), height = values.Size(1);
    std::vector<bool> outside(size_t(width) * size_t(height));
    std::vector<Cell> open;
    const auto visit = [&](int x, int y)
    {
        const Cell cell = {x, y, slice};
        if (!values.Has(cell) || values.At(cell) > kTissueAbove)
            return;
        const size_t index = size_t(y) * size_t(width) + size_t(x);
        if (outside[index])
            return;
        outside[index] = true;
        open.push_back(cell);
    };
    for (int x = 0; x < width; ++x)
    {
        visit(x, 0);
        visit(x, height - 1);
    }
    for (int y = 0; y < height; ++y)
    {
        visit(0, y);
        visit(width - 1, y);
    }
    while (!open.empty())
    {
        const Cell cell = open.back();
        open.pop_back();
        visit(cell[0] - 1, cell[1]);
        visit(cell[0] + 1, cell[1]);
        visit(cell[0], cell[1] - 1);
        visit(cell[0], cell[1] + 1);
    }
    return outside;
}

// How far air reaches from a cell, mm.
double AirAlong(const CoarseValues& values, Cell cell, const Cell& step, double air)
{
    const double length = values.StepLength(step);
    double reach = 0;
    for (cell = Next(cell, step); reach < kFarthestWall && values.Has(cell) && values.At(cell) < air;
         cell = Next(cell, step))
        reach += length;
    return reach;
}

// Whether tissue stands within reach, and is thicker than a shell.
bool HasWall(const CoarseValues& values, Cell cell, const Cell& step)
{
    const double length = values.StepLength(step);
    double way = 0, tissue = 0;
    for (cell = Next(cell, step); way < kFarthestWall && values.Has(cell); cell = Next(cell, step), way += length)
    {
        tissue = values.At(cell) > kTissueAbove ? tissue + length : 0;
        if (tissue >= kWallThickness)
            return true;
    }
    return false;
}

struct Candidate
{
    Cell cell;
    Cell sight;
    double score;
};

// The best place in the air of a volume, if there is one inside the body.
std::optional<Candidate> BestPlace(const CoarseValues& values, double air)
{
    const std::vector<Cell> steps = Neighbours();
    std::optional<Candidate> best;
    for (int z = 0; z < values.Size(2); ++z)
    {
        const std::vector<bool> outside = OutsideOf(values, z);
        for (int y = 0; y < values.Size(1); ++y)
        {
            for (int x = 0; x < values.Size(0); ++x)
            {
                const Cell cell = {x, y, z};
                if (!(values.At(cell) < air) || outside[size_t(y) * size_t(values.Size(0)) + size_t(x)])
                    continue;
                const auto walls = std::count_if(steps.begin(), steps.begin() + 8,
                                                 [&](const Cell& step) { return HasWall(values, cell, step); });
                if (walls < kLeastWalls)
                    continue;
                double room = kRoomy, sight = 0;
                Cell towards = steps.front();
                for (const Cell& step : steps)
                {
                    const double reach = AirAlong(values, cell, step, air);
                    room = std::min(room, reach);
                    if (reach > sight)
                    {
                        sight = reach;
                        towards = step;
                    }
                    if (room == 0)
                        break;
                }
                const double score = kRoomBeforeSight * room + std::min(sight, kFarSight);
                if (room > 0 && (!best || score > best->score))
                    best = Candidate{cell, towards, score};
            }
        }
    }
    return best;
}

// To the middle of the volume from before, above and to the right of the patient, a little inside the volume.
InsideView ViewFromTheFront(const Grid& grid, Vec3 up)
{
    const Vec3 index = {0.5 * (grid.sizeX - 1), 0.5 * (grid.sizeY - 1), 0.5 * (grid.sizeZ - 1)};
    const Vec3 centre = IndexToPatient(grid, index);
    constexpr double kDepth = 0.95; // of the way from the middle to the face
    const Vec3 front = Unit({-1, -1, 1});
    double farthest = 0;
    for (double way = 1;; ++way)
    {
        const Vec3 place = PatientToIndex(grid, centre + way * front);
        if (!(place.x >= 0 && place.y >= 0 && place.z >= 0 && place.x <= grid.sizeX - 1 && place.y <= grid.sizeY - 1 &&
              place.z <= grid.sizeZ - 1))
            break;
        farthest = way;
    }
    return InsideViewOf(centre + kDepth * farthest * front, -1.0 * front, up);
}
} // namespace

InsideView ViewInsideCavity(const Volume& volume, Vec3 up)
{
    if (HoldsHounsfieldUnits(volume))
    {
        const CoarseValues values(volume);
        for (const double air : kAirBelow)
            if (const std::optional<Candidate> best = BestPlace(values, air))
                return InsideViewOf(values.Place(best->cell),
                                    values.Place(Next(best->cell, best->sight)) - values.Place(best->cell), up);
    }
    return ViewFromTheFront(volume.grid, up);
}
} // namespace corvane::host
