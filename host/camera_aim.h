#ifndef CORVANE_HOST_CAMERA_AIM_H
#define CORVANE_HOST_CAMERA_AIM_H

#include "corvane/Engine3D.h"
#include "view.h"

namespace corvane::host
{
// Turns the engine's camera, the one that its render type selects, until it looks along a direction with `up` on top:
// to the nearest standard view, then to the side, up or down, and about the line of sight. Its axes are then those of
// the view but for the last bits of double precision.
void AimCamera(Engine3D& engine, const View& view);
} // namespace corvane::host

#endif
