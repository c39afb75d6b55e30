#ifndef CORVANE_APPS_VERIFY_COMMAND_H
#define CORVANE_APPS_VERIFY_COMMAND_H

#include <CLI/App.hpp>

namespace corvane::app
{
// Adds `corvane verify`: whether this machine makes the same pictures as every other.
void AddVerifyCommand(CLI::App& program);
} // namespace corvane::app

#endif
