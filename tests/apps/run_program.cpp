#include "run_program.h"

#include <algorithm>
#include <cstdlib>
#include <sys/stat.h>
#include <sys/wait.h>

namespace corvane
{
namespace
{
std::string Quoted(const std::string& text)
{
    std::string quoted = "'";
    for (char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}
} // namespace

Outcome RunIn(const host::ScratchFolder& folder, const std::string& program, const std::vector<std::string>& arguments)
{
    const host::ScratchFolder streams;
    std::string command = "cd " + Quoted(folder.Path()) + " && " + Quoted(program);
    for (const std::string& argument : arguments)
        command += " " + Quoted(argument);
    command += " >" + Quoted(streams / "out") + " 2>" + Quoted(streams / "err") + " </dev/null";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, host::ReadBytes(streams / "out"),
            host::ReadBytes(streams / "err")};
}

Outcome Corvane(const host::ScratchFolder& folder, const std::vector<std::string>& arguments)
{
    return RunIn(folder, CORVANE_PROGRAM, arguments);
}

void ExpectRefusal(const Outcome& outcome, int code, const std::string& part)
{
    EXPECT_EQ(outcome.code, code) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err.rfind("corvane: ", 0), 0u) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_TRUE(host::Contains(outcome.err, part));
}

void MakeFfmpeg(const host::ScratchFolder& folder, const std::string& script)
{
    std::filesystem::create_directory(folder / "bin");
    host::WriteBytes(folder / "bin/ffmpeg", "#!/bin/sh\n" + script);
    chmod((folder / "bin/ffmpeg").c_str(), 0700);
}

std::vector<std::string> FilesIn(const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}
} // namespace corvane
