#ifndef CORVANE_HOST_TURNTABLE_H
#define CORVANE_HOST_TURNTABLE_H

#include "view.h"

namespace corvane::host
{
// Views of a full turn of the eye round the patient, evenly spaced, the first as the angles say. The axis is the
// upward one of `start` before its elevation.
std::vector<View> TurntableViews(const View& start, double azimuth, double elevation, double roll, int count);
} // namespace corvane::host

#endif
