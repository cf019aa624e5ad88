#pragma once

#include <string>
#include <string_view>

namespace Orvik::System::Text
{

/// Converts wide text (UTF-16 or UTF-32, depending on `wchar_t`) to UTF-8. What isn't valid becomes U+FFFD.
[[nodiscard]] std::string ToUtf8(std::wstring_view text);

/// Converts UTF-8 to wide text. Each byte that belongs to no valid sequence becomes U+FFFD.
[[nodiscard]] std::wstring ToWide(std::string_view text);

} // namespace Orvik::System::Text
