#ifndef CORVANE_RENDER3D_KERNELS_RAY_WALK_H
#define CORVANE_RENDER3D_KERNELS_RAY_WALK_H

#include "core/simd/pack.h"
#include "kernels.h"

// The walk of a pack of rays over the block tree, cell by cell.
namespace corvane::KERNEL_ISA
{
constexpr float kBoundsExit = 0.0001f;      // a smaller direction component does not bound a cell
constexpr float kFarthestCell = 10000.0f;   // voxels
constexpr float kSkipNudge = 0.001f;        // how far behind an empty cell's face a ray goes on
constexpr float kMostRaySteps = 1048576.0f; // to where a ray ends at the latest

// Rays in voxel-index space.
struct RayPack
{
    VectorPack start, direction, step, nudge;
    FloatPack stepLength, exitDistance;
};

// Where rays stand, and how often each may still jump. A ray crosses at most half as many cell faces along an axis as
// there are voxels, so one that jumps more often than it has voxels to cross is turning on the spot.
struct PlacePack
{
    VectorPack position;
    FloatPack distance;
    IntPack jumpsLeft;
};

// Cells around voxels, and whether rays are to be sampled in them or jump over them.
struct CellPack
{
    IntPack edge; // voxels
    IntPack sampled;
};

inline FloatPack Smaller(FloatPack a, FloatPack b) { return a < b ? a : b; }

// Where rays end that leave at `exit`: so far away that only volumes whose spacings lie thousands of times apart have
// rays that take as many steps to leave.
inline FloatPack EndOfRay(FloatPack exit, FloatPack entry, FloatPack stepLength)
{
    return Smaller(entry + kMostRaySteps * stepLength, exit);
}

// For how many steps rays may be sampled before asking again: until they leave the leaf, at least one.
inline IntPack StepsUntil(FloatPack exit, FloatPack distance, FloatPack stepLength)
{
    constexpr float kMostSteps = 1000000.0f; // more than any cell holds; the ray ends at its exit anyway
    const FloatPack quotient = (exit - distance) / stepLength;
    const FloatPack steps = quotient > 1.0f ? Smaller(quotient, FloatPack{} + kMostSteps) : FloatPack{} + 1.0f;
    const IntPack whole = ToInt(steps);
    return whole - (ToFloat(whole) < steps); // rounded up: a comparison gives -1
}
} // namespace corvane::KERNEL_ISA

#endif
