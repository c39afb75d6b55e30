#include "palette_json.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <initializer_list>

#include <nlohmann/json.hpp>

#include "error.h"
#include "palette_slicer.h"
#include "read_text.h"

namespace corvane::host
{
namespace
{
using Json = nlohmann::json;

// An object of the file, and where it stands in it.
class Reader
{
public:
    Reader(const Json& object, std::string file, std::string place)
        : object_(object), file_(std::move(file)), place_(std::move(place))
    {
        if (!object_.is_object())
            Refuse("must be an object { }");
    }

    [[noreturn]] void Refuse(const std::string& what) const
    {
        throw Error(ErrorKind::Input, file_ + ": " + (place_.empty() ? "the palette" : place_) + " " + what);
    }

    bool Has(const char* key) const { return object_.contains(key); }

    // A slip of the pen in an optional name must not pass as its absence.
    void AllowOnly(std::initializer_list<const char*> keys) const
    {
        for (const auto& [key, value] : object_.items())
            if (std::find(keys.begin(), keys.end(), key) == keys.end())
                Refuse("has \"" + key + "\", which means nothing there");
    }

    double Number(const char* key) const
    {
        if (!Has(key) || !object_[key].is_number() || !std::isfinite(object_[key].get<double>()))
            Refuse("needs a number \"" + std::string(key) + "\"");
        return object_[key];
    }
    double NumberOr(const char* key, double otherwise) const { return Has(key) ? Number(key) : otherwise; }

    std::string Text(const char* key) const
    {
        if (!Has(key) || !object_[key].is_string())
            Refuse("needs a text \"" + std::string(key) + "\"");
        return object_[key];
    }

    bool TruthOr(const char* key, bool otherwise) const
    {
        if (!Has(key))
            return otherwise;
        if (!object_[key].is_boolean())
            Refuse("must have true or false for \"" + std::string(key) + "\"");
        return object_[key];
    }

    const Json& List(const char* key) const
    {
        if (!Has(key) || !object_[key].is_array())
            Refuse("needs a list \"" + std::string(key) + "\"");
        return object_[key];
    }

    Reader Inside(const char* key) const
    {
        if (!Has(key))
            Refuse("needs \"" + std::string(key) + "\"");
        return {object_[key], file_, Named(key)};
    }
    Reader Item(const char* key, size_t number) const
    {
        return {List(key)[number], file_, Named(key) + " " + std::to_string(number + 1)};
    }

private:
    std::string Named(const char* key) const { return (place_.empty() ? "" : place_ + ", ") + key; }

