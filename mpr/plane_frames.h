#ifndef CORVANE_MPR_PLANE_FRAMES_H
#define CORVANE_MPR_PLANE_FRAMES_H

#include "corvane/Records.h"

namespace corvane::mpr
{
// The three reconstruction planes: a shared point and a frame each. Zero until first reset.
class PlaneFrames
{
public:
    // The standard frames; the shared point stays.
    void Reset();

    // The frame of a plane, null for an unknown one.
    const KsPlaneFrame* FrameOf(KsMPRType type) const;

    // Turns the two other planes about the normal of one, by an angle in radians. False, with nothing changed, for an
    // unknown plane or an angle that is not finite.
    bool Rotate(KsMPRType type, float angle);

    KsMPRParam& Params() { return params_; }

private:
    KsMPRParam params_ = {};
};
} // namespace corvane::mpr

#endif
