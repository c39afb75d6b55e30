#ifndef CORVANE_APPS_INPUT_OPTION_H
#define CORVANE_APPS_INPUT_OPTION_H

#include <string>

#include <CLI/CLI.hpp>

namespace corvane::app
{
// The volume that a command works on, the same for every command; the phantom unless another is named.
void AddInput(CLI::App& command, std::string& input);
} // namespace corvane::app

#endif
