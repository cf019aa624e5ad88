#pragma once

// Private to the Windows half.

#include "Core/System/Platform/Headers/WindowsHeaders.h"

#include <dwmapi.h>

namespace Orvik::System::Desktop
{

/// The system's functions whose effect on a window can't be read back, and those that the system refuses where another
/// program has the foreground. A table, so that a test sees what they are called with and answers for the system.
struct WindowCalls
{
    decltype(&::DwmEnableBlurBehindWindow) enableBlurBehindWindow = &::DwmEnableBlurBehindWindow;
    decltype(&::SetForegroundWindow) setForegroundWindow = &::SetForegroundWindow;
    decltype(&::GetForegroundWindow) getForegroundWindow = &::GetForegroundWindow;
    decltype(&::GetWindowThreadProcessId) getWindowThreadProcessId = &::GetWindowThreadProcessId;
    decltype(&::IsHungAppWindow) isHungAppWindow = &::IsHungAppWindow;
    decltype(&::AttachThreadInput) attachThreadInput = &::AttachThreadInput;
};

[[nodiscard]] inline WindowCalls& GetWindowCalls()
{
    static WindowCalls s_calls;
    return s_calls;
}

} // namespace Orvik::System::Desktop
