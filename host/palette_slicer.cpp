#include "palette_slicer.h"

#include "read_text.h"

namespace corvane::host
{
namespace
{
constexpr double kSpecularPower = 96; // the renderer's own
}

TransferFunction Understood(SlicerProperty property)
{
    TransferFunction& function = property.function;
    const auto warn = [&](const std::string& what)
    {
        function.warnings.push_back("the palette" + (function.name.empty() ? "" : " '" + function.name + "'") + " " +
                                    what);
    };
    if (property.gradientOpacity)
        warn("has a gradient opacity, which is not supported and left out: flat regions look more opaque");
    if (property.bentCurves)
        warn("has curves that are bent between their points; they are shown straight");
    if (property.nearestVoxel)
        warn("asks for voxels without interpolation; they are interpolated");
    if (!property.shade)
    {
        function.ambient = 1;
        function.diffuse = function.specular = 0;
    }
    else if (function.specular > 0 && property.specularPower != kSpecularPower)
        warn("has highlights of specular power " + Number(property.specularPower) +
             "; they are shown with 96, smaller");
    return std::move(function);
}
} // namespace corvane::host
