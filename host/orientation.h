#ifndef CORVANE_HOST_ORIENTATION_H
#define CORVANE_HOST_ORIENTATION_H

#include "vec3.h"

#include <string>

namespace corvane::host
{
// The letters of a direction in patient space: R or L, A or P, I or S. The strongest comes first; the others follow
// where they turn the direction by more than 15 degrees, so that an oblique direction reads "LP" or "SAL".
std::string DirectionLetters(Vec3 direction);
} // namespace corvane::host

#endif
