#ifndef CORVANE_MPR_PLANE_ROWS_H
#define CORVANE_MPR_PLANE_ROWS_H

#include "core/geometry.h"
#include "core/views.h"

#include <cstdint>
#include <optional>

namespace corvane::mpr
{
// True for an image plane that can be walked: at least one and at most 2^31 - 1 rows and columns.
bool HasPixels(const PnImageParam& plane);

// The rows of an image plane, one after another, as rays through the volume.
class PlaneRows
{
public:
    PlaneRows(const core::VolumeGeometry& geometry, const PnImageParam& plane);

    // The pixels of the current row that lie in the volume.
    struct Span
    {
        int32_t firstColumn;
        core::PixelRow pixels;
    };

    // For stored values; nothing when the row misses the volume.
    std::optional<Span> ValueSpan() const;

    // For labels: clipped by the same rule with the row's vectors in another order, which shortens or shifts the span.
    // Hosts have come to rely on the result.
    std::optional<Span> LabelSpan() const;

    // On to the next row.
    void Advance();

private:
    std::optional<Span> SpanBetween(float entryDistance, float exitDistance) const;

    const core::VolumeGeometry& geometry_;
    int32_t columns_;
    core::Vec3f patientStart_;     // first pixel of the row
    core::Vec3f patientAdvance_;   // from one row to the next
    core::Vec3f patientDirection_; // of the row
    core::Vec3f indexStart_;
    core::Vec3f indexDirection_; // a unit vector of index space
    core::Vec3f indexStep_;      // from one pixel to the next
    float indexStepLength_;
};
} // namespace corvane::mpr

#endif
