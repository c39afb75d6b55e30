#ifndef CORVANE_TESTS_APPS_RUN_PROGRAM_H
#define CORVANE_TESTS_APPS_RUN_PROGRAM_H

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "tests/host/png_reader.h"
#include "tests/host/read_testing.h"

namespace corvane
{
using Json = nlohmann::json;

// What a run of the program left.
struct Outcome
{
    int code = -1;
    std::string out, err;
};

// Runs a program with these arguments in a folder.
Outcome RunIn(const host::ScratchFolder& folder, const std::string& program, const std::vector<std::string>& arguments);

// Runs corvane.
Outcome Corvane(const host::ScratchFolder& folder, const std::vector<std::string>& arguments);

// Expects a failure: this exit code, nothing on standard output, and on standard error one line that says `part`.
void ExpectRefusal(const Outcome& outcome, int code, const std::string& part);

// Names of all files in a folder, sorted.
std::vector<std::string> FilesIn(const std::string& folder);
} // namespace corvane

#endif
