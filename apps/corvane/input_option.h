#ifndef CORVANE_APPS_INPUT_OPTION_H
#define CORVANE_APPS_INPUT_OPTION_H

#include <string>

#include <CLI/CLI.hpp>

#include "host/volume.h"

namespace corvane::app
{
// The volume that a command works on, the same for every command; the phantom unless another is named.
void AddInput(CLI::App& command, std::string& input);

// Which axes `--pad` (auto, all or none) doubles the outermost voxels of. Throws Error (Usage) for another word.
host::Padding PaddingOf(const std::string& pad, const host::Grid& grid);
} // namespace corvane::app

#endif
