#ifndef CORVANE_APPS_CUT_COMMAND_H
#define CORVANE_APPS_CUT_COMMAND_H

#include <CLI/App.hpp>

namespace corvane::app
{
// corvane cut: cuts away what a polygon on a volume rendering covers.
void AddCutCommand(CLI::App& program);
} // namespace corvane::app

#endif
