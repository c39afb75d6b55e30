#include "label_colours.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "error.h"
#include "numbers.h"
#include "read_text.h"
#include "text_file.h"

namespace corvane::host
{
namespace
{
// The words of a line; a quoted text is one word and keeps its opening quote.
std::vector<std::string> WordsOf(const std::string& line)
{
    std::vector<std::string> words;
    size_t at = 0;
    while ((at = line.find_first_not_of(" \t\r", at)) != std::string::npos)
    {
        const bool quoted = line[at] == '"';
        const size_t end = quoted ? line.find('"', at + 1) : line.find_first_of(" \t\r", at);
        words.push_back(line.substr(at, end == std::string::npos ? end : end - at));
        if (end == std::string::npos)
            break;
        at = quoted ? end + 1 : end;
    }
    return words;
}

double NumberWithin(const std::string& word, const char* what, double highest)
{
    const std::string range = std::string(what) + " is a number from 0 to " + Number(highest);
    const double number = RequireNumber(word, range);
    if (number < 0 || number > highest)
        throw Error(ErrorKind::Usage, range + ", not '" + word + "'");
    return number;
}

uint8_t Channel(const std::string& word, const char* what) { return uint8_t(NumberWithin(word, what, 255) + 0.5); }

// One line of either kind; false: it names a label above 63.
bool ParseLine(const std::vector<std::string>& words, size_t& label, LabelColour& colour)
{
    const bool described = words.size() == 8 && words.back().front() == '"';
    if (!described && words.size() != 6)
        throw Error(ErrorKind::Usage, "a line is 'label name red green blue opacity' or "
                                      "'label red green blue opacity shown mesh \"name\"'");
    const int number = RequireInteger(words[0], "a label is a whole number");
    if (number < 0)
        throw Error(ErrorKind::Usage, "a label is 0 or more, not '" + words[0] + "'");
    const size_t first = described ? 1 : 2;
    colour.red = Channel(words[first], "red");
    colour.green = Channel(words[first + 1], "green");
    colour.blue = Channel(words[first + 2], "blue");
    if (described)
    {
        colour.name = words[7].substr(1);
        const double shown = NumberWithin(words[5], "the sign for shown", 1);
        colour.opacity = shown > 0 ? NumberWithin(words[4], "opacity", 1) : 0;
    }
    else
    {
        colour.name = words[1];
        std::replace(colour.name.begin(), colour.name.end(), '_', ' ');
        colour.opacity = NumberWithin(words[5], "opacity", 255) / 255;
    }
    label = size_t(number);
    return label < LabelColours().size();
}
} // namespace

LabelColours DefaultLabelColours()
{
    // Neighbouring labels differ clearly in hue; further labels repeat the row in darker shades.
    constexpr uint8_t kHues[8][3] = {{230, 170, 140}, {255, 236, 150}, {235, 50, 40},  {60, 170, 255},
                                     {190, 105, 60},  {110, 215, 190}, {255, 80, 220}, {120, 210, 70}};
    LabelColours colours;
    for (size_t label = 1; label < colours.size(); ++label)
    {
        const size_t hue = (label - 1) % 8, round = (label - 1) / 8;
        const auto shade = [&](int channel) { return uint8_t(kHues[hue][channel] * (16 - round) / 16); };
        colours[label] = {"label " + std::to_string(label), shade(0), shade(1), shade(2), 1};
    }
    return colours;
}

LabelColours ReadLabelColours(const std::string& path)
{
    std::istringstream file(TextOfFile(path, "a colour table (.ctbl or label descriptions)"));
    LabelColours colours;
    std::string line;
    int lineNumber = 0, named = 0;
    while (std::getline(file, line))
    {
        ++lineNumber;
        const std::vector<std::string> words = WordsOf(line);
        if (words.empty() || words[0][0] == '#')
            continue;
        try
        {
            size_t label = 0;
            LabelColour colour;
            if (ParseLine(words, label, colour))
            {
                colour.name = OneLine(colour.name);
                colours[label] = colour;
            }
            ++named;
        }
        catch (const Error& error)
        {
            throw Error(ErrorKind::Input, path + ", line " + std::to_string(lineNumber) + ": " + error.what());
        }
    }
    if (file.bad() || named == 0)
        throw Error(ErrorKind::Input, path + ": names no label; give a colour table (.ctbl or label descriptions)");
    return colours;
}
} // namespace corvane::host
