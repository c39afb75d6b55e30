#ifndef CORVANE_HOST_ERROR_H
#define CORVANE_HOST_ERROR_H

#include <stdexcept>
#include <string>

namespace corvane::host
{
// What went wrong, as one of the program's documented exit codes.
enum class ErrorKind
{
    Usage = 2,       // the command line or a parameter is wrong
    Input = 3,       // a file cannot be read, or what it holds cannot be shown truthfully
    Output = 4,      // a file cannot be written, or stands there already
    Computation = 5, // the library refused
};

// One line for the user that says what is wrong and what to do.
class Error : public std::runtime_error
{
public:
    // Messages quote files and their names, which may hold anything: see OneLine.
    Error(ErrorKind kind, const std::string& message);
    ErrorKind Kind() const { return kind_; }

private:
    ErrorKind kind_;
};
} // namespace corvane::host

#endif
