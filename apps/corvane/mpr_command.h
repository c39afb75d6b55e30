#ifndef CORVANE_APPS_MPR_COMMAND_H
#define CORVANE_APPS_MPR_COMMAND_H

#include <CLI/App.hpp>

namespace corvane::app
{
// Adds `corvane mpr`: pictures of planes through a volume.
void AddMprCommand(CLI::App& program);
} // namespace corvane::app

#endif
