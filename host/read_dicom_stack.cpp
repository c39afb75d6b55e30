#include "read_dicom_stack.h"

#include "error.h"
#include "read_grid.h"
#include "read_text.h"

#include <algorithm>
#include <numeric>

namespace corvane::host
{
namespace
{
constexpr double kMaxLengthError = 1e-3;    // of a direction: rounded to three decimals
constexpr double kMaxDirectionError = 1e-4; // between the images of a stack
constexpr double kMaxSpacingError = 1e-4;   // between the images of a stack, relative
constexpr double kMaxStepError = 0.01;      // of the step, off the even line
constexpr double kMinTolerance = 0.01;      // mm: positions are often written with two decimals
constexpr double kQuietError = 0.005;       // mm: rounding of two decimals
constexpr double kMaxDistance = 1e9;        // mm from the patient's zero
constexpr double kMaxMultipleError = 0.1;   // of the step, for a gap to count as missing slices

std::string Millimetres(double length) { return Number(length) + " mm"; }

void CheckImage(const SlicePlace& slice)
{
    if (!(slice.rowSpacing > 0) || !(slice.columnSpacing > 0))
        throw Error(ErrorKind::Input, slice.name + ": pixel spacing " + Number(slice.rowSpacing) + " x " +
                                          Millimetres(slice.columnSpacing) + "; both must be above 0");
    const double row = Length(slice.rowDirection), column = Length(slice.columnDirection);
    if (!(std::abs(row - 1) <= kMaxLengthError) || !(std::abs(column - 1) <= kMaxLengthError))
        throw Error(ErrorKind::Input, slice.name + ": its image orientation has directions of length " + Number(row) +
                                          " and " + Number(column) + ", not 1; the header is wrong");
    if (!(Length(Cross(slice.rowDirection, slice.columnDirection)) > 0))
        throw Error(ErrorKind::Input, slice.name + ": its image orientation has the same direction for rows and for "
                                                   "columns; the header is wrong");
    if (!(Length(slice.position) <= kMaxDistance))
        throw Error(ErrorKind::Input, slice.name + ": its image position is " + PointText(slice.position) +
                                          ", which is no patient; the header is wrong");
}

void CheckAlike(const SlicePlace& first, const SlicePlace& other)
{
    const auto differ = [&](const std::string& what, const std::string& a, const std::string& b)
    {
        throw Error(ErrorKind::Input, "images of different " + what + " in one series: " + other.name + " has " + b +
                                          " where " + first.name + " has " + a +
                                          "; keep the images of one stack in the folder");
    };
    const auto size = [](const SlicePlace& s)
    { return std::to_string(s.columns) + " x " + std::to_string(s.rows) + " pixels"; };
    const auto spacing = [](const SlicePlace& s)
    { return Number(s.columnSpacing) + " x " + Millimetres(s.rowSpacing); };
    const auto orientation = [](const SlicePlace& s)
    { return "row " + PointText(s.rowDirection) + " column " + PointText(s.columnDirection); };
    const auto spacingDiffers = [](double a, double b) { return std::abs(a - b) > kMaxSpacingError * a; };

    if (first.rows != other.rows || first.columns != other.columns)
        differ("size", size(first), size(other));
    if (spacingDiffers(first.rowSpacing, other.rowSpacing) || spacingDiffers(first.columnSpacing, other.columnSpacing))
        differ("pixel spacing", spacing(first), spacing(other));
    if (Length(first.rowDirection - other.rowDirection) > kMaxDirectionError ||
        Length(first.columnDirection - other.columnDirection) > kMaxDirectionError)
        differ("orientation", orientation(first), orientation(other));
}

// The images in their order, with their places along the normal.
struct Line
{
    std::vector<const SlicePlace*> slices;
    std::vector<double> heights; // mm along the normal

