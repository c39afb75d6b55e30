#ifndef CORVANE_HOST_PALETTE_PRESETS_H
#define CORVANE_HOST_PALETTE_PRESETS_H

#include "transfer_function.h"
#include "volume.h"

#include <optional>
#include <string>
#include <vector>

namespace corvane::host
{
struct PresetName
{
    std::string name, description;
};

// The transfer functions that come along, in the order in which they are offered.
const std::vector<PresetName>& PresetNames();

// A preset by its name, or nothing for another name. All are made for Hounsfield units but "mr", whose points come
// from the volume's own values; "default" is "mr" for a volume without Hounsfield units.
std::optional<TransferFunction> PresetOf(const std::string& name, const Volume& volume);
} // namespace corvane::host

#endif
