#pragma once

// Windows' own.

#include "Systems/Windows/WindowsHeaders.h"

namespace Orvik::Desktops::Windows
{

/// The name of a window message for the log; "Unknown" for one beyond the table's 58. Those come too, the characters
/// that the system makes of keys for example (WM_CHAR).
[[nodiscard]] const char* GetMessageName(UINT message) noexcept;

} // namespace Orvik::Desktops::Windows
