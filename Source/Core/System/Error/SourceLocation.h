#pragma once

#include <cstdint>
#include <string_view>

namespace Orvik::System::Error
{

/// The part of a source path that a report shows: what follows the last directory named "Source", including the
/// separator. A path without such a directory is shown whole. Both kinds of separator count, even in one path. The
/// result points into `path`.
[[nodiscard]] constexpr const char* ShortenSourcePath(const char* path) noexcept
{
    constexpr std::string_view root = "Source";
    const auto isSeparator = [](char character) { return character == '/' || character == '\\'; };

    const std::string_view text = path;
    for (std::size_t end = text.size(); end > root.size() + 1; --end)
    {
        const std::size_t separator = end - 1;
        const std::size_t begin = separator - root.size();
        if (isSeparator(text[separator]) && text.substr(begin, root.size()) == root && isSeparator(text[begin - 1]))
            return path + separator;
    }
    return path;
}

/// A place in the sources, made where an assertion fails or an exception is thrown. All texts are constants with static
/// storage.
struct SourceLocation
{
    constexpr SourceLocation(const char* path, std::uint64_t lineNumber, const char* functionName) noexcept
        : file(ShortenSourcePath(path)), line(lineNumber), function(functionName)
    {
    }

    const char* file;     ///< the source path, shortened
    std::uint64_t line;   ///< from 1
    const char* function; ///< the unqualified name
};

} // namespace Orvik::System::Error

/// The place where it is written.
#define ORVIK_HERE ::Orvik::System::Error::SourceLocation(__FILE__, static_cast<unsigned>(__LINE__), __func__)
