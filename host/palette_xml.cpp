#include "palette_xml.h"

#include <algorithm>

#include <tinyxml2.h>

#include "error.h"
#include "palette_slicer.h"
#include "read_text.h"

namespace corvane::host
{
namespace
{
using tinyxml2::XMLElement;

constexpr size_t kNamesShown = 40;

[[noreturn]] void Refuse(const std::string& file, const std::string& what)
{
    throw Error(ErrorKind::Input, file + ": " + what);
}

std::string Attribute(const XMLElement& element, const char* name)
{
    const char* text = element.Attribute(name);
    return text ? text : "";
}

// All volume properties, however deep they stand: scenes wrap them in elements of their own.
std::vector<const XMLElement*> VolumeProperties(const tinyxml2::XMLDocument& document)
{
    struct Finder : tinyxml2::XMLVisitor
    {
        std::vector<const XMLElement*> found;
        bool VisitEnter(const XMLElement& element, const tinyxml2::XMLAttribute*) override
        {
            if (std::string(element.Name()) == "VolumeProperty")
                found.push_back(&element);
            return true;
        }
    } finder;
    document.Accept(&finder);
    return finder.found;
}

const XMLElement& Chosen(const std::vector<const XMLElement*>& properties, const std::string& file,
                         const std::string& wanted)
{
    if (properties.empty())
        Refuse(file, "holds no VolumeProperty");
    if (properties.size() == 1 && wanted.empty())
        return *properties.front();
    std::string names;
    for (size_t n = 0; n < properties.size(); ++n)
    {
        const std::string name = Attribute(*properties[n], "name");
        if (!wanted.empty() && name == wanted)
            return *properties[n];
        if (n < kNamesShown)
            names += (n ? ", " : "") + name;
    }
    if (properties.size() > kNamesShown)
        names += ", ...";
    Refuse(file, (wanted.empty() ? "holds several presets" : "holds no preset '" + wanted + "'") +
                     std::string("; choose one as FILE#NAME: ") + names);
}

// "COUNT number number ...": the count, and so many numbers in groups.
std::vector<double> List(const XMLElement& element, const char* name, size_t group, const std::string& file)
{
    std::string text = Attribute(element, name);
    std::replace(text.begin(), text.end(), '\n', ' ');
    std::replace(text.begin(), text.end(), '\t', ' ');
    const std::string where =
        "line " + std::to_string(element.GetLineNum()) + ", " + name + " of '" + Attribute(element, "name") + "'";
    std::optional<std::vector<double>> numbers = ParseNumbers(text, ' ');
    if (!numbers || numbers->empty())
        Refuse(file, where + " must be a count and as many numbers");
    const double count = numbers->front();
    numbers->erase(numbers->begin());
    if (count != double(numbers->size()))
        Refuse(file, where + " announces " + Number(count) + " numbers and has " + std::to_string(numbers->size()));
    if (numbers->size() % group != 0)
        Refuse(file, where + " must have " + std::to_string(group) + " numbers for each point");
    return *numbers;
}

double NumberOr(const XMLElement& element, const char* name, double otherwise, const std::string& file)
{
    const char* text = element.Attribute(name);
    if (!text)
        return otherwise;
    const std::optional<double> number = ParseNumber(text);
    if (!number)
        Refuse(file, "line " + std::to_string(element.GetLineNum()) + ", " + name + " of '" +
                         Attribute(element, "name") + "' must be a number, not '" + text + "'");
    return *number;
}
} // namespace

TransferFunction TransferFunctionOfXml(const std::string& text, const std::string& file, const std::string& wanted)
{
    tinyxml2::XMLDocument document;
    if (document.Parse(text.data(), text.size()) != tinyxml2::XML_SUCCESS)
        Refuse(file, "is no complete XML; see line " + std::to_string(document.ErrorLineNum()));
    const XMLElement& element = Chosen(VolumeProperties(document), file, wanted);

    SlicerProperty read;
    read.function.name = Attribute(element, "name");
    const std::vector<double> opacities = List(element, "scalarOpacity", 2, file);
    for (size_t n = 0; n < opacities.size(); n += 2)
        read.function.opacities.push_back({opacities[n], opacities[n + 1]});
    const std::vector<double> colours = List(element, "colorTransfer", 4, file);
    for (size_t n = 0; n < colours.size(); n += 4)
        read.function.colours.push_back({colours[n], colours[n + 1], colours[n + 2], colours[n + 3]});
    if (element.Attribute("gradientOpacity") && NumberOr(element, "disableGradientOpacity", 0, file) == 0)
    {
        const std::vector<double> gradient = List(element, "gradientOpacity", 2, file);
        for (size_t n = 1; n < gradient.size(); n += 2)
            read.gradientOpacity |= gradient[n] != 1;
    }
    read.function.opacityDistance = NumberOr(element, "scalarOpacityUnitDistance", 1, file);
    if (!(read.function.opacityDistance > 0))
        Refuse(file, "scalarOpacityUnitDistance must be above 0 mm");
    read.shade = NumberOr(element, "shade", 1, file) != 0;
    read.nearestVoxel = NumberOr(element, "interpolation", 1, file) == 0;
    read.function.ambient = NumberOr(element, "ambient", 0.1, file);
    read.function.diffuse = NumberOr(element, "diffuse", 0.7, file);
    read.function.specular = NumberOr(element, "specular", 0.2, file);
    read.specularPower = NumberOr(element, "specularPower", 10, file);
    return Understood(std::move(read));
}
} // namespace corvane::host
