#include "numbers.h"

#include <charconv>

#include "error.h"
#include "read_text.h"

namespace corvane::host
{
namespace
{
[[noreturn]] void Refuse(const std::string& text, const std::string& what)
{
    throw Error(ErrorKind::Usage, what + ", not '" + text + "'");
}
} // namespace

double RequireNumber(const std::string& text, const std::string& what)
{
    const std::optional<double> number = ParseNumber(text);
    if (!number)
        Refuse(text, what);
    return *number;
}

int RequireInteger(const std::string& text, const std::string& what)
{
    int number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || stop != text.data() + text.size())
        Refuse(text, what);
    return number;
}

std::vector<double> RequireNumbers(const std::string& text, char separator, size_t count, const std::string& what)
{
    const std::optional<std::vector<double>> numbers = ParseNumbers(text, separator);
    if (!numbers || numbers->size() != count)
        Refuse(text, what);
    return *numbers;
}

std::vector<std::string> Split(const std::string& text, char separator)
{
    std::vector<std::string> pieces(1);
    for (char c : text)
        if (c == separator)
            pieces.emplace_back();
        else
            pieces.back() += c;
    return pieces;
}

std::string ExactNumber(double value)
{
    char text[64];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}
} // namespace corvane::host
