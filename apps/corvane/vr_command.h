#ifndef CORVANE_APPS_VR_COMMAND_H
#define CORVANE_APPS_VR_COMMAND_H

#include <CLI/App.hpp>

namespace corvane::app
{
// corvane vr: volume renderings along parallel rays.
void AddVrCommand(CLI::App& program);
} // namespace corvane::app

#endif
