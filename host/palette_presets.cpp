#include "palette_presets.h"

#include <algorithm>

#include "window.h"

namespace corvane::host
{
namespace
{
// Opacities are those of 1 mm, so that a preset looks the same in coarse and fine volumes.
TransferFunction Preset(std::vector<TransferFunction::OpacityPoint> opacities,
                        std::vector<TransferFunction::ColourPoint> colours, double ambient, double diffuse,
                        double specular)
{
    TransferFunction function;
    function.opacities = std::move(opacities);
    function.colours = std::move(colours);
    function.opacityDistance = 1;
    function.ambient = ambient;
    function.diffuse = diffuse;
    function.specular = specular;
    return function;
}

// Vessels and bone as the engine shows them by itself: opacities of one sample, and nothing beyond the ends.
TransferFunction Default()
{
    TransferFunction function;
    function.opacities = {{145, 0.05}, {264, 0.17}, {336, 0.28}, {1448, 0.62}};
    function.colours = {{145, 1, 0x11 / 255.0, 0x11 / 255.0},
                        {264, 1, 1, 0x75 / 255.0},
                        {336, 1, 1, 1},
                        {1448, 1, 0xF5 / 255.0, 0xF5 / 255.0}};
    function.holdEnds = false;
    return function;
}

TransferFunction Bone()
{
    return Preset({{200, 0}, {300, 0.2}, {450, 0.75}, {900, 0.95}},
                  {{200, 0.62, 0.36, 0.24}, {300, 0.90, 0.76, 0.56}, {600, 0.98, 0.93, 0.82}, {1400, 1, 1, 0.97}}, 0.12,
                  0.85, 0.2);
}

TransferFunction Vessels()
{
    return Preset({{130, 0}, {170, 0.08}, {230, 0.5}, {450, 0.85}},
                  {{130, 0.60, 0.05, 0.03},
                   {190, 0.78, 0.14, 0.08},
                   {300, 0.95, 0.55, 0.32},
                   {500, 0.98, 0.90, 0.76},
                   {1200, 1, 1, 0.95}},
                  0.12, 0.85, 0.25);
}

TransferFunction Muscle()
{
    return Preset({{-20, 0}, {25, 0.12}, {60, 0.4}, {120, 0.5}, {250, 0.75}, {600, 0.95}},
                  {{-20, 0.50, 0.16, 0.12},
                   {60, 0.68, 0.25, 0.19},
                   {140, 0.84, 0.45, 0.34},
                   {260, 0.93, 0.80, 0.64},
                   {700, 1, 0.96, 0.88}},
                  0.12, 0.85, 0.15);
}

TransferFunction Skin()
{
    return Preset({{-600, 0}, {-420, 0.25}, {-250, 0.9}, {-100, 1}},
                  {{-600, 0.85, 0.62, 0.50}, {-200, 0.90, 0.70, 0.57}, {100, 0.94, 0.75, 0.62}}, 0.14, 0.84, 0.08);
}

// Air stays clear; what is seen is the thin layer in which values rise from air to tissue.
TransferFunction Lung()
{
    return Preset(
        {{-800, 0}, {-680, 0.07}, {-540, 0.15}, {-430, 0.17}, {-340, 0}},
        {{-800, 0.55, 0.68, 0.85}, {-650, 0.80, 0.82, 0.88}, {-520, 0.95, 0.74, 0.64}, {-340, 0.9, 0.45, 0.32}}, 0.15,
        0.85, 0);
}

// The inner wall of hollow organs, seen from their air.
TransferFunction Airway()
{
    return Preset({{-750, 0}, {-600, 0.15}, {-450, 0.8}, {-300, 1}},
                  {{-750, 0.85, 0.55, 0.48}, {-400, 0.88, 0.58, 0.50}, {100, 0.95, 0.72, 0.62}}, 0.1, 0.9, 0.15);
}

TransferFunction Colon()
{
    return Preset({{-850, 0}, {-700, 0.2}, {-550, 0.9}, {-400, 1}},
                  {{-850, 0.80, 0.45, 0.34}, {-450, 0.86, 0.52, 0.38}, {100, 0.96, 0.70, 0.52}}, 0.1, 0.9, 0.25);
}

// Magnetic resonance has no scale of its own: the background stays clear, the brightest hundredth is opaque.
TransferFunction MagneticResonance(const Volume& volume)
{
    const Window window = PercentileWindow(volume, 1, 99.5);
    const double low = window.centre - 0.5 * window.width;
    const auto at = [&](double share) { return low + share * window.width; };
    return Preset(
        {{at(0.15), 0}, {at(0.3), 0.06}, {at(0.6), 0.25}, {at(1), 0.6}},
        {{at(0.15), 0.35, 0.25, 0.22}, {at(0.4), 0.75, 0.60, 0.52}, {at(0.7), 0.95, 0.88, 0.80}, {at(1), 1, 1, 1}},
        0.15, 0.85, 0.1);
}
} // namespace

const std::vector<PresetName>& PresetNames()
{
    static const std::vector<PresetName> names = {
        {"default", "contrast-filled vessels and bone; for other than CT the same as mr"},
        {"bone", "bone, and what is as dense"},
        {"vessels", "contrast-filled vessels in red, bone in white"},
        {"muscle", "muscle and organs without skin and fat, bone in white"},
        {"skin", "the surface of the body"},
        {"lung", "the air-filled lung with its vessels"},
        {"airway", "the wall of the airway, seen from inside"},
        {"colon", "the wall of an air-filled bowel, seen from inside"},
        {"mr", "bright tissue; the points follow from the volume's values"},
    };
    return names;
}

std::optional<TransferFunction> PresetOf(const std::string& name, const Volume& volume)
{
    TransferFunction function;
    if (name == "mr" || (name == "default" && !HoldsHounsfieldUnits(volume)))
        function = MagneticResonance(volume);
    else if (name == "default")
        function = Default();
    else if (name == "bone")
        function = Bone();
    else if (name == "vessels")
        function = Vessels();
    else if (name == "muscle")
        function = Muscle();
    else if (name == "skin")
        function = Skin();
    else if (name == "lung")
        function = Lung();
    else if (name == "airway")
        function = Airway();
    else if (name == "colon")
        function = Colon();
    else
        return std::nullopt;
    function.name = name;
    return function;
}
} // namespace corvane::host
