#include "planes.h"

#include <cmath>

namespace corvane::fuzz
{
namespace
{
constexpr int kSides[] = {16, 8, 1, 2, 3, 5, 7, 9, 13, 24, 31, 33, 40, 0, 64, 4096};
constexpr Size kRefusedSizes[] = {
    {-1, 7},        {7, -3},       {-2, -2}, {70000, 70000}, {INT32_MAX, INT32_MAX}, {INT32_MIN, INT32_MIN},
    {INT32_MIN, 1}, {3, INT32_MIN}};

template <class Real>
void FillPoint(Session& session, Real* point)
{
    for (int axis = 0; axis < 3; ++axis)
        point[axis] = Real(session.input.Number(-60.0f, 60.0f));
}

void FillCross(const double* a, const double* b, double* cross)
{
    for (int axis = 0; axis < 3; ++axis)
        cross[axis] = a[(axis + 1) % 3] * b[(axis + 2) % 3] - a[(axis + 2) % 3] * b[(axis + 1) % 3];
}

void FillFrame(Session& session, KsPlaneFrame& frame)
{
    FillDirections(session, frame.rowDirection, frame.columnDirection);
    FillCross(frame.rowDirection, frame.columnDirection, frame.normal);
}

// What cameras and views are made of: the image's axes give its direction and what is up in it.
void FillAim(Session& session, float* point, float* direction, float* up)
{
    double row[3], column[3], normal[3];
    FillDirections(session, row, column);
    FillCross(row, column, normal);
    std::copy_n(normal, 3, direction);
    std::copy_n(column, 3, up);
    FillPoint(session, point);
}
} // namespace

Size MakeSize(Session& session)
{
    const int rows = std::min(kSides[session.input.Below(16)], session.mostPixels);
    return {rows, std::min(kSides[session.input.Below(16)], session.mostPixels / std::max(rows, 1))};
}

Size MakeSizeToRefuse(Session& session)
{
    return session.input.OneIn(16) ? kRefusedSizes[session.input.Below(8)] : MakeSize(session);
}

void FillDirections(Session& session, double* row, double* column)
{
    constexpr double kAxes[4][2][3] = {
        {{1, 0, 0}, {0, 1, 0}}, {{0, 1, 0}, {0, 0, -1}}, {{1, 0, 0}, {0, 0, -1}}, {{0.6, 0, 0.8}, {0, 1, 0}}};
    Input& input = session.input;
    const int kind = input.Below(8);
    std::copy_n(kAxes[kind % 4][0], 3, row);
    std::copy_n(kAxes[kind % 4][1], 3, column);
    if (kind == 4) // turned about z, then out of the plane
    {
        const double a = double(input.Byte()) / 40.0, b = double(input.Byte()) / 40.0;
        const double turnedRow[3] = {std::cos(a), std::sin(a), 0};
        const double turnedColumn[3] = {-std::sin(a) * std::cos(b), std::cos(a) * std::cos(b), std::sin(b)};
        std::copy_n(turnedRow, 3, row);
        std::copy_n(turnedColumn, 3, column);
    }
    else if (kind == 5)
        std::copy_n(row, 3, column); // parallel
    else if (kind == 6)
        std::fill_n(input.Below(2) ? row : column, 3, 0.0);
    else if (kind == 7)
        for (double* const part : {row, row + 1, row + 2, column, column + 1, column + 2})
            *part = double(input.Number(-1.0f, 1.0f));
}

PnImageParam MakePlane(Session& session)
{
    PnImageParam plane = {};
    FillDirections(session, plane.rowDirection, plane.columnDirection);
    FillPoint(session, plane.position);
    plane.rowSpacing = double(session.input.Number(0.2f, 4.0f));
    plane.columnSpacing = double(session.input.Number(0.2f, 4.0f));
    return plane;
}

PnImageParam MakePlane(Session& session, Size size)
{
    PnImageParam plane = MakePlane(session);
    plane.rows = uint32_t(size.rows);
    plane.columns = uint32_t(size.columns);
    return plane;
}

KsSliceParam MakeSlice(Session& session)
{
    KsSliceParam slice = {};
    FillDirections(session, slice.rowDirection, slice.columnDirection);
    FillPoint(session, slice.position);
    slice.sideLength = double(session.input.Number(0.5f, 40.0f));
    session.workLeft -= int(kMostPixels) * 8;
    return slice;
}

KsCamera MakeCamera(Session& session)
{
    KsCamera camera;
    FillAim(session, camera.center, camera.direction, camera.up);
    return camera;
}

KsViewPoint MakeView(Session& session)
{
    KsViewPoint view;
    FillAim(session, view.eye, view.direction, view.up);
    return view;
}

KsMPRParam MakeFrames(Session& session)
{
    KsMPRParam frames = {};
    FillPoint(session, frames.origin);
    FillFrame(session, frames.transverse);
    FillFrame(session, frames.coronal);
    FillFrame(session, frames.sagittal);
    return frames;
}

KsMPRType MakeType(Session& session) { return KsMPRType(session.input.Integer(1, 3)); }

BlendImages MakeBlendImages(Session& session)
{
    constexpr int kMost = 6;
    Input& input = session.input;
    KsBlendImage* const images = session.memory.Of<KsBlendImage>(kMost);
    uint32_t* const pixels = session.memory.Of<uint32_t>(16 * kMostPixels, 0x40a0ff00);
    const int count = input.Below(kMost + 1);
    for (int n = 0; n < count; ++n)
    {
        for (auto& corner : images[n].corners)
            for (int32_t& place : corner)
                place = input.Integer(-5, 40);
        images[n].pixels = input.OneIn(8) ? nullptr : pixels;
        FillDirections(session, images[n].rowDirection, images[n].columnDirection);
        FillPoint(session, images[n].position);
    }
    if (input.OneIn(8))
        return {nullptr, 3};
    return {images, input.OneIn(8) ? -count : count};
}
} // namespace corvane::fuzz
