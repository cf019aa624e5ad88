#pragma once

#include <string>

namespace Orvik::Tests
{

/// Why the JSON text doesn't match `Docs/Schemas/<schema>.json`: the schema's keyword and the place in the text, or
/// that the text isn't JSON. Empty if it matches. Throws `std::runtime_error` if there is no such schema.
[[nodiscard]] std::string FindMismatch(const std::string& json, const std::string& schema);

} // namespace Orvik::Tests
