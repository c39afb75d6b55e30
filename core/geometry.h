#ifndef CORVANE_CORE_GEOMETRY_H
#define CORVANE_CORE_GEOMETRY_H

#include "corvane/Records.h"
#include "views.h"

#include <optional>

// Voxel index <-> patient space, boxes, clipping a ray. Single precision throughout.
namespace corvane::core
{
struct Box
{
    Vec3f min, max;
};

// What every renderer derives from a volume record. The layout is shared with GPU renderers.
struct VolumeGeometry
{
    Vec3f origin;                 // patient position of voxel (0, 0, 0)
    Vec3f spacing;                // mm
    Directions directions;        // as the host gave them
    Vec3f normal;                 // row x column, not normalised
    Vec3f sliceInFrame;           // slice direction along row, column and normal
    float minSpacing;             // mm
    Vec3f relativeSpacing;        // spacing / minSpacing
    Vec3f inverseRelativeSpacing; // minSpacing / spacing
    Box boundingBox;              // patient space, around the corners
    Vec3f corners[8];             // patient space, 1.1 voxels inside the outermost voxel centres
    Box visibleBox;               // the bounding box widened by 0.1 mm, until a host sets another
    Vec3f lowerBound;             // voxels: samples between the bounds have all their neighbours
    Vec3f upperBound;
};
static_assert(sizeof(VolumeGeometry) == 70 * sizeof(float));

// True for a volume that can be taken: a slice table without gaps, and at least one voxel along each axis.
bool IsLoadable(const KsVolumeData& volume);

bool SameSizes(const KsVolumeData& a, const KsVolumeData& b);

// A host's voxels as kernels read them; of a volume that can be taken.
VolumeView VolumeViewOf(const KsVolumeData& volume);

// A host's labels as kernels read them. Sizes beyond those of a volume are cut to them: nobody reads that far.
LabelView LabelViewOf(const KsVolumeMark& mark);

// Fills a geometry. With a spacing that is not positive the corners keep what they held and the boxes are made from
// those, so a new object has empty boxes.
void PrepareVolumeGeometry(const KsVolumeData& volume, VolumeGeometry& geometry);

// Patient position of a voxel index. Slices follow the slice direction, so a tilted stack stays exact.
//   spacing  mm
//   index    (i, j, k) in voxels, fractions allowed; (0, 0, 0) is the centre of the first voxel
//   returns  patient mm, or nothing when a spacing is not positive
// Source: DICOM PS3.3 C.7.6.2.1.1 for a row and a column; the slice term is ours.
std::optional<Vec3f> IndexToPatient(Vec3f origin, const Directions& directions, Vec3f spacing, Vec3f index);

// The inverse, for a point in patient mm. Not finite where the geometry is degenerate.
Vec3f PatientToIndex(const VolumeGeometry& geometry, Vec3f patient);

// The same for a displacement: its linear part, in the precision of the displacement.
Vec3d PatientToIndexStep(const VolumeGeometry& geometry, Vec3d patientStep);
Vec3f PatientToIndexStep(const VolumeGeometry& geometry, Vec3f patientStep);

// A direction divided by its length plus 1e-6, so that a zero direction stays zero.
Vec3f UnitOrZero(Vec3f direction);

// The box around eight points.
Box BoundingBoxOfCorners(const Vec3f (&corners)[8]);

// The part of a ray that can be sampled: points in voxel-index space and their distances, in voxels, from the ray's
// index origin.
struct ClippedRay
{
    Vec3f entry;
    float entryDistance;
    Vec3f exit;
    float exitDistance;
};

// Clips a ray to a box in patient space and to the sampling bounds in voxel-index space.
//   patientOrigin, patientDirection  the ray in patient space
//   indexOrigin, indexDirection      the same ray in voxel-index space; its bounds are met at ray parameters, which
//                                    are distances when the direction is a unit vector
//   returns                          nothing for a ray that misses either, leaves it behind its start, or holds a
//                                    number that is not finite, and for a spacing that is not positive
std::optional<ClippedRay> ClipRay(const VolumeGeometry& geometry, Vec3f patientOrigin, Vec3f indexOrigin,
                                  Vec3f patientDirection, Vec3f indexDirection, const Box& box);
} // namespace corvane::core

#endif
