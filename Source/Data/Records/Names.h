#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Orvik::Data
{

// What a file that anybody may have written says doesn't become a part of a path, or a label, before it has passed
// here.

/// Whether the text has the form of an identifier: a random UUID in braces, 38 characters, with upper-case digits.
[[nodiscard]] bool IsIdentifier(std::string_view text);

/// Whether the text has the form of a time in the files.
[[nodiscard]] bool IsTime(std::string_view text);

/// Whether a label can be used: UTF-8 without control characters and without spaces at its ends, up to
/// `s_maxLabelBytes`, not empty.
[[nodiscard]] bool IsLabel(std::string_view text);

/// Whether the text is the bare name of a file on every system: no folder, no drive, no device of Windows, no
/// characters that one of them refuses.
[[nodiscard]] bool IsFileName(std::string_view text);

/// The same for a way down from a folder, its names parted by "/".
[[nodiscard]] bool IsRelativePath(std::string_view text);

/// An identifier that follows from a text: the same one for the same text, at any time and everywhere.
[[nodiscard]] std::string MakeIdentifier(std::string_view text);

/// A number that follows from a text and a seed, evenly spread.
[[nodiscard]] std::uint64_t MixText(std::string_view text, std::uint64_t seed);

} // namespace Orvik::Data
