#include "polygon_file.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "error.h"
#include "read_text.h"
#include "text_file.h"

namespace corvane::host
{
namespace
{
using Json = nlohmann::json;

[[noreturn]] void Refuse(const std::string& place, const std::string& what)
{
    throw Error(ErrorKind::Input, place + ": " + what);
}

// Names the place in the file when a polygon is none.
void Check(const GivenPolygon& polygon, const std::string& place)
{
    try
    {
        CheckPolygon(polygon);
    }
    catch (const Error& error)
    {
        Refuse(place, error.what());
    }
}

std::vector<GivenPolygon> FromText(const std::string& text, const std::string& file)
{
    std::vector<GivenPolygon> polygons;
    GivenPolygon polygon;
    int lineNumber = 0, firstLine = 1;
    const auto finish = [&]
    {
        if (!polygon.corners.empty())
        {
            Check(polygon, file + ", polygon from line " + std::to_string(firstLine));
            polygons.push_back(std::move(polygon));
        }
        polygon = {};
    };
    for (size_t start = 0; start < text.size();)
    {
        const size_t end = std::min(text.find('\n', start), text.size());
        std::string line = text.substr(start, end - start);
        start = end + 1;
        ++lineNumber;
        const bool hasComment = line.find('#') != std::string::npos;
        line = Trimmed(line.substr(0, line.find('#')));
        if (line.empty())
        {
            if (!hasComment)
                finish();
            continue;
        }
        std::replace_if(
            line.begin(), line.end(), [](char c) { return c == ',' || c == '\t'; }, ' ');
        const auto numbers = ParseNumbers(line, ' ');
        if (!numbers)
            Refuse(file + ", line " + std::to_string(lineNumber),
                   "a corner is two or three numbers, not '" + line + "'");
        if (polygon.corners.empty())
            firstLine = lineNumber;
        polygon.corners.push_back(*numbers);
    }
    finish();
    return polygons;
}

GivenPolygon PolygonOf(const Json& list, const std::string& place)
{
    GivenPolygon polygon;
    for (const Json& corner : list)
    {
        const bool numbers = corner.is_array() &&
                             std::all_of(corner.begin(), corner.end(), [](const Json& one) { return one.is_number(); });
        if (!numbers)
            Refuse(place, "a corner is a list of two or three numbers, as in [100, 80]");
        polygon.corners.push_back(corner.get<std::vector<double>>());
    }
    Check(polygon, place);
    return polygon;
}

bool IsCorner(const Json& json) { return json.is_array() && !json.empty() && json.front().is_number(); }

std::vector<GivenPolygon> FromJson(const std::string& text, const std::string& file)
{
    const Json json = Json::parse(text, nullptr, false);
    if (json.is_discarded())
        Refuse(file, "is neither JSON nor lines with the corners of polygons");
    const Json list = json.is_object() ? json.value("polygons", Json()) : json;
    if (!list.is_array())
        Refuse(file, "must be a list of polygons, or have one as \"polygons\"");
    if (!list.empty() && IsCorner(list.front()))
        return {PolygonOf(list, file)};
    std::vector<GivenPolygon> polygons;
    for (const Json& polygon : list)
    {
        const std::string place = file + ", polygon " + std::to_string(polygons.size() + 1);
        if (!polygon.is_array())
            Refuse(place, "a polygon is a list of corners, as in [[100, 80], [400, 90], [380, 420]]");
        polygons.push_back(PolygonOf(polygon, place));
    }
    return polygons;
}
} // namespace

std::vector<GivenPolygon> ReadPolygons(const std::string& path)
{
    const std::string text = TextOfFile(path, "a file with the corners of polygons");
    const std::string start = Trimmed(text).substr(0, 1);
    const bool isJson = start == "{" || start == "[";
    std::vector<GivenPolygon> polygons = isJson ? FromJson(text, path) : FromText(text, path);
    if (polygons.empty())
        Refuse(path, "holds no polygon; give the corners of one at least");
    return polygons;
}
} // namespace corvane::host
