#include "palette_file.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "error.h"
#include "palette_json.h"
#include "palette_xml.h"
#include "read_text.h"
#include "text_file.h"

namespace corvane::host
{
namespace
{
constexpr double kLargestValue = 1e12;

[[noreturn]] void Refuse(const std::string& path, const std::string& what)
{
    throw Error(ErrorKind::Input, path + ": " + what);
}

// Values of opacity and shading, order of points: what every kind of file must keep to.
void Check(const TransferFunction& function, const std::string& path)
{
    const std::string which = function.name.empty() ? "the palette" : "'" + function.name + "'";
    if (function.opacities.size() < 2 || function.colours.empty())
        Refuse(path, which + " needs two points of opacity and one of colour at least");
    const auto rising = [](const auto& points)
    {
        return std::is_sorted(points.begin(), points.end(),
                              [](const auto& a, const auto& b) { return a.value < b.value; });
    };
    if (!rising(function.opacities) || !rising(function.colours))
        Refuse(path, "the points of " + which + " must stand in the order of their values");
    for (double value : {function.opacities.front().value, function.opacities.back().value,
                         function.colours.front().value, function.colours.back().value})
        if (!(std::fabs(value) <= kLargestValue))
            Refuse(path, which + " has a point at " + Number(value) + ", which no volume can hold");
    const auto isShare = [](double number) { return number >= 0 && number <= 1; };
    for (const TransferFunction::OpacityPoint& point : function.opacities)
        if (!isShare(point.opacity))
            Refuse(path, "opacities are 0 to 1; " + which + " has " + Number(point.opacity));
    for (const TransferFunction::ColourPoint& point : function.colours)
        if (!isShare(point.red) || !isShare(point.green) || !isShare(point.blue))
            Refuse(path, "red, green and blue are 0 to 1; " + which + " has " +
                             PointText({point.red, point.green, point.blue}));
    for (double coefficient : {function.ambient, function.diffuse, function.specular})
        if (!(coefficient >= 0 && coefficient <= 10))
            Refuse(path, "shading coefficients are 0 to 10; " + which + " has " + Number(coefficient));
}
} // namespace

TransferFunction ReadTransferFunction(const std::string& path)
{
    // The name of a file may hold a # itself.
    std::string file = path, wanted;
    const size_t mark = path.rfind('#');
    std::error_code ignored;
    if (mark != std::string::npos && !std::filesystem::exists(path, ignored))
    {
        file = path.substr(0, mark);
        wanted = path.substr(mark + 1);
    }
    const std::string text = TextOfFile(file, "a palette file or the name of a preset (see --list-presets)");
    const size_t first = text.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
    const char kind = first == std::string::npos ? ' ' : text[first];
    if (kind != '{' && kind != '<')
        Refuse(file, "is neither a palette in JSON nor presets in XML");
    TransferFunction function =
        kind == '{' ? TransferFunctionOfJson(text, file) : TransferFunctionOfXml(text, file, wanted);
    if (kind == '{' && !wanted.empty())
        Refuse(file, "holds one palette; #" + wanted + " belongs to presets in XML");
    if (function.name.empty())
        function.name = FileNameOf(file);
    Check(function, file);
    function.name = OneLine(function.name);
    for (std::string& warning : function.warnings)
        warning = OneLine(warning);
    return function;
}
} // namespace corvane::host
