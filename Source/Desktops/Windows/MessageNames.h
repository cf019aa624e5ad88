#pragma once

// Windows' own.

#include "Systems/Windows/WindowsHeaders.h"

namespace Orvik::Desktops::Windows
{

/// The name of a window message for the log; "Unknown" for messages outside of the table's 58. Those also come, for
/// example the characters that the system makes from keys (WM_CHAR).
[[nodiscard]] const char* GetMessageName(UINT message) noexcept;

} // namespace Orvik::Desktops::Windows
