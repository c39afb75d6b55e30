#include "plain_planes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane::tests
{
namespace
{
template <class Real>
Real DotOf(const Real* a, const Real* b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

float LengthOf(const float* a) { return std::sqrt(DotOf(a, a)); }

void ToPatient(const PlainGeometry& g, const float* index, float* patient)
{
    const float t = g.spacing[2] * index[2];
    const float a = g.sliceInFrame[0] * t + g.spacing[0] * index[0];
    const float b = g.sliceInFrame[1] * t + g.spacing[1] * index[1];
    const float h = g.sliceInFrame[2] * t;
    for (int axis = 0; axis < 3; ++axis)
        patient[axis] = g.origin[axis] + a * g.row[axis] + b * g.column[axis] + h * g.normal[axis];
}

void ToIndex(const PlainGeometry& g, const float* patient, float* index)
{
    const float q[3] = {patient[0] - g.origin[0], patient[1] - g.origin[1], patient[2] - g.origin[2]};
    const float t = DotOf(q, g.normal) / g.sliceInFrame[2];
    index[0] = (DotOf(q, g.row) - g.sliceInFrame[0] * t) / g.spacing[0];
    index[1] = (DotOf(q, g.column) - g.sliceInFrame[1] * t) / g.spacing[1];
    index[2] = t / g.spacing[2];
}

// A displacement in double precision, each result rounded to single.
void StepToIndex(const PlainGeometry& g, const double* step, float* index)
{
    const double normal[3] = {g.normal[0], g.normal[1], g.normal[2]};
    const double row[3] = {g.row[0], g.row[1], g.row[2]};
    const double column[3] = {g.column[0], g.column[1], g.column[2]};
    const double t = DotOf(step, normal) / double(g.sliceInFrame[2]);
    index[0] = float((DotOf(step, row) - double(g.sliceInFrame[0]) * t) / double(g.spacing[0]));
    index[1] = float((DotOf(step, column) - double(g.sliceInFrame[1]) * t) / double(g.spacing[1]));
    index[2] = float(t / double(g.spacing[2]));
}

// The parameter at which a ray enters a box, 0 from inside.
bool Enters(const float* low, const float* high, const float* start, const float* direction, float& entry)
{
    entry = 0.0f;
    float leaves = std::numeric_limits<float>::infinity();
    for (int axis = 0; axis < 3; ++axis)
    {
        if (low[axis] > high[axis])
            return false;
        if (direction[axis] == 0.0f)
        {
            if (start[axis] < low[axis] || start[axis] > high[axis])
                return false;
            continue;
        }
        const float atLow = (low[axis] - start[axis]) / direction[axis];
        const float atHigh = (high[axis] - start[axis]) / direction[axis];
        entry = std::max(entry, std::min(atLow, atHigh));
        leaves = std::min(leaves, std::max(atLow, atHigh));
    }
    return entry <= leaves;
}

bool Leaves(const float* low, const float* high, const float* start, const float* direction, float& exit)
{
    exit = 10000.0f;
    for (int axis = 0; axis < 3; ++axis)
    {
        if (direction[axis] > 0.0001f)
            exit = std::min(exit, (high[axis] - start[axis]) / direction[axis]);
        if (direction[axis] < -0.0001f)
            exit = std::min(exit, (low[axis] - start[axis]) / direction[axis]);
    }
    return exit >= 0.0f;
}

// The distance, in voxels, between a ray's index start and a point given by a parameter of the ray in patient space.
float IndexDistance(const PlainGeometry& g, const float* start, const float* direction, float parameter,
                    const float* indexStart)
{
    float patient[3], index[3];
    for (int axis = 0; axis < 3; ++axis)
        patient[axis] = start[axis] + parameter * direction[axis];
    ToIndex(g, patient, index);
    for (int axis = 0; axis < 3; ++axis)
        index[axis] -= indexStart[axis];
    return LengthOf(index);
}

bool Clip(const PlainGeometry& g, const float* start, const float* indexStart, const float* direction,
          const float* indexDirection, float& entry, float& exit)
{
    float boxEntry, boxExit;
    if (!Enters(g.clipLow, g.clipHigh, start, direction, boxEntry) ||
        !Leaves(g.clipLow, g.clipHigh, start, direction, boxExit) ||
        !Enters(g.boundLow, g.boundHigh, indexStart, indexDirection, entry) ||
        !Leaves(g.boundLow, g.boundHigh, indexStart, indexDirection, exit))
        return false;
    entry = std::max(entry, IndexDistance(g, start, direction, boxEntry, indexStart));
    exit = std::min(exit, IndexDistance(g, start, direction, boxExit, indexStart));
    return entry <= exit;
}

// Calls pixel(index of the pixel in the buffer, its place in voxels) for every pixel of the spans.
template <class Pixel>
void ForEachPixel(const PlainGeometry& g, const PnImageParam& plane, bool labels, const Pixel& pixel)
{
    float start[3], advance[3], direction[3], unit[3], step[3];
    double stepInPatient[3];
    for (int axis = 0; axis < 3; ++axis)
    {
        start[axis] = float(plane.position[axis]);
        advance[axis] = float(plane.rowSpacing * plane.columnDirection[axis]);
        direction[axis] = float(plane.rowDirection[axis]);
        stepInPatient[axis] = plane.columnSpacing * plane.rowDirection[axis];
    }
    StepToIndex(g, stepInPatient, step);
    StepToIndex(g, plane.rowDirection, unit);
    const float stepLength = LengthOf(step), unitLength = LengthOf(unit) + 0.000001f;
    for (float& component : unit)
        component /= unitLength;

    const int64_t columns = plane.columns;
    for (int64_t row = 0; row < int64_t(plane.rows); ++row)
    {
        float indexStart[3], entry, exit;
        ToIndex(g, start, indexStart);
        const bool hits = labels ? Clip(g, start, direction, unit, indexStart, entry, exit)
                                 : Clip(g, start, indexStart, direction, unit, entry, exit);
        const float first = std::ceil(entry / stepLength), last = std::floor(exit / stepLength);
        if (hits && first < float(columns) && last >= 0.0f)
        {
            int64_t column = std::max<int64_t>(0, int64_t(first));
            const int64_t end = last < float(columns) ? std::min(columns, int64_t(last) + 1) : columns;
            float place[3];
            for (int axis = 0; axis < 3; ++axis)
                place[axis] = indexStart[axis] + float(column) * step[axis];
            for (; column < end; ++column)
            {
                pixel(size_t(row * columns + column), place);
                for (int axis = 0; axis < 3; ++axis)
                    place[axis] += step[axis];
            }
        }
        for (int axis = 0; axis < 3; ++axis)
            start[axis] += advance[axis];
    }
}

float Between(float a, float b, float t) { return a + (b - a) * t; }
} // namespace

PlainGeometry PlainGeometryOf(const KsVolumeData& volume)
{
    PlainGeometry g = {};
    std::copy_n(volume.origin, 3, g.origin);
    std::copy_n(volume.spacing, 3, g.spacing);
    std::copy_n(volume.rowDirection, 3, g.row);
    std::copy_n(volume.columnDirection, 3, g.column);
    for (int axis = 0; axis < 3; ++axis)
    {
        const int next = (axis + 1) % 3, after = (axis + 2) % 3;
        g.normal[axis] = g.row[next] * g.column[after] - g.row[after] * g.column[next];
    }
    g.sliceInFrame[0] = DotOf(volume.sliceDirection, g.row);
    g.sliceInFrame[1] = DotOf(volume.sliceDirection, g.column);
    g.sliceInFrame[2] = DotOf(volume.sliceDirection, g.normal);

    const float size[3] = {float(volume.sizeX), float(volume.sizeY), float(volume.sizeZ)};
    const int farAlong[8][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
    for (int corner = 0; corner < 8; ++corner)
    {
        float index[3];
        for (int axis = 0; axis < 3; ++axis)
            index[axis] = farAlong[corner][axis] ? size[axis] - 1.0f - 1.1f : 1.1f;
        ToPatient(g, index, g.corners[corner]);
    }
    for (int axis = 0; axis < 3; ++axis)
    {
        g.boxLow[axis] = g.boxHigh[axis] = g.corners[0][axis];
        for (const auto& corner : g.corners)
        {
            g.boxLow[axis] = std::min(g.boxLow[axis], corner[axis]);
            g.boxHigh[axis] = std::max(g.boxHigh[axis], corner[axis]);
        }
        g.clipLow[axis] = g.boxLow[axis] - 0.1f;
        g.clipHigh[axis] = g.boxHigh[axis] + 0.1f;
        g.boundLow[axis] = 1.01f;
        g.boundHigh[axis] = size[axis] - 2.0f - 0.01f;
    }
    return g;
}

std::optional<int16_t> PlainValue(const KsVolumeData& volume, const float* place)
{
    const int32_t size[3] = {volume.sizeX, volume.sizeY, volume.sizeZ};
    int32_t at[3];
    float fraction[3];
    for (int axis = 0; axis < 3; ++axis)
    {
        if (!(place[axis] >= 0.0f && place[axis] < float(size[axis])))
            return std::nullopt;
        at[axis] = int32_t(place[axis]);
        fraction[axis] = place[axis] - float(at[axis]);
    }
    const int i = at[0], j = at[1], k = at[2], nextSlice = std::min(k + 1, volume.sizeZ - 1);
    if (i + 1 >= volume.sizeX || j + 1 >= volume.sizeY)
        return std::nullopt;
    const auto alongZ = [&](int x, int y)
    {
        const size_t offset = size_t(y) * size_t(volume.sizeX) + size_t(x);
        return Between(volume.slices[k][offset], volume.slices[nextSlice][offset], fraction[2]);
    };
    const float row0 = Between(alongZ(i, j), alongZ(i + 1, j), fraction[0]);
    const float row1 = Between(alongZ(i, j + 1), alongZ(i + 1, j + 1), fraction[0]);
    return int16_t(int32_t(Between(row0, row1, fraction[1]) + 0.5f));
}

uint8_t PlainLabel(const KsVolumeMark& mark, const float* place)
{
    const uint32_t size[3] = {mark.sizeX, mark.sizeY, mark.sizeZ};
    size_t at[3];
    for (int axis = 0; axis < 3; ++axis)
    {
        const float nearest = std::trunc(place[axis] + 0.5f);
        if (!(nearest >= 0.0f && nearest < float(size[axis])))
            return 0;
        at[axis] = size_t(nearest);
    }
    return mark.slices[at[2]][at[1] * mark.sizeX + at[0]];
}

std::vector<int16_t> PlainImage(const KsVolumeData& volume, const PnImageParam& plane)
{
    std::vector<int16_t> image(size_t(plane.rows) * plane.columns, int16_t(-1024));
    const auto sample = [&](size_t pixel, const float* place)
    {
        if (const std::optional<int16_t> value = PlainValue(volume, place))
            image[pixel] = *value;
    };
    ForEachPixel(PlainGeometryOf(volume), plane, false, sample);
    return image;
}

std::vector<uint8_t> PlainLabels(const KsVolumeData& volume, const KsVolumeMark& mark, const PnImageParam& plane)
{
    std::vector<uint8_t> image(size_t(plane.rows) * plane.columns, uint8_t(0));
    ForEachPixel(PlainGeometryOf(volume), plane, true,
                 [&](size_t pixel, const float* place) { image[pixel] = PlainLabel(mark, place); });
    return image;
}
} // namespace corvane::tests