    const Json& object_;
    std::string file_, place_;
};

// "#RRGGBB"
TransferFunction::ColourPoint ColourOf(const Reader& point)
{
    const std::string text = point.Text("color");
    uint32_t colour = 0;
    const char* const end = text.data() + text.size();
    if (text.size() != 7 || text[0] != '#' || std::from_chars(text.data() + 1, end, colour, 16).ptr != end)
        point.Refuse("needs a \"color\" like \"#FFC080\", not \"" + text + "\"");
    return {point.Number("value"), double(colour >> 16) / 255, double(colour >> 8 & 255) / 255,
            double(colour & 255) / 255};
}

TransferFunction OwnForm(const Reader& palette)
{
    palette.AllowOnly({"name", "opacityDistance", "beyondEnds", "shading", "points"});
    TransferFunction function;
    if (palette.Has("name"))
        function.name = palette.Text("name");
    if (palette.Has("opacityDistance"))
    {
        function.opacityDistance = palette.Number("opacityDistance");
        if (!(function.opacityDistance > 0))
            palette.Refuse("needs an \"opacityDistance\" above 0 mm; leave it out for opacities of one sample");
    }
    if (palette.Has("beyondEnds"))
    {
        const std::string beyond = palette.Text("beyondEnds");
        if (beyond != "hold" && beyond != "hide")
            palette.Refuse("has \"beyondEnds\" as \"" + beyond + "\"; it is \"hold\" or \"hide\"");
        function.holdEnds = beyond == "hold";
    }
    if (palette.Has("shading"))
    {
        const Reader shading = palette.Inside("shading");
        shading.AllowOnly({"ambient", "diffuse", "specular"});
        function.ambient = shading.NumberOr("ambient", function.ambient);
        function.diffuse = shading.NumberOr("diffuse", function.diffuse);
        function.specular = shading.NumberOr("specular", function.specular);
    }
    for (size_t n = 0; n < palette.List("points").size(); ++n)
    {
        const Reader point = palette.Item("points", n);
        point.AllowOnly({"value", "color", "opacity"});
        function.colours.push_back(ColourOf(point));
        function.opacities.push_back({point.Number("value"), point.Number("opacity")});
    }
    return function;
}

// A bend between two points that is not straight, in 3D Slicer's terms.
bool IsBent(const Reader& point)
{
    return point.NumberOr("midpoint", 0.5) != 0.5 || point.NumberOr("sharpness", 0) != 0;
}

TransferFunction VolumeProperties(const Reader& file)
{
    if (file.List("volumeProperties").empty())
        file.Refuse("has no volume property");
    const Reader property = file.Item("volumeProperties", 0);
    if (property.List("components").empty())
        property.Refuse("has no component");
    const Reader component = property.Item("components", 0);

    SlicerProperty read;
    read.function.opacityDistance = component.NumberOr("scalarOpacityUnitDistance", 1);
    if (!(read.function.opacityDistance > 0))
        component.Refuse("needs a \"scalarOpacityUnitDistance\" above 0 mm");
    const Reader opacity = component.Inside("scalarOpacity"), colour = component.Inside("rgbTransferFunction");
    for (size_t n = 0; n < opacity.List("points").size(); ++n)
    {
        const Reader point = opacity.Item("points", n);
        read.function.opacities.push_back({point.Number("x"), point.Number("y")});
        read.bentCurves |= IsBent(point);
    }
    for (size_t n = 0; n < colour.List("points").size(); ++n)
    {
        const Reader point = colour.Item("points", n);
        const Json& channels = point.List("color");
        const auto isNumber = [](const Json& channel) { return channel.is_number(); };
        if (channels.size() != 3 || !std::all_of(channels.begin(), channels.end(), isNumber))
            point.Refuse("needs three numbers in \"color\"");
        read.function.colours.push_back({point.Number("x"), channels[0], channels[1], channels[2]});
        read.bentCurves |= IsBent(point);
    }
    if (component.Has("gradientOpacity") && !component.TruthOr("disableGradientOpacity", false))
    {
        const Reader gradient = component.Inside("gradientOpacity");
        for (size_t n = 0; n < gradient.List("points").size(); ++n)
            read.gradientOpacity |= gradient.Item("points", n).Number("y") != 1;
    }
    read.shade = component.TruthOr("shade", true);
    if (component.Has("lighting"))
    {
        const Reader lighting = component.Inside("lighting");
        read.function.ambient = lighting.NumberOr("ambient", 0.1);
        read.function.diffuse = lighting.NumberOr("diffuse", 0.7);
        read.function.specular = lighting.NumberOr("specular", 0.2);
        read.specularPower = lighting.NumberOr("specularPower", 10);
    }
    TransferFunction function = Understood(std::move(read));
    if (file.List("volumeProperties").size() > 1 || property.List("components").size() > 1)
        function.warnings.push_back("the palette file holds several volume properties; the first one is used");
    return function;
}
} // namespace

TransferFunction TransferFunctionOfJson(const std::string& text, const std::string& file)
{
    Json json;
    try
    {
        json = Json::parse(text);
    }
    catch (const Json::out_of_range&)
    {
        throw Error(ErrorKind::Input, file + ": holds a number that is too large for any palette");
    }
    catch (const Json::parse_error& error)
    {
        const auto line =
            std::count(text.begin(), text.begin() + std::ptrdiff_t(std::min(error.byte, text.size())), '\n');
        throw Error(ErrorKind::Input, file + ": line " + std::to_string(line + 1) +
                                          " is no JSON; is a comma, a quote "
                                          "or a bracket missing before it?");
    }
    const Reader whole(json, file, "");
    if (whole.Has("volumeProperties"))
        return VolumeProperties(whole);
    if (!whole.Has("points"))
        whole.Refuse("needs \"points\", or \"volumeProperties\" as 3D Slicer writes them");
    return OwnForm(whole);
}
} // namespace corvane::host
