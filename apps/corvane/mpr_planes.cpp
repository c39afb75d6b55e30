#include "mpr_planes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/error.h"
#include "host/orientation.h"
#include "host/plane.h"
#include "host/read_text.h"

namespace corvane::app
{
namespace
{
using host::Error;
using host::ErrorKind;
using host::Vec3;

constexpr double kMostSlices = 10000;

void SetUp(EngineMPR& engine, const PlaneRequest& request)
{
    if (request.center)
    {
        const double origin[3] = {request.center->x, request.center->y, request.center->z};
        engine.SetOrigin(origin);
    }
    for (const PlaneRequest::Rotation& rotation : request.rotations)
        engine.Rotate(rotation.about, float(rotation.degrees * std::numbers::pi / 180));
}

// Whether some of a rectangle's pixels may lie in the volume; along each of its axes and its normal by itself.
bool Meets(const host::Grid& grid, const PnImageParam& plane, Vec3 normal)
{
    const Vec3 first = host::FirstPixel(plane);
    const host::Extent across = host::SampledExtent(grid, first, host::RowDirection(plane));
    const host::Extent down = host::SampledExtent(grid, first, host::ColumnDirection(plane));
    const host::Extent through = host::SampledExtent(grid, first, normal);
    return across.high >= 0 && across.low <= (plane.columns - 1) * plane.columnSpacing && down.high >= 0 &&
           down.low <= (plane.rows - 1) * plane.rowSpacing && through.high >= 0 && through.low <= 0;
}

// Distances of a stack's slices from the first plane, mm.
std::vector<double> StackOffsets(const PlaneRequest& request, const host::Extent& extent, double step)
{
    double first = 0, count = 1;
    if (request.count && *request.count > 0)
    {
        count = *request.count;
        first = -0.5 * (count - 1) * step;
    }
    else if (request.count)
    {
        // Steps from the center that stay between the volume's ends; a little slack for ends that are met exactly.
        const double lowest = std::ceil(extent.low / step - 1e-6), highest = std::floor(extent.high / step + 1e-6);
        count = highest - lowest + 1;
        first = lowest * step;
    }
    if (count < 1)
        throw Error(ErrorKind::Usage, "the stack lies outside the volume; choose another --center or --slice");
    if (count > kMostSlices)
        throw Error(ErrorKind::Usage, "the stack would have " + host::Number(count) +
                                          " slices; 10000 is the limit, choose a longer --step");
    std::vector<double> offsets;
    for (int n = 0; n < int(count); ++n)
        offsets.push_back(first + n * step);
    return offsets;
}

void AddStack(std::vector<PlannedPicture>& pictures, const std::string& name, const host::Grid& grid,
              const PlaneRequest& request, const PnImageParam& plane, Vec3 normal)
{
    const double step = request.step.value_or(std::min(plane.rowSpacing, plane.columnSpacing));
    const PnImageParam start = host::Shifted(plane, normal, request.shift);
    const std::vector<double> offsets =
        StackOffsets(request, host::SampledExtent(grid, host::FirstPixel(start), normal), step);
    for (size_t n = 0; n < offsets.size(); ++n)
    {
        const PnImageParam param = host::Shifted(start, normal, offsets[n]);
        if (!Meets(grid, param, normal))
            throw Error(ErrorKind::Usage, "picture " + std::to_string(n + 1) + " of the " + name +
                                              " plane does not meet the volume as far as it is sampled; see corvane "
                                              "info for where it lies, and --pad");
        pictures.push_back({name, int(n) + 1, int(offsets.size()), request.shift + offsets[n], step, normal, param});
    }
}
} // namespace

std::string PlaneName(KsMPRType type)
{
    return type == KsMPRTransverse ? "axial" : type == KsMPRSagittal ? "sagittal" : "coronal";
}

std::vector<PlannedPicture> PlanPictures(EngineMPR& engine, const host::Grid& grid, const PlaneRequest& request)
{
    std::vector<PlannedPicture> pictures;
    if (request.given)
    {
        PnImageParam plane = *request.given;
        host::CheckPlane(plane);
        AddStack(pictures, "plane", grid, request, plane,
                 host::Cross(host::RowDirection(plane), host::ColumnDirection(plane)));
        return pictures;
    }
    SetUp(engine, request);
    for (KsMPRType type : request.planes)
    {
        PnImageParam plane = {};
        double normal[3] = {};
        if (!engine.GetImageParam(type, plane) || !engine.GetDirect(type, normal))
            throw Error(ErrorKind::Computation, "the volume gives no " + PlaneName(type) + " plane");
        const double pixelSize = request.pixelSize.value_or(plane.columnSpacing) / request.zoom;
        if (pixelSize != plane.columnSpacing)
            plane = host::WithPixelSize(plane, pixelSize);
        AddStack(pictures, PlaneName(type), grid, request, plane, {normal[0], normal[1], normal[2]});
    }
    return pictures;
}
Json JsonOf(const PlannedPicture& planned, const std::string& file, bool ras)
{
    const PnImageParam& plane = planned.param;
    const host::Vec3 row = host::RowDirection(plane), column = host::ColumnDirection(plane);
    const auto vector = [&](host::Vec3 v) { return JsonOf(TurnedIf(ras, v)); };
    return {{"file", file},
            {"plane", planned.plane},
            {"index", planned.index},
            {"offset", planned.offset},
            {"rows", plane.rows},
            {"columns", plane.columns},
            {"rowSpacing", plane.rowSpacing},
            {"columnSpacing", plane.columnSpacing},
            {"rowDirection", vector(row)},
            {"columnDirection", vector(column)},
            {"normal", vector(planned.normal)},
            {"position", vector(host::FirstPixel(plane))},
            {"letters",
             {{"left", host::DirectionLetters(-1.0 * row)},
              {"right", host::DirectionLetters(row)},
              {"top", host::DirectionLetters(-1.0 * column)},
              {"bottom", host::DirectionLetters(column)}}}};
}
} // namespace corvane::app
