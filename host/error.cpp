#include "error.h"

#include "read_text.h"

namespace corvane::host
{
Error::Error(ErrorKind kind, const std::string& message) : std::runtime_error(OneLine(message)), kind_(kind) {}
} // namespace corvane::host
