#pragma once

#include <cstdint>
#include <string>

namespace Orvik::System::Error
{

/// Describes the calling thread's last system error: the system's message without a full stop or line end at its end, a
/// blank, and the code in upper-case hexadecimal in parentheses, such as "Permission denied (D)". "None (0)" if there
/// is none. Writes to `text` and returns it. Call it directly after the failed call, before anything else can change
/// the error.
std::string& FormatLastError(std::string& text);

/// The same as a new string.
[[nodiscard]] std::string FormatLastError();

/// The same for a code of the system.
[[nodiscard]] std::string FormatError(std::uint32_t code);

/// The last system error of the calling thread, 0 if there is none.
[[nodiscard]] std::uint32_t GetLastErrorPlatform() noexcept;

/// The system's own text for a code, unchanged.
[[nodiscard]] std::string GetErrorMessagePlatform(std::uint32_t code);

} // namespace Orvik::System::Error
