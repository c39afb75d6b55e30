#ifndef CORVANE_HOST_PHANTOM_ANATOMY_H
#define CORVANE_HOST_PHANTOM_ANATOMY_H

#include "phantom_shapes.h"

#include <cstdint>
#include <vector>

namespace corvane::host
{
// The labels of the phantom.
enum PhantomLabel : uint8_t
{
    PhantomRest = 0, // air around the body, the table
    PhantomBody = 1, // skin, fat, muscle and the organs without a label of their own
    PhantomBone = 2,
    PhantomVessel = 3,  // filled with contrast agent
    PhantomAirTube = 4, // colon and airway: their air, not their wall
    PhantomLiver = 5,   // on the patient's right
    PhantomLung = 6,
    PhantomMarker = 7, // a bead at the patient's left, in front, near the top
};

// One tissue: the solids that it fills, in patient mm. No solids: the whole body.
struct Tissue
{
    double value; // HU
    uint8_t label;
    double depth = -1000; // only where the body is at least this deep, mm below the skin
    std::vector<Ellipsoid> ellipsoids = {};
    std::vector<Capsule> capsules = {};
    std::vector<Cylinder> cylinders = {};
};

// The body, cut off above and below by the volume's own ends.
Ellipsoid PhantomBodyShape();

// All tissues in the order in which they are painted, each over those before it.
std::vector<Tissue> PhantomAnatomy();
} // namespace corvane::host

#endif
