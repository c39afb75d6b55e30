#ifndef CORVANE_APPS_PROJECTION_COMMAND_H
#define CORVANE_APPS_PROJECTION_COMMAND_H

#include <CLI/App.hpp>

namespace corvane::app
{
// Adds `corvane mip`, `aip` and `minip`: the largest, mean and smallest values along rays through a volume or a slab.
void AddProjectionCommands(CLI::App& program);
} // namespace corvane::app

#endif
