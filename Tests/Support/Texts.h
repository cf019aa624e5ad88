#pragma once

#include "Core/System/Text/Paths.h"

#include <gmock/gmock.h>
#include <regex>
#include <string>

namespace Orvik::Tests
{

/// A path in this platform's form: with its own separators.
[[nodiscard]] inline std::string NativePath(const std::string& path)
{
    return System::Text::PathToUtf8(System::Text::PathFromUtf8(path));
}

/// The whole text matches. On Windows, gtest's own matcher supports only very simple patterns.
MATCHER_P(MatchesPattern, pattern, "matches the pattern " + std::string(pattern))
{
    return std::regex_match(std::string(arg), std::regex(std::string(pattern)));
}

} // namespace Orvik::Tests
