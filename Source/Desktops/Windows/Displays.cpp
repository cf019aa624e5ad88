#include "Desktops/Windows/WindowsDesktop.h"

#include "Core/System/Desktop/DisplayMode.h"
#include "Core/System/Error/Exception.h"
#include "Core/System/Error/SystemError.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Text/Unicode.h"
#include "Systems/Windows/SystemCall.h"

#include <cwchar>
#include <optional>
#include <shellscalingapi.h>

namespace Orvik::Desktops::Windows
{
namespace
{

using System::Device::Display::ApplyMode;
using System::Device::Display::DisplayDescriptor;
using System::Device::Display::DisplayMode;
using System::Device::Display::InvalidDisplayId;
using Systems::SystemCall;

constexpr DWORD s_neededFields =
    DM_POSITION | DM_BITSPERPEL | DM_PELSWIDTH | DM_PELSHEIGHT | DM_DISPLAYFLAGS | DM_DISPLAYFREQUENCY;

/// The device name of the monitor with the foreground window; empty if it is unknown.
MONITORINFOEXW GetActiveMonitor()
{
    MONITORINFOEXW monitor = {};
    monitor.cbSize = sizeof(monitor);
    SystemCall<&::GetMonitorInfoW>(
        SystemCall<&::MonitorFromWindow>(SystemCall<&::GetForegroundWindow>(), MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor;
}

/// A device whose monitor is searched.
struct MonitorSearch
{
    const wchar_t* deviceName = nullptr;
    std::optional<RECT> area;
};

BOOL CALLBACK CompareMonitor(HMONITOR handle, HDC /*context*/, LPRECT /*area*/, LPARAM value) noexcept
{
    auto& search = *reinterpret_cast<MonitorSearch*>(value);
    MONITORINFOEXW monitor = {};
    monitor.cbSize = sizeof(monitor);
    if (SystemCall<&::GetMonitorInfoW>(handle, &monitor) == FALSE ||
        std::wcscmp(monitor.szDevice, search.deviceName) != 0)
        return TRUE; // go on
    search.area = monitor.rcMonitor;
    return FALSE;
}

std::optional<RECT> FindMonitorArea(const wchar_t* deviceName)
{
    MonitorSearch search = {deviceName, std::nullopt};
    (void)SystemCall<&::EnumDisplayMonitors>(nullptr, nullptr, &CompareMonitor, reinterpret_cast<LPARAM>(&search));
    return search.area;
}

/// The settings of a remote session's display, or of a virtual one, may lack fields that its monitor has. The refresh
/// rate is unknown then.
void CompleteFields(const wchar_t* deviceName, DEVMODEW& settings)
{
    const DWORD missing = s_neededFields & ~settings.dmFields;
    if (missing == 0)
        return;
    const std::optional<RECT> area = FindMonitorArea(deviceName);
    if (!area)
        return;
    if ((missing & DM_POSITION) != 0)
        settings.dmPosition = {area->left, area->top};
    if ((missing & DM_PELSWIDTH) != 0)
        settings.dmPelsWidth = static_cast<DWORD>(area->right - area->left);
    if ((missing & DM_PELSHEIGHT) != 0)
        settings.dmPelsHeight = static_cast<DWORD>(area->bottom - area->top);
    if ((missing & DM_DISPLAYFREQUENCY) != 0)
        settings.dmDisplayFrequency = 0;
    settings.dmFields |= missing;
}

/// Colour depth and flags are required but not used: settings without them, and without a monitor, are from no display.
void AssertFields(const DEVMODEW& displaySettings)
{
    // The conditions write the bits as numbers.
    ORVIK_ASSERT(displaySettings.dmFields & 0x00080000L,
                 "Display settings retrieved from Windows must contain the display width in pixels.");
    ORVIK_ASSERT(displaySettings.dmFields & 0x00100000L,
                 "Display settings retrieved from Windows must contain the display height in pixels.");
    ORVIK_ASSERT(displaySettings.dmFields & 0x00400000L,
                 "Display settings retrieved from Windows must contain the display's current refresh rate.");
    ORVIK_ASSERT(displaySettings.dmFields & 0x00000020L,
                 "Display settings retrieved from Windows must contain the display's position in the virtual desktop "
                 "space.");
    ORVIK_ASSERT(displaySettings.dmFields & 0x00200000L,
                 "Display settings retrieved from Windows must contain the display's flags.");
    ORVIK_ASSERT(displaySettings.dmFields & 0x00040000L,
                 "Display settings retrieved from Windows must contain the display's coler depth.");
}

DisplayMode DescribeDevice(const DISPLAY_DEVICEW& device, const DEVMODEW& settings, DWORD index)
{
    DisplayMode mode;
    mode.name = System::Text::ToUtf8(device.DeviceName);
    mode.deviceIndex = index;
    mode.x = settings.dmPosition.x;
    mode.y = settings.dmPosition.y;
    mode.width = settings.dmPelsWidth;
    mode.height = settings.dmPelsHeight;
    mode.refreshRate = settings.dmDisplayFrequency;
    mode.isPrimary = (device.StateFlags & DISPLAY_DEVICE_PRIMARY_DEVICE) != 0;
    return mode;
}

} // namespace

bool WindowsDesktop::PrepareDisplays(const System::Log::Context& log)
{
    // Before anything is measured: from now on sizes and positions are physical pixels. The executable's manifest says
    // so already. If the user's compatibility settings say otherwise, they win, and the pixels are the ones that they
    // give.
    PROCESS_DPI_AWARENESS awareness = PROCESS_DPI_UNAWARE;
    if (SUCCEEDED(SystemCall<&::GetProcessDpiAwareness>(GetCurrentProcess(), &awareness)) &&
        awareness != PROCESS_PER_MONITOR_DPI_AWARE)
    {
        if (const HRESULT result = SystemCall<&::SetProcessDpiAwareness>(PROCESS_PER_MONITOR_DPI_AWARE); FAILED(result))
        {
            System::Log::Write(log, System::Log::MessageTypeID::Warning, System::Error::DpiConfigurationError.text, " ",
                               System::Error::FormatError(static_cast<std::uint32_t>(result)));
        }
    }
    return true;
}

DisplayList WindowsDesktop::ListDisplays()
{
    DisplayList list;
    const MONITORINFOEXW activeMonitor = GetActiveMonitor();
    for (DWORD index = 0;; ++index)
    {
        DISPLAY_DEVICEW device = {};
        device.cb = sizeof(device);
        if (SystemCall<&::EnumDisplayDevicesW>(nullptr, index, &device, 0) == FALSE)
            return list;
        if ((device.StateFlags & DISPLAY_DEVICE_ATTACHED_TO_DESKTOP) == 0)
            continue;
        DEVMODEW settings = {};
        settings.dmSize = sizeof(settings);
        if (SystemCall<&::EnumDisplaySettingsW>(device.DeviceName, ENUM_CURRENT_SETTINGS, &settings) == FALSE)
            continue;

        DisplayDescriptor& display = list.displays.emplace_back();
        CompleteFields(device.DeviceName, settings);
        AssertFields(settings);
        ApplyMode(DescribeDevice(device, settings, index), display);
        if (list.activeId == InvalidDisplayId && std::wcscmp(device.DeviceName, activeMonitor.szDevice) == 0)
            list.activeId = static_cast<std::uint16_t>(list.displays.size());
    }
}

} // namespace Orvik::Desktops::Windows
