#ifndef CORVANE_TESTS_CORE_PLAIN_CLIP_RAY_H
#define CORVANE_TESTS_CORE_PLAIN_CLIP_RAY_H

#include "core/geometry.h"

namespace corvane::tests
{
// Clipping of a ray as it is defined, in double precision and in the plainest way, to compare with.
struct PlainClip
{
    bool hits;
    core::Vec3d entry, exit;
    double entryDistance, exitDistance;
    // By how much the nearest of all decisions was taken: below a tolerance, single precision may decide otherwise.
    double margin;
};

PlainClip ClipPlainly(const core::VolumeGeometry& geometry, core::Vec3f patientOrigin, core::Vec3f indexOrigin,
                      core::Vec3f patientDirection, core::Vec3f indexDirection, const core::Box& box);
} // namespace corvane::tests

#endif
