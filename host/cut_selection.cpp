#include "cut_selection.h"

#include <algorithm>
#include <cassert>

#include "corvane/VolumeUtil.h"
#include "error.h"
#include "label_byte.h"
#include "plane.h"
#include "work_elsewhere.h"

namespace corvane::host
{
namespace
{
void Require(bool done)
{
    if (!done)
        throw Error(ErrorKind::Computation, "the library refuses to cut this volume; memory may be short");
}

struct Pixel
{
    double column, row;
};

// Where a voxel is seen in a picture. The same steps lead from every voxel to its neighbours.
class PixelsOfVoxels
{
public:
    PixelsOfVoxels(const Grid& grid, const PnImageParam& plane)
        : first_(Of(grid, plane, {0, 0, 0})), alongI_(StepTo(Of(grid, plane, {1, 0, 0}))),
          alongJ_(StepTo(Of(grid, plane, {0, 1, 0}))), alongK_(StepTo(Of(grid, plane, {0, 0, 1})))
    {
    }

    Pixel At(int i, int j, int k) const
    {
        return {first_.column + i * alongI_.column + j * alongJ_.column + k * alongK_.column,
                first_.row + i * alongI_.row + j * alongJ_.row + k * alongK_.row};
    }

private:
    static Pixel Of(const Grid& grid, const PnImageParam& plane, Vec3 index)
    {
        const Vec3 patient = IndexToPatient(grid, index);
        const double point[3] = {patient.x, patient.y, patient.z};
        double pixel[2];
        VolumeUtil::PatientToImageCoords(plane, point, pixel);
        return {pixel[0], pixel[1]};
    }
    Pixel StepTo(Pixel other) const { return {other.column - first_.column, other.row - first_.row}; }

    Pixel first_, alongI_, alongJ_, alongK_;
};

// A region as the library takes it. The library truncates: moved by half a pixel, every voxel gets its nearest pixel.
// What lies less than one pixel before the first counts as the first: an empty frame keeps that apart.
class FramedRegion
{
public:
    explicit FramedRegion(const DrawnRegion& region)
    {
        PnImageParam plane = region.plane;
        plane.rows += 2;
        plane.columns += 2;
        const Vec3 position = PixelToPatient(region.plane, -1.5, -1.5);
        plane.position[0] = position.x;
        plane.position[1] = position.y;
        plane.position[2] = position.z;
        pixels_.resize(size_t(plane.rows) * plane.columns);
        for (uint32_t row = 0; row < region.plane.rows; ++row)
            std::copy_n(region.pixels.data() + size_t(row) * region.plane.columns, region.plane.columns,
                        pixels_.data() + (size_t(row) + 1) * plane.columns + 1);
        record_ = {pixels_.data(), plane};
    }
    FramedRegion(const FramedRegion&) = delete;
    FramedRegion& operator=(const FramedRegion&) = delete;

