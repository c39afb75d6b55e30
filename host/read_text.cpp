#include "read_text.h"

#include <charconv>
#include <filesystem>

namespace corvane::host
{
std::string Number(double value)
{
    char text[64]; // 0 is added so that minus zero shows as zero
    const auto end = std::to_chars(text, text + sizeof text, value + 0.0, std::chars_format::general, 6).ptr;
    return std::string(text, end);
}

std::string PointText(Vec3 point)
{
    return "(" + Number(point.x) + ", " + Number(point.y) + ", " + Number(point.z) + ")";
}

std::string Trimmed(std::string_view text)
{
    constexpr std::string_view kBlank(" \t\r\n\0", 5);
    const size_t first = text.find_first_not_of(kBlank);
    if (first == std::string_view::npos)
        return {};
    return std::string(text.substr(first, text.find_last_not_of(kBlank) - first + 1));
}

std::string OneLine(std::string text)
{
    constexpr size_t kLongest = 2000, kStart = 1500, kEnd = 400;
    for (char& c : text)
        if (static_cast<unsigned char>(c) < ' ' || c == 127)
            c = ' ';
    return text.size() <= kLongest ? text : text.substr(0, kStart) + " ... " + text.substr(text.size() - kEnd);
}

std::optional<double> ParseNumber(std::string_view text)
{
    const std::string trimmed = Trimmed(text);
    const char* first = trimmed.data();
    const char* const last = first + trimmed.size();
    if (first != last && *first == '+')
        ++first;
    double value = 0;
    const auto [end, error] = std::from_chars(first, last, value);
    if (error != std::errc() || end != last || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<std::vector<double>> ParseNumbers(std::string_view text, char separator)
{
    std::vector<double> numbers;
    for (size_t start = 0; start <= text.size();)
    {
        const size_t end = std::min(text.find(separator, start), text.size());
        const std::string_view part = text.substr(start, end - start);
        start = end + 1;
        if (separator == ' ' && Trimmed(part).empty())
            continue;
        const std::optional<double> number = ParseNumber(part);
        if (!number)
            return std::nullopt;
        numbers.push_back(*number);
    }
    return numbers;
}

std::string FileNameOf(const std::string& path)
{
    const std::filesystem::path parts(path);
    return parts.has_filename() ? parts.filename().string() : parts.parent_path().filename().string();
}
} // namespace corvane::host
