#pragma once

// Private to the Windows half.

#include "Core/System/Platform/Headers/WindowsHeaders.h"

#include <shellscalingapi.h>

namespace Orvik::System::Device::Display
{

/// The system's functions that the displays are asked with. A table, so that a test can stand for desktops that
/// aren't there.
struct DisplayCalls
{
    decltype(&::GetProcessDpiAwareness) getProcessDpiAwareness = &::GetProcessDpiAwareness;
    decltype(&::SetProcessDpiAwareness) setProcessDpiAwareness = &::SetProcessDpiAwareness;
    decltype(&::GetForegroundWindow) getForegroundWindow = &::GetForegroundWindow;
    decltype(&::MonitorFromWindow) monitorFromWindow = &::MonitorFromWindow;
    decltype(&::GetMonitorInfoW) getMonitorInfo = &::GetMonitorInfoW;
    decltype(&::EnumDisplayMonitors) enumDisplayMonitors = &::EnumDisplayMonitors;
    decltype(&::EnumDisplayDevicesW) enumDisplayDevices = &::EnumDisplayDevicesW;
    decltype(&::EnumDisplaySettingsW) enumDisplaySettings = &::EnumDisplaySettingsW;
};

[[nodiscard]] inline DisplayCalls& GetDisplayCalls()
{
    static DisplayCalls s_calls;
    return s_calls;
}

} // namespace Orvik::System::Device::Display
