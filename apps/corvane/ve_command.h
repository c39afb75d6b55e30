#ifndef CORVANE_APPS_VE_COMMAND_H
#define CORVANE_APPS_VE_COMMAND_H

#include <CLI/App.hpp>

namespace corvane::app
{
// corvane ve: virtual endoscopy, a look from a point inside the patient.
void AddVeCommand(CLI::App& program);
} // namespace corvane::app

#endif
