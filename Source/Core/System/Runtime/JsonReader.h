#pragma once

#include <cstddef>
#include <iosfwd>
#include <rapidjson/document.h>
#include <string>

namespace Orvik::System::Runtime
{

// Reading JSON that anybody may have written. The library recurses where it parses by default, validates and compiles
// a schema, and takes some of a schema's types for granted; nothing here does.

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

/// Whether the value is nested little enough for operations that recurse.
[[nodiscard]] bool IsShallow(const rapidjson::Value& value);

/// Whether the library can compile the schema without running into an assertion of its own or round in circles.
[[nodiscard]] bool IsCompilable(const rapidjson::Document& schema);

} // namespace Orvik::System::Runtime
