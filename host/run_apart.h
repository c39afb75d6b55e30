#ifndef CORVANE_HOST_RUN_APART_H
#define CORVANE_HOST_RUN_APART_H

#include <functional>
#include <span>

namespace corvane::host
{
// Fills bytes in a process of its own. For libraries that damaged data can make end the program, run without end, lose
// memory or write messages: all that stays in that process, whose standard output and error go nowhere.
//   bytes    what is filled; left as they are unless the result is true
//   seconds  of processor time that the work may take
//   fill     does the work on as many bytes over there, zeroed; false when it fails. Only the thread that calls this
//            goes on over there
//   returns  false when the work failed, threw anything but an Error, ended its process or took too long
// Throws the Error that the work throws, and Error (Computation) when no process can be started.
bool RunApart(std::span<char> bytes, unsigned int seconds, const std::function<bool(char* bytes)>& fill);
} // namespace corvane::host

#endif
