#pragma once

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

// What of a report is the same in every run.
namespace Orvik::Tests
{

inline bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// Writes "12" for each number that stands between `before` and `after`.
inline std::string ReplaceNumbers(std::string text, std::string_view before, std::string_view after)
{
    for (std::size_t found = text.find(before); found != std::string::npos; found = text.find(before, found + 1))
    {
        const std::size_t begin = found + before.size();
        std::size_t end = begin;
        while (end < text.size() && IsDigit(text[end]))
            ++end;
        if (end > begin && text.compare(end, after.size(), after) == 0)
            text.replace(begin, end - begin, "12");
    }
    return text;
}

/// Whether `text` has a digit for each '0' of the pattern, and the pattern's own characters otherwise.
inline bool Matches(std::string_view text, std::string_view pattern)
{
    return std::ranges::equal(text, pattern,
                              [](char character, char wanted)
                              { return wanted == '0' ? IsDigit(character) : character == wanted; });
}

/// Line numbers and times of file names don't matter: "12" for any of the first, "<time>" for any of the second.
inline std::string Normalize(std::string text)
{
    constexpr std::string_view time = "0000-00-00T00-00-00";
    for (std::size_t begin = 0; begin + time.size() <= text.size(); ++begin)
    {
        if (Matches(std::string_view(text).substr(begin, time.size()), time))
            text.replace(begin, time.size(), "<time>");
    }
    return ReplaceNumbers(ReplaceNumbers(std::move(text), " at ", ":"), "line '", "'");
}

/// Log lines without their times.
inline std::string NormalizeLog(const std::string& text)
{
    std::istringstream stream(Normalize(text));
    std::string result;
    for (std::string line; std::getline(stream, line);)
        result += "[" + line.substr(std::min(line.size(), line.find(" | ") + 3)) + "\n";
    return result;
}

} // namespace Orvik::Tests
