#pragma once

// Private to the Windows half.

#include "Core/System/Platform/Headers/WindowsHeaders.h"

namespace Orvik::System::Desktop
{

/// The name of a window message for the log; "Unknown" for one that a window of ours hardly gets.
[[nodiscard]] const char* GetMessageName(UINT message) noexcept;

} // namespace Orvik::System::Desktop
