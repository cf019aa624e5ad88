#pragma once

#include <cstddef>
#include <iosfwd>
#include <rapidjson/document.h>
#include <string>

namespace Orvik::System::Runtime
{

// Reads JSON from untrusted sources. The library by default recurses where it parses, validates and compiles a schema,
// and doesn't check some of a schema's types; nothing here relies on that.

struct JsonParseResult
{
    rapidjson::ParseErrorCode error = rapidjson::kParseErrorNone;
    std::size_t offset = 0; ///< bytes from the beginning to the error
};

/// Parses up to the end or the first zero byte. `document` is Null after an error.
[[nodiscard]] JsonParseResult ParseJson(const std::string& text, rapidjson::Document& document);
[[nodiscard]] JsonParseResult ParseJson(std::istream& stream, rapidjson::Document& document);

/// Describes a parse error in English, with a full stop.
[[nodiscard]] const char* GetParseErrorText(rapidjson::ParseErrorCode error) noexcept;

/// Whether the value's nesting is flat enough for operations that recurse.
[[nodiscard]] bool IsShallow(const rapidjson::Value& value);

/// Whether no string and no name ends within a character of UTF-8: a validator reads past such an end. `value` must be
/// shallow.
[[nodiscard]] bool HasWholeCharacters(const rapidjson::Value& value);

/// Whether the library can compile the schema without failing an assertion of its own or running in circles.
[[nodiscard]] bool IsCompilable(const rapidjson::Document& schema);

} // namespace Orvik::System::Runtime