    double Step(size_t i) const { return heights[i + 1] - heights[i]; }
};

void CheckDoubled(const Line& line)
{
    size_t doubled = 0, example = 0;
    for (size_t i = 0; i + 1 < line.slices.size(); ++i)
        if (line.Step(i) < kMinTolerance)
        {
            example = i;
            ++doubled;
        }
    if (doubled > 0)
        throw Error(ErrorKind::Input,
                    "doubled slices: " + line.slices[example]->name + " at " +
                        PointText(line.slices[example]->position) + " and " + line.slices[example + 1]->name + " at " +
                        PointText(line.slices[example + 1]->position) + " lie in the same plane (" +
                        std::to_string(line.slices.size()) + " images in " +
                        std::to_string(line.slices.size() - doubled) +
                        " planes); if these are several phases or measurements, keep one of them in the folder");
}

// Throws for the pair of neighbours that strays farthest from the usual step, if it does by more than the tolerance.
void CheckSteps(const Line& line, double tolerance)
{
    std::vector<double> steps;
    for (size_t i = 0; i + 1 < line.slices.size(); ++i)
        steps.push_back(line.Step(i));
    std::vector<double> sorted = steps;
    const auto middle = sorted.begin() + std::ptrdiff_t((sorted.size() - 1) / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    const double usual = *middle;

    const auto stray = [&](double step) { return std::abs(step - usual); };
    const size_t worst =
        size_t(std::max_element(steps.begin(), steps.end(), [&](double a, double b) { return stray(a) < stray(b); }) -
               steps.begin());
    if (stray(steps[worst]) <= tolerance)
        return;
    const std::string where = line.slices[worst]->name + " (at " + Millimetres(line.heights[worst]) + ") and " +
                              line.slices[worst + 1]->name + " (at " + Millimetres(line.heights[worst + 1]) + ") are " +
                              Millimetres(steps[worst]) + " apart where the others are " + Millimetres(usual);
    const double multiple = std::round(steps[worst] / usual);
    if (multiple >= 2 && std::abs(steps[worst] - multiple * usual) <= kMaxMultipleError * usual)
        throw Error(ErrorKind::Input, "missing slices: " + where + "; " + std::to_string(int64_t(multiple) - 1) +
                                          " between them missing, add the file or files");
    throw Error(ErrorKind::Input, "uneven slices: " + where + "; resample the series to even steps first");
}

// The step between neighbours, from the first and the last image; every image must lie where it says.
Vec3 EvenStep(const Line& line, std::vector<std::string>& warnings)
{
    const size_t count = line.slices.size();
    const Vec3 first = line.slices.front()->position;
    const Vec3 step = (1.0 / double(count - 1)) * (line.slices.back()->position - first);
    const double tolerance = std::max(kMaxStepError * Length(step), kMinTolerance);

    const auto strayOf = [&](size_t i) { return Length(line.slices[i]->position - (first + double(i) * step)); };
    size_t worst = 0;
    for (size_t i = 0; i < count; ++i)
        if (strayOf(i) > strayOf(worst))
            worst = i;
    const double stray = strayOf(worst);
    if (stray > tolerance)
    {
        CheckSteps(line, tolerance);
        throw Error(ErrorKind::Input, "slices off the line: " + line.slices[worst]->name + " lies " +
                                          Millimetres(stray) + " from its place on the even line between " +
                                          line.slices.front()->name + " and " + line.slices.back()->name +
                                          " (allowed are " + Millimetres(tolerance) +
                                          "); the stack bends or drifts, resample it first");
    }
    if (stray > kQuietError)
        warnings.push_back("slice positions stray by up to " + Millimetres(stray) + " from even steps of " +
                           Millimetres(Length(step)) + " (" + line.slices[worst]->name + ")");
    return step;
}

// A single image has no step; the header's word for it is taken.
Vec3 SingleStep(const SlicePlace& slice, Vec3 normal, std::vector<std::string>& warnings)
{
    double spacing = std::min(slice.rowSpacing, slice.columnSpacing);
    std::string source = "the smaller pixel spacing";
    if (slice.spacingBetweenSlices > 0)
    {
        spacing = slice.spacingBetweenSlices;
        source = "the spacing between slices in the header";
    }
    else if (slice.thickness > 0)
    {
        spacing = slice.thickness;
        source = "the slice thickness in the header";
    }
    warnings.push_back("a single slice; its spacing is taken as " + Millimetres(spacing) + ", " + source);
    return spacing * normal;
}
} // namespace

Stack StackOf(const std::string& name, const std::vector<SlicePlace>& slices)
{
    for (const SlicePlace& slice : slices)
    {
        CheckImage(slice);
        CheckAlike(slices.front(), slice);
    }
    const SlicePlace& reference = slices.front();
    const Vec3 row = Unit(reference.rowDirection), column = Unit(reference.columnDirection);
    const Vec3 normal = Unit(Cross(row, column));

    Stack stack;
    stack.order.resize(slices.size());
    std::iota(stack.order.begin(), stack.order.end(), size_t(0));
    std::stable_sort(stack.order.begin(), stack.order.end(),
                     [&](size_t a, size_t b)
                     { return Dot(slices[a].position, normal) < Dot(slices[b].position, normal); });
    Line line;
    for (const size_t index : stack.order)
    {
        line.slices.push_back(&slices[index]);
        line.heights.push_back(Dot(slices[index].position, normal));
    }
    CheckDoubled(line);

    const Vec3 step =
        slices.size() > 1 ? EvenStep(line, stack.warnings) : SingleStep(reference, normal, stack.warnings);
    stack.grid =
        GridFromSteps(name, {reference.columns, reference.rows, int64_t(slices.size())}, line.slices.front()->position,
                      {reference.columnSpacing * row, reference.rowSpacing * column, step}, stack.warnings);
    return stack;
}
} // namespace corvane::host
