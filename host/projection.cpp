#include "projection.h"

#include <memory>

#include "error.h"
#include "label_byte.h"
#include "plane.h"
#include "quiet_output.h"

namespace corvane::host
{
namespace
{
void Require(bool done)
{
    if (!done)
        throw Error(ErrorKind::Computation, "the library refuses this projection; memory may be short");
}

// The picture's plane, moved along the line of sight.
PnImageParam Through(Vec3 point, const PnImageParam& plane, Vec3 direction)
{
    return Shifted(plane, direction, Dot(point - FirstPixel(plane), direction));
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

// The cut is the one bit of a label that matters to projections.
Projector::Projector(const VolumeView& volume) : scene_(volume, kCutBit) { tables_.entries[0] = &shown_; }

PnImageParam Projector::PlaneOf(const Framing& framing) { return InTheMiddle(framing, scene_.Aim(framing)); }

PnImageParam Projector::InTheMiddle(const Framing& framing, const PnImageParam& plane)
{
    return Through(framing.middle.value_or(scene_.Middle()), plane, framing.view.direction);
}

ProjectedImage Projector::ThroughVolume(Projection projection, const Framing& framing)
{
    const PnImageParam plane = scene_.Aim(framing);
    ProjectedImage image = {InTheMiddle(framing, plane), std::vector<int16_t>(size_t(framing.rows) * framing.columns)};
    KsImageVAL record = {image.values.data(), plane};
    const int rows = int(framing.rows), columns = int(framing.columns);
    const QuietOutput quiet;
    if (framing.middle)
    {
        Render3D& renderer = scene_.RendererBeside(tables_);
        Require(projection == Projection::Maximum   ? renderer.ImagingMIP(&record)
                : projection == Projection::Average ? renderer.ImagingAIP(&record)
                                                    : renderer.ImagingMinIP(&record));
    }
    else
    {
        Engine3D& engine = scene_.Engine();
        Require(projection == Projection::Maximum ? engine.ImagingMIP(rows, columns, record.values, false, &record)
                : projection == Projection::Average
                    ? engine.ImagingAIP(rows, columns, record.values, false, &record)
                    : engine.ImagingMinIP(rows, columns, record.values, false, &record));
    }
    return image;
}

ProjectedImage Projector::ThroughSlab(Projection projection, const PnImageParam& plane, double thickness)
{
    KsImageData record = {};
    const float depth = float(thickness);
    Engine3D& engine = scene_.Engine();
    const QuietOutput quiet;
    const bool done = projection == Projection::Maximum   ? engine.ImagingMIP(plane, depth, &record)
                      : projection == Projection::Average ? engine.ImagingAIP(plane, depth, &record)
                                                          : engine.ImagingMinIP(plane, depth, &record);
    const std::unique_ptr<int16_t[]> owned(record.ownsValues ? record.values : nullptr);
    Require(done);
    return {plane, std::vector<int16_t>(record.values, record.values + record.valueCount)};
}
} // namespace corvane::host