    const KsImageMark& Record() const { return record_; }

private:
    std::vector<uint8_t> pixels_;
    KsImageMark record_;
};

bool Within(double value, double low, double high) { return value >= low && value <= high; }

bool Contains(const PatientBox& box, Vec3 point)
{
    return Within(point.x, std::min(box.from.x, box.to.x), std::max(box.from.x, box.to.x)) &&
           Within(point.y, std::min(box.from.y, box.to.y), std::max(box.from.y, box.to.y)) &&
           Within(point.z, std::min(box.from.z, box.to.z), std::max(box.from.z, box.to.z));
}

// Calls visit(voxel, i, j, k) for every voxel.
template <typename Visit>
void ForEachVoxel(const Grid& grid, Visit visit)
{
    size_t voxel = 0;
    for (int k = 0; k < grid.sizeZ; ++k)
        for (int j = 0; j < grid.sizeY; ++j)
            for (int i = 0; i < grid.sizeX; ++i, ++voxel)
                visit(voxel, i, j, k);
}
} // namespace

CutSelection::CutSelection(const Volume& volume)
    : grid_(volume.grid), view_(volume, {}), labels_(volume.labels), selected_(volume.grid.VoxelCount()),
      slices_(size_t(volume.grid.sizeZ))
{
    labels_.resize(grid_.VoxelCount());
    Require(engine_.InitData(view_.Data()));
}

bool CutSelection::LibraryIsExact(const PnImageParam& plane) const
{
    // A camera's two pixel sizes are two quotients, which may differ in their last digit.
    return view_.Data().spacing[0] == view_.Data().spacing[1] &&
           std::fabs(plane.rowSpacing - plane.columnSpacing) <= 1e-9 * plane.columnSpacing;
}

void CutSelection::Select(const DrawnRegion& region, CutSide side, const CutLimits& limits)
{
    if (LibraryIsExact(region.plane))
        SelectByLibrary(region, side, limits);
    else
        SelectByVoxel(region, side, limits);
}

void CutSelection::SelectByLibrary(const DrawnRegion& region, CutSide side, const CutLimits& limits)
{
    assert(region.pixels.size() == size_t(region.plane.rows) * region.plane.columns);
    const std::vector<uint8_t> selectable = Selectable(region, limits);
    // The library selects visible labels, and of its labels only 0 can be given a palette. So it is told what may be
    // selected instead: 0, or 1 for what may not.
    std::vector<uint8_t> visible(selectable.size());
    std::transform(selectable.begin(), selectable.end(), visible.begin(), [](uint8_t may) { return uint8_t(!may); });
    GiveLabels(visible);
    const FramedRegion framed(region);
    KsVolumeMark selection = RecordOf(selected_);
    Require(engine_.CutFill(framed.Record(), selection, 1));
    TakeSide(side, selectable);
}

void CutSelection::SelectByVoxel(const DrawnRegion& region, CutSide side, const CutLimits& limits)
{
    assert(region.pixels.size() == size_t(region.plane.rows) * region.plane.columns);
    const std::vector<uint8_t> selectable = Selectable(region, limits);
    const PixelsOfVoxels pixels(grid_, region.plane);
    const double columns = region.plane.columns, rows = region.plane.rows;
    ForEachVoxel(grid_,
                 [&](size_t voxel, int i, int j, int k)
                 {
                     const Pixel seen = pixels.At(i, j, k);
                     const double column = std::floor(seen.column + 0.5), row = std::floor(seen.row + 0.5);
                     const bool inPicture = column >= 0 && column < columns && row >= 0 && row < rows;
                     selected_[voxel] = selectable[voxel] && inPicture &&
                                        region.pixels[size_t(row) * region.plane.columns + size_t(column)];
                 });
    TakeSide(side, selectable);
}

std::vector<uint8_t> CutSelection::Cut()
{
    GiveLabels(labels_);
    {
        const WorkElsewhere elsewhere;
        Require(engine_.CutAppend(RecordOf(selected_)));
    }
    const KsVolumeMark& marks = *engine_.GetMarkData();
    for (size_t k = 0; k < slices_.size(); ++k)
        std::copy_n(marks.slices[k], grid_.VoxelsPerSlice(), labels_.data() + k * grid_.VoxelsPerSlice());
    return labels_;
}

std::vector<uint8_t> CutSelection::Selectable(const DrawnRegion& region, const CutLimits& limits) const
{
    std::vector<uint8_t> selectable(labels_.size());
    std::transform(labels_.begin(), labels_.end(), selectable.begin(),
                   [&](uint8_t label) { return !(label & kCutBit) && limits.labels[label & kLabelBits]; });
    if (!limits.box && !limits.depth)
        return selectable;
    const Vec3 eye = FirstPixel(region.plane);
    const Vec3 sight = Unit(Cross(RowDirection(region.plane), ColumnDirection(region.plane)));
    ForEachVoxel(grid_,
                 [&](size_t voxel, int i, int j, int k)
                 {
                     const Vec3 point = IndexToPatient(grid_, {double(i), double(j), double(k)});
                     const double depth = Dot(point - eye, sight);
                     if ((limits.box && !Contains(*limits.box, point)) ||
                         (limits.depth && !Within(depth, limits.depth->from, limits.depth->to)))
                         selectable[voxel] = 0;
                 });
    return selectable;
}

void CutSelection::TakeSide(CutSide side, const std::vector<uint8_t>& selectable)
{
    if (side == CutSide::Outside)
        std::transform(selected_.begin(), selected_.end(), selectable.begin(), selected_.begin(),
                       [](uint8_t inside, uint8_t may) { return uint8_t(may && !inside); });
}

KsVolumeMark CutSelection::RecordOf(std::vector<uint8_t>& bytes)
{
    for (size_t k = 0; k < slices_.size(); ++k)
        slices_[k] = bytes.data() + k * grid_.VoxelsPerSlice();
    return {slices_.data(), uint32_t(grid_.sizeX), uint32_t(grid_.sizeY), uint32_t(grid_.sizeZ)};
}

void CutSelection::GiveLabels(const std::vector<uint8_t>& bytes)
{
    const KsVolumeMark* const marks = engine_.GetMarkData();
    Require(marks && marks->slices);
    for (size_t k = 0; k < slices_.size(); ++k)
        std::copy_n(bytes.data() + k * grid_.VoxelsPerSlice(), grid_.VoxelsPerSlice(), marks->slices[k]);
    const WorkElsewhere elsewhere;
    engine_.UpdateMarkData();
}
} // namespace corvane::host
