#ifndef CORVANE_HOST_CAVITY_H
#define CORVANE_HOST_CAVITY_H

#include "view_path.h"
#include "volume.h"

namespace corvane::host
{
// A view to start an endoscopy with when nobody says where the eye is: in a roomy place of an air-filled cavity of the
// body, looking where it goes on farthest. In a volume without such a cavity, or without Hounsfield units, from before,
// above and to the right of the patient to the middle of the volume.
InsideView ViewInsideCavity(const Volume& volume, Vec3 up = {0, 0, 0});
} // namespace corvane::host

#endif
