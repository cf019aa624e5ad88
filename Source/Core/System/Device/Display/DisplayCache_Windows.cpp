#include "Core/System/Device/Display/DisplayCache.h"

#include "Core/System/Device/Display/DisplayCalls_Windows.h"
#include "Core/System/Device/Display/DisplayMode.h"
#include "Core/System/Error/Exception.h"
#include "Core/System/Text/Unicode.h"

#include <cwchar>

namespace Orvik::System::Device::Display
{
namespace
{

/// The device name of the monitor that the foreground window lies on; empty if it isn't told.
MONITORINFOEXW GetActiveMonitor(const DisplayCalls& calls)
{
    MONITORINFOEXW monitor = {};
    monitor.cbSize = sizeof(monitor);
    calls.getMonitorInfo(calls.monitorFromWindow(calls.getForegroundWindow(), MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor;
}

/// Colour depth and flags are asked for and not kept: settings without them come from no display.
void AssertFields(const DEVMODEW& displaySettings)
{
    // The conditions name the bits by their numbers.
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
    mode.name = Text::ToUtf8(device.DeviceName);
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

bool DisplayCache::InitializePlatform()
{
    // Before anything is measured: sizes and positions are physical pixels from now on.
    const DisplayCalls& calls = GetDisplayCalls();
    PROCESS_DPI_AWARENESS awareness = PROCESS_DPI_UNAWARE;
    if (SUCCEEDED(calls.getProcessDpiAwareness(GetCurrentProcess(), &awareness)) &&
        awareness != PROCESS_PER_MONITOR_DPI_AWARE &&
        FAILED(calls.setProcessDpiAwareness(PROCESS_PER_MONITOR_DPI_AWARE)))
    {
        throw Error::ExceptionWithDetails(ORVIK_HERE, Error::ErrorDetails(Error::DpiConfigurationError));
    }
    IterateThroughDevices();
    return true;
}

void DisplayCache::IterateThroughDevicesPlatform()
{
    const DisplayCalls& calls = GetDisplayCalls();
    const MONITORINFOEXW activeMonitor = GetActiveMonitor(calls);
    for (DWORD index = 0;; ++index)
    {
        DISPLAY_DEVICEW device = {};
        device.cb = sizeof(device);
        if (calls.enumDisplayDevices(nullptr, index, &device, 0) == FALSE)
            return;
        if ((device.StateFlags & DISPLAY_DEVICE_ATTACHED_TO_DESKTOP) == 0)
            continue;
        DEVMODEW settings = {};
        settings.dmSize = sizeof(settings);
        if (calls.enumDisplaySettings(device.DeviceName, ENUM_CURRENT_SETTINGS, &settings) == FALSE)
            return;

        DisplayDescriptor& display = AddDisplay();
        AssertFields(settings);
        ApplyMode(DescribeDevice(device, settings, index), display);
        if (m_activeDisplayId == InvalidDisplayId && std::wcscmp(device.DeviceName, activeMonitor.szDevice) == 0)
            m_activeDisplayId = display.id;
    }
}

} // namespace Orvik::System::Device::Display
