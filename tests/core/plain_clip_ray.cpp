#include "plain_clip_ray.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane::tests
{
namespace
{
using core::Vec3d;

struct PlainBox
{
    double min[3], max[3];
};

struct PlainRay
{
    double origin[3], direction[3];
};

PlainBox PlainOf(core::Vec3f low, core::Vec3f high) { return {{low.x, low.y, low.z}, {high.x, high.y, high.z}}; }

PlainRay PlainOf(core::Vec3f origin, core::Vec3f direction, int)
{
    return {{origin.x, origin.y, origin.z}, {direction.x, direction.y, direction.z}};
}

Vec3d At(const PlainRay& ray, double t)
{
    return {ray.origin[0] + t * ray.direction[0], ray.origin[1] + t * ray.direction[1],
            ray.origin[2] + t * ray.direction[2]};
}

// The points of a ray, from its start on, that lie between the faces of all axes: from `entry` on, if any.
bool Enters(const PlainBox& box, const PlainRay& ray, double& entry, double& margin)
{
    entry = 0;
    double leaves = std::numeric_limits<double>::infinity();
    for (int axis = 0; axis < 3; ++axis)
    {
        const double toMin = box.min[axis] - ray.origin[axis], toMax = box.max[axis] - ray.origin[axis];
        if (toMin > toMax)
            return false; // nothing lies between such faces
        if (ray.direction[axis] == 0)
        {
            if (toMin > 0 || toMax < 0)
                return false;
            continue;
        }
        const double a = toMin / ray.direction[axis], b = toMax / ray.direction[axis];
        entry = std::max(entry, std::min(a, b));
        leaves = std::min(leaves, std::max(a, b));
    }
    margin = std::min(margin, std::abs(leaves - entry));
    return entry <= leaves;
}

// Where it leaves again, by the axes along which it moves at all; after 10000 in any case.
bool Leaves(const PlainBox& box, const PlainRay& ray, double& exit, double& margin)
{
    exit = 10000.0;
    for (int axis = 0; axis < 3; ++axis)
    {
        if (ray.direction[axis] > double(0.0001f))
            exit = std::min(exit, (box.max[axis] - ray.origin[axis]) / ray.direction[axis]);
        if (ray.direction[axis] < -double(0.0001f))
            exit = std::min(exit, (box.min[axis] - ray.origin[axis]) / ray.direction[axis]);
    }
    margin = std::min(margin, std::abs(exit));
    return exit >= 0;
}

Vec3d IndexOf(const core::VolumeGeometry& geometry, Vec3d patient)
{
    using core::Dot, core::ToDouble;
    const Vec3d q = patient - ToDouble(geometry.origin);
    const double t = Dot(q, ToDouble(geometry.normal)) / geometry.sliceInFrame.z;
    return {(Dot(q, ToDouble(geometry.directions.row)) - geometry.sliceInFrame.x * t) / geometry.spacing.x,
            (Dot(q, ToDouble(geometry.directions.column)) - geometry.sliceInFrame.y * t) / geometry.spacing.y,
            t / geometry.spacing.z};
}
} // namespace

PlainClip ClipPlainly(const core::VolumeGeometry& geometry, core::Vec3f patientOrigin, core::Vec3f indexOrigin,
                      core::Vec3f patientDirection, core::Vec3f indexDirection, const core::Box& box)
{
    PlainClip clip = {};
    clip.margin = std::numeric_limits<double>::infinity();
    const PlainBox patientBox = PlainOf(box.min, box.max);
    const PlainBox indexBox = PlainOf(geometry.lowerBound, geometry.upperBound);
    const PlainRay patientRay = PlainOf(patientOrigin, patientDirection, 0);
    const PlainRay indexRay = PlainOf(indexOrigin, indexDirection, 0);

    double patientEntry, patientExit, indexEntry, indexExit;
    if (!Enters(patientBox, patientRay, patientEntry, clip.margin) ||
        !Leaves(patientBox, patientRay, patientExit, clip.margin) ||
        !Enters(indexBox, indexRay, indexEntry, clip.margin) || !Leaves(indexBox, indexRay, indexExit, clip.margin))
        return clip;

    clip.entry = At(indexRay, indexEntry);
    clip.entryDistance = indexEntry;
    clip.exit = At(indexRay, indexExit);
    clip.exitDistance = indexExit;
    const Vec3d boxEntry = IndexOf(geometry, At(patientRay, patientEntry));
    const Vec3d boxExit = IndexOf(geometry, At(patientRay, patientExit));
    const Vec3d start = core::ToDouble(indexOrigin);
    if (core::Length(boxEntry - start) > clip.entryDistance)
    {
        clip.entry = boxEntry;
        clip.entryDistance = core::Length(boxEntry - start);
    }
    if (core::Length(boxExit - start) < clip.exitDistance)
    {
        clip.exit = boxExit;
        clip.exitDistance = core::Length(boxExit - start);
    }
    clip.margin = std::min(clip.margin, std::abs(clip.exitDistance - clip.entryDistance));
    clip.hits = clip.entryDistance <= clip.exitDistance;
    return clip;
}
} // namespace corvane::tests
