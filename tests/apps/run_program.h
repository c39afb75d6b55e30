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

// What a shell does before it runs "$0" with files that cannot grow beyond a block. Where lines are counted, the counts
// are such a file, too, and are left out.
constexpr char kOnAFullDisk[] = "trap '' XFSZ; ulimit -f 1; LLVM_PROFILE_FILE=/dev/null; exec \"$0\" ";

// Runs a program with these arguments in a folder.
Outcome RunIn(const host::ScratchFolder& folder, const std::string& program, const std::vector<std::string>& arguments);

// Runs corvane.
Outcome Corvane(const host::ScratchFolder& folder, const std::vector<std::string>& arguments);

// Expects a failure: this exit code, nothing on standard output, and on standard error one line that says `part`.
void ExpectRefusal(const Outcome& outcome, int code, const std::string& part);

// Makes a program bin/ffmpeg in a folder, to stand in for the real one: no test needs that.
//   script  of the shell: what it does
void MakeFfmpeg(const host::ScratchFolder& folder, const std::string& script);

// A script that makes a film of the bare pictures that it reads, where the last word says.
constexpr char kKeepFilm[] = "for last; do :; done\n/bin/cat > \"$last\"\n";

// Names of all files in a folder, sorted.
std::vector<std::string> FilesIn(const std::string& folder);
} // namespace corvane

#endif
