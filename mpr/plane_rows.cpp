#include "plane_rows.h"

#include <cmath>

using namespace corvane::core;

namespace corvane::mpr
{
bool HasPixels(const PnImageParam& plane)
{
    return plane.rows >= 1 && plane.rows <= INT32_MAX && plane.columns >= 1 && plane.columns <= INT32_MAX;
}

PlaneRows::PlaneRows(const VolumeGeometry& geometry, const PnImageParam& plane)
    : geometry_(geometry), columns_(int32_t(plane.columns))
{
    const Vec3d row = VecOf(plane.rowDirection), column = VecOf(plane.columnDirection);
    patientStart_ = ToFloat(VecOf(plane.position));
    patientAdvance_ = ToFloat(plane.rowSpacing * column);
    patientDirection_ = ToFloat(row);
    indexStart_ = PatientToIndex(geometry, patientStart_);
    indexDirection_ = UnitOrZero(ToFloat(PatientToIndexStep(geometry, row)));
    indexStep_ = ToFloat(PatientToIndexStep(geometry, plane.columnSpacing * row));
    indexStepLength_ = Length(indexStep_);
}

std::optional<PlaneRows::Span> PlaneRows::ValueSpan() const
{
    const std::optional<ClippedRay> ray =
        ClipRay(geometry_, patientStart_, indexStart_, patientDirection_, indexDirection_, geometry_.visibleBox);
    return ray ? SpanBetween(ray->entryDistance, ray->exitDistance) : std::nullopt;
}

std::optional<PlaneRows::Span> PlaneRows::LabelSpan() const
{
    const std::optional<ClippedRay> ray =
        ClipRay(geometry_, patientStart_, patientDirection_, indexDirection_, indexStart_, geometry_.visibleBox);
    return ray ? SpanBetween(ray->entryDistance, ray->exitDistance) : std::nullopt;
}

void PlaneRows::Advance()
{
    patientStart_ = patientStart_ + patientAdvance_;
    indexStart_ = PatientToIndex(geometry_, patientStart_);
}

std::optional<PlaneRows::Span> PlaneRows::SpanBetween(float entryDistance, float exitDistance) const
{
    const float first = std::ceil(entryDistance / indexStepLength_);
    const float last = std::floor(exitDistance / indexStepLength_);
    // A step of length 0 makes quotients that are no numbers; they pass no comparison.
    if (!(first < float(columns_)) || !(last >= 0.0f))
        return std::nullopt;
    const int32_t firstColumn = first > 0.0f ? int32_t(first) : 0;
    const int32_t endColumn = last < float(columns_) ? int32_t(last) + 1 : columns_;
    if (firstColumn >= endColumn)
        return std::nullopt;
    return Span{firstColumn,
                {indexStart_ + float(firstColumn) * indexStep_, indexStep_,
                 (endColumn < columns_ ? endColumn : columns_) - firstColumn}};
}
} // namespace corvane::mpr
