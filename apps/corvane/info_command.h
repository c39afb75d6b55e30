#ifndef CORVANE_APPS_INFO_COMMAND_H
#define CORVANE_APPS_INFO_COMMAND_H

#include <CLI/App.hpp>

namespace corvane::app
{
// Adds `corvane info`: what a volume is, or which series a folder holds.
void AddInfoCommand(CLI::App& program);
} // namespace corvane::app

#endif
