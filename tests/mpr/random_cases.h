#ifndef CORVANE_TESTS_MPR_RANDOM_CASES_H
#define CORVANE_TESTS_MPR_RANDOM_CASES_H

#include "tests/core/random.h"
#include "tests/test_volume.h"

namespace corvane::tests
{
// Three unit vectors at right angles, in any orientation.
struct RandomFrame
{
    double row[3], column[3], normal[3];
};
RandomFrame MakeRandomFrame(Random& random);

// Gives a volume unequal spacings, an origin, and directions along the axes or oblique, right- or left-handed, with a
// slice direction along the normal or tilted by up to 40 degrees.
void PlaceAtRandom(Random& random, KsVolumeData& volume);

// The patient position of a voxel, in double precision.
void PatientPlace(const KsVolumeData& volume, const double* index, double* patient);

// A plane near a volume: through it, across its border or past it; along its axes, along those of patient space or
// oblique.
PnImageParam MakeRandomPlane(Random& random, const KsVolumeData& volume);
} // namespace corvane::tests

#endif
