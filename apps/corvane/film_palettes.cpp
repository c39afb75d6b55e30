#include "film_palettes.h"

#include <algorithm>
#include <array>

#include "host/error.h"
#include "host/label_colours.h"
#include "host/numbers.h"
#include "host/palette_file.h"
#include "host/palette_presets.h"
#include "host/read_volume.h"

namespace corvane::app
{
namespace
{
using host::Error;
using host::ErrorKind;
using host::TransferFunction;

std::string PresetList()
{
    std::string names;
    for (const host::PresetName& preset : host::PresetNames())
        names += (names.empty() ? "" : ", ") + preset.name;
    return names;
}

TransferFunction PresetNamed(const std::string& name, const host::Volume& volume)
{
    const std::optional<TransferFunction> preset = host::PresetOf(name, volume);
    if (!preset)
        throw Error(ErrorKind::Usage, "there is no preset '" + name + "'; choose one of " + PresetList() +
                                          ", or give a file with --palette");
    return *preset;
}

// Shows every value alike, so that a label appears as a body with a surface.
TransferFunction Solid(const host::LabelColour& colour)
{
    TransferFunction function;
    function.name = "solid";
    function.opacities = {{-32768, 0.5 * colour.opacity}, {32767, 0.5 * colour.opacity}};
    function.colours = {{0, colour.red / 255.0, colour.green / 255.0, colour.blue / 255.0}};
    function.opacityDistance = 1;
    function.ambient = 0.25;
    function.diffuse = 0.75;
    return function;
}

std::array<bool, 64> LabelsIn(const host::Volume& volume)
{
    std::array<bool, 64> present = {};
    present[0] = true;
    for (uint8_t label : volume.labels)
        present[label & 63] = true;
    return present;
}

// "LABEL:NAME", by label.
std::map<int, std::string> OwnPalettes(const RenderingOptions& options)
{
    std::map<int, std::string> own;
    for (const std::string& text : options.labelPalettes)
    {
        const std::string what =
            "--label-palette takes LABEL:NAME, LABEL:FILE or LABEL:hide, with a label from 0 to 63";
        const size_t colon = text.find(':');
        if (colon == std::string::npos || colon + 1 == text.size())
            throw Error(ErrorKind::Usage, what + ", not '" + text + "'");
        const int label = CountOf(text.substr(0, colon), what, 0, 63);
        if (!own.emplace(label, text.substr(colon + 1)).second)
            throw Error(ErrorKind::Usage, "label " + std::to_string(label) + " has two palettes; give one");
    }
    return own;
}
} // namespace

ChosenPalettes ChoosePalettes(const RenderingOptions& options, const std::string& otherwise, host::Volume& volume)
{
    const std::map<int, std::string> own = OwnPalettes(options);
    const bool solid = options.showLabels || (!options.labels.empty() && own.empty());
    if (!options.labelColours.empty() && !solid)
        throw Error(ErrorKind::Usage, "--label-colors needs --show-labels");
    if (!options.labels.empty())
        volume.labels = host::ReadLabels(options.labels, volume.grid);
    if (!solid && own.empty())
        volume.labels.clear();
    else if (volume.labels.empty())
        throw Error(ErrorKind::Usage, "the input has no labels of its own; give them with --labels FILE");

    ChosenPalettes chosen;
    chosen.base = !options.palette.empty() ? host::ReadTransferFunction(options.palette)
                                           : PresetNamed(options.preset.empty() ? otherwise : options.preset, volume);
    const host::Vec3& spacing = volume.grid.spacing;
    const auto add = [&](int label, const TransferFunction& function)
    {
        host::Palette palette = host::PaletteOf(function, volume.valueSlope, volume.valueIntercept,
                                                std::min({spacing.x, spacing.y, spacing.z}));
        for (const std::string& warning : palette.warnings)
            if (std::find(chosen.warnings.begin(), chosen.warnings.end(), warning) == chosen.warnings.end())
                chosen.warnings.push_back(warning);
        chosen.byLabel[label] = std::move(palette);
    };
    const host::LabelColours colours =
        options.labelColours.empty() ? host::DefaultLabelColours() : host::ReadLabelColours(options.labelColours);
    const std::array<bool, 64> present = LabelsIn(volume);
    for (int label = 0; label < 64; ++label)
    {
        const auto named = own.find(label);
        if (named != own.end() && !present[size_t(label)])
            chosen.warnings.push_back("no voxel has label " + std::to_string(label) + "; its palette shows nothing");
        if (!present[size_t(label)] || (named != own.end() && named->second == "hide"))
            continue;
        if (named != own.end())
        {
            const std::optional<TransferFunction> preset = host::PresetOf(named->second, volume);
            add(label, preset ? *preset : host::ReadTransferFunction(named->second));
        }
        else if (solid && colours[size_t(label)].opacity > 0)
            add(label, Solid(colours[size_t(label)]));
        else
            add(label, chosen.base);
    }
    return chosen;
}
} // namespace corvane::app
