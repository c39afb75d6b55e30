#ifndef CORVANE_APPS_REPORT_H
#define CORVANE_APPS_REPORT_H

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/vec3.h"

namespace corvane::app
{
using Json = nlohmann::ordered_json;

// Results go to standard output, messages to standard error, one line each.
void PrintResult(const std::string& text);
void PrintJson(const Json& json);
void PrintMessage(const std::string& text);
void PrintWarnings(const std::vector<std::string>& warnings);

// Throws Error (Output) when standard output has not taken everything.
void FinishResults();

// How far a long piece of work has come, on one line of a terminal; nothing where standard error is no terminal.
class Progress
{
public:
    explicit Progress(int total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    void Show(int done);

private:
    int total_;
    bool shown_;
};

// A point or a direction of patient space, in LPS or turned to RAS.
host::Vec3 TurnedIf(bool ras, host::Vec3 lps);
Json JsonOf(host::Vec3 vector);

// What the exit codes mean, for the help texts.
extern const char* const kExitCodes;
} // namespace corvane::app

#endif
