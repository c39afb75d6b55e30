#include "projection.h"

#include <algorithm>

#include "error.h"
#include "plane.h"
#include "quiet_output.h"
#include "view.h"

namespace corvane::host
{
namespace
{
constexpr double kClearance = 1; // mm by which rays start before the volume

void Require(bool done)
{
    if (!done)
        throw Error(ErrorKind::Computation, "the library refuses this projection; memory may be short");
}

Vec3 NormalOf(const PnImageParam& plane) { return Unit(Cross(RowDirection(plane), ColumnDirection(plane))); }

// An image whose rays start `distance` mm behind the plane.
//   start  receives the plane on which they start
ProjectedImage EmptyImage(const PnImageParam& plane, double distance, PnImageParam& start)
{
    start = Shifted(plane, NormalOf(plane), distance);
    return {plane, std::vector<int16_t>(size_t(plane.rows) * plane.columns)};
}
} // namespace

KsImageData ProjectedImage::Record()
{
    KsImageData record = {};
    record.values = values.data();
    record.rows = plane.rows;
    record.columns = plane.columns;
    record.param = plane;
    return record;
}

Projector::Projector(const VolumeView& volume)
    : grid_(volume.PaddedGrid()), shown_{0, 1, 2, noColour_, noOpacity_, 1.0f, 1, {}}
{
    // A label takes part when it has a table; what stands in the table does not matter here.
    VolumePalette palette = {};
    for (int label = 0; label < 64; ++label)
        palette.entries[label] = &shown_;
    Require(renderer_.InitData(volume.Data(), volume.Labels(), palette));
}

void Projector::SetVisibleBox(const PatientBox& box)
{
    const float from[3] = {float(box.from.x), float(box.from.y), float(box.from.z)};
    const float to[3] = {float(box.to.x), float(box.to.y), float(box.to.z)};
    Require(renderer_.SetVisibleBox(from, to));
}

ProjectedImage Projector::ThroughVolume(Projection projection, const PnImageParam& plane)
{
    double nearest = 0;
    for (const Vec3& corner : CornersOf(grid_))
        nearest = std::min(nearest, Dot(corner - FirstPixel(plane), NormalOf(plane)));
    PnImageParam start;
    ProjectedImage image = EmptyImage(plane, nearest - kClearance, start);
    KsImageVAL record = {image.values.data(), start};
    const QuietOutput quiet;
    Require(projection == Projection::Maximum   ? renderer_.ImagingMIP(&record)
            : projection == Projection::Average ? renderer_.ImagingAIP(&record)
                                                : renderer_.ImagingMinIP(&record));
    return image;
}

ProjectedImage Projector::ThroughSlab(Projection projection, const PnImageParam& plane, double thickness)
{
    PnImageParam start;
    ProjectedImage image = EmptyImage(plane, -0.5 * thickness, start);
    KsImageVAL record = {image.values.data(), start};
    const float depth = float(thickness);
    const QuietOutput quiet;
    Require(projection == Projection::Maximum   ? renderer_.ImagingMIP(&record, depth)
            : projection == Projection::Average ? renderer_.ImagingAIP(&record, depth)
                                                : renderer_.ImagingMinIP(&record, depth));
    return image;
}
} // namespace corvane::host
