#pragma once

// Private to the Windows half.

#include "Core/System/Platform/Headers/WindowsHeaders.h"

#include <dwmapi.h>

namespace Orvik::System::Desktop
{

/// The system's functions whose effect on a window can't be read back. A table, so that a test sees what they are
/// called with.
struct WindowCalls
{
    decltype(&::DwmEnableBlurBehindWindow) enableBlurBehindWindow = &::DwmEnableBlurBehindWindow;
};

[[nodiscard]] inline WindowCalls& GetWindowCalls()
{
    static WindowCalls s_calls;
    return s_calls;
}

} // namespace Orvik::System::Desktop
