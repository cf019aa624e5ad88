#include "Core/System/Desktop/DisplayCache.h"

#include "Core/System/Log/Log.h"
#include "Tests/Support/AssertionTrap.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/ReplacedCalls_Windows.h"
#include "Tests/Support/Texts.h"

#include <cstdint>
#include <cwchar>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <initializer_list>
#include <shellscalingapi.h>
#include <string>
#include <vector>

namespace Orvik::System::Device::Display
{
namespace
{

constexpr DWORD s_allFields = 0x007C0020;

/// A device as the system reports it. One without settings can't be asked for them.
struct Device
{
    const wchar_t* name;
    DWORD flags = 1;
    LONG x = 0;
    LONG y = 0;
    DWORD width = 1920;
    DWORD height = 1080;
    DWORD frequency = 60;
    DWORD fields = s_allFields;
    bool hasSettings = true;
};

/// The monitor that shows a device's picture.
struct Monitor
{
    const wchar_t* device;
    RECT area;
};

struct Desktop
{
    std::vector<Device> devices;
    std::vector<Monitor> monitors;
    const wchar_t* activeName = nullptr; ///< null: the system doesn't say
    HRESULT getResult = S_OK;
    int awareness = 0;
    HRESULT setResult = S_OK;
    int askedAwareness = 0; ///< how often
    std::vector<int> setAwareness;
};
Desktop s_desktop;

HWND const s_foreground = reinterpret_cast<HWND>(21);
HMONITOR const s_monitor = reinterpret_cast<HMONITOR>(22);

HMONITOR WINAPI FindMonitor(HWND window, DWORD flags)
{
    EXPECT_EQ(window, s_foreground);
    EXPECT_EQ(flags, 2U) << "the nearest";
    return s_monitor;
}

/// The handles of the monitors count on from the active one's.
std::size_t GetMonitorIndex(HMONITOR handle)
{
    return static_cast<std::size_t>(reinterpret_cast<std::intptr_t>(handle) -
                                    reinterpret_cast<std::intptr_t>(s_monitor) - 1);
}

BOOL WINAPI GetMonitor(HMONITOR handle, LPMONITORINFO monitor)
{
    EXPECT_EQ(monitor->cbSize, 104U);
    if (handle != s_monitor)
    {
        const Monitor& found = s_desktop.monitors.at(GetMonitorIndex(handle));
        if (found.device == nullptr)
            return FALSE;
        std::wcscpy(reinterpret_cast<MONITORINFOEXW*>(monitor)->szDevice, found.device);
        monitor->rcMonitor = found.area;
        return TRUE;
    }
    if (s_desktop.activeName == nullptr)
        return FALSE;
    std::wcscpy(reinterpret_cast<MONITORINFOEXW*>(monitor)->szDevice, s_desktop.activeName);
    return TRUE;
}

BOOL WINAPI EnumMonitors(HDC context, LPCRECT area, MONITORENUMPROC callback, LPARAM value)
{
    EXPECT_EQ(context, nullptr);
    EXPECT_EQ(area, nullptr);
    for (std::size_t index = 0; index < s_desktop.monitors.size(); ++index)
    {
        const auto number = reinterpret_cast<std::intptr_t>(s_monitor) + 1 + static_cast<std::intptr_t>(index);
        if (callback(reinterpret_cast<HMONITOR>(number), nullptr, &s_desktop.monitors[index].area, value) == FALSE)
            return FALSE;
    }
    return TRUE;
}

BOOL WINAPI EnumDevices(LPCWSTR adapter, DWORD index, DISPLAY_DEVICEW* device, DWORD flags)
{
    EXPECT_EQ(adapter, nullptr);
    EXPECT_EQ(flags, 0U);
    EXPECT_EQ(device->cb, 840U);
    if (index >= s_desktop.devices.size())
        return FALSE;
    std::wcscpy(device->DeviceName, s_desktop.devices[index].name);
    device->StateFlags = s_desktop.devices[index].flags;
    return TRUE;
}

BOOL WINAPI EnumSettings(LPCWSTR name, DWORD number, DEVMODEW* settings)
{
    EXPECT_EQ(number, ENUM_CURRENT_SETTINGS);
    EXPECT_EQ(settings->dmSize, 220);
    for (const Device& device : s_desktop.devices)
    {
        if (std::wcscmp(device.name, name) != 0)
            continue;
        settings->dmPosition = {device.x, device.y};
        settings->dmPelsWidth = device.width;
        settings->dmPelsHeight = device.height;
        settings->dmDisplayFrequency = device.frequency;
        settings->dmFields = device.fields;
        return device.hasSettings ? TRUE : FALSE;
    }
    return FALSE;
}

class DisplayCacheWindows : public testing::Test
{
protected:
    DisplayCacheWindows()
    {
        s_desktop = {};
        Tests::ReplacedCalls& calls = m_calls;
        calls.Of<&::GetProcessDpiAwareness>() = [](HANDLE process, PROCESS_DPI_AWARENESS* value) -> HRESULT
        {
            EXPECT_EQ(process, GetCurrentProcess());
            ++s_desktop.askedAwareness;
            *value = static_cast<PROCESS_DPI_AWARENESS>(s_desktop.awareness);
            return s_desktop.getResult;
        };
        calls.Of<&::SetProcessDpiAwareness>() = [](PROCESS_DPI_AWARENESS value) -> HRESULT
        {
            s_desktop.setAwareness.push_back(value);
            return s_desktop.setResult;
        };
        calls.Of<&::GetForegroundWindow>() = [] { return s_foreground; };
        calls.Of<&::MonitorFromWindow>() = &FindMonitor;
        calls.Of<&::GetMonitorInfoW>() = &GetMonitor;
        calls.Of<&::EnumDisplayMonitors>() = &EnumMonitors;
        calls.Of<&::EnumDisplayDevicesW>() = &EnumDevices;
        calls.Of<&::EnumDisplaySettingsW>() = &EnumSettings;
    }

    Tests::ReplacedCalls m_calls;

    DisplayCache m_cache;
};

TEST_F(DisplayCacheWindows, AwarenessIsAskedForOnceAndSetOnce)
{
    EXPECT_TRUE(m_cache.Initialize(nullptr));
    EXPECT_EQ(s_desktop.askedAwareness, 1);
    EXPECT_EQ(s_desktop.setAwareness, std::vector<int>{2});
}

TEST_F(DisplayCacheWindows, AwarenessThatIsRightOrNotKnownIsLeft)
{
    s_desktop.awareness = 2;
    EXPECT_TRUE(m_cache.Initialize(nullptr));
    s_desktop.awareness = 0;
    s_desktop.getResult = E_ACCESSDENIED;
    DisplayCache second;
    EXPECT_TRUE(second.Initialize(nullptr));
    EXPECT_TRUE(s_desktop.setAwareness.empty());
}

// The user's compatibility settings decide, or a library that came first.
TEST_F(DisplayCacheWindows, AwarenessThatCannotBeSetIsAWarningAndTheRunGoesOn)
{
    s_desktop.awareness = 1;
    s_desktop.setResult = E_ACCESSDENIED;
    s_desktop.devices = {{L"\\\\.\\DISPLAY1"}};
    const Tests::LogRecorder recorder;
    EXPECT_TRUE(m_cache.Initialize(nullptr));
    EXPECT_EQ(m_cache.GetDisplays().size(), 1U);
    ASSERT_FALSE(recorder.GetLines().empty());
    EXPECT_THAT(recorder.GetLines().front(),
                Tests::MatchesPattern("DisplayCache Warning: Setup of DPI configuration failed\\. .+ \\(80070005\\)"));
}

TEST_F(DisplayCacheWindows, ADeviceThatIsNotAttachedTakesNoId)
{
    s_desktop.devices = {
        {L"\\\\.\\DISPLAY1", 5}, {L"\\\\.\\DISPLAY2", 0}, {L"\\\\.\\DISPLAY3", 1, -1280, -20, 1280, 720, 75}};
    s_desktop.activeName = L"\\\\.\\DISPLAY3";
    EXPECT_TRUE(m_cache.Initialize(nullptr));
    ASSERT_EQ(m_cache.GetDisplays().size(), 2U);
    const DisplayDescriptor& first = m_cache.GetDisplays()[0];
    EXPECT_EQ(first.name, "\\\\.\\DISPLAY1");
    EXPECT_EQ(first.id, 1);
    EXPECT_EQ(first.deviceIndex, 0U);
    EXPECT_TRUE(first.isPrimary);
    const DisplayDescriptor& second = m_cache.GetDisplays()[1];
    EXPECT_EQ(second.name, "\\\\.\\DISPLAY3");
    EXPECT_EQ(second.id, 2);
    EXPECT_EQ(second.deviceIndex, 2U);
    EXPECT_EQ(second.x, -1280);
    EXPECT_EQ(second.y, -20);
    EXPECT_EQ(second.width, 1280);
    EXPECT_EQ(second.height, 720);
    EXPECT_EQ(second.refreshRate, 75);
    EXPECT_FALSE(second.isPrimary);
    EXPECT_EQ(m_cache.GetActiveDisplayId(), 2);
}

TEST_F(DisplayCacheWindows, WithoutAForegroundMonitorThePrimaryIsTheDefault)
{
    s_desktop.devices = {{L"\\\\.\\DISPLAY1"}, {L"\\\\.\\DISPLAY2", 5}};
    EXPECT_TRUE(m_cache.Initialize(nullptr));
    EXPECT_EQ(m_cache.GetActiveDisplayId(), InvalidDisplayId);
    EXPECT_EQ(m_cache.GetDefaultDisplayId(), 2);
}

TEST_F(DisplayCacheWindows, ADeviceWithoutSettingsTakesNoIdAndLeavesTheNext)
{
    s_desktop.devices = {{L"A"}, {L"B"}, {L"C"}};
    s_desktop.devices[1].hasSettings = false;
    s_desktop.activeName = L"C";
    EXPECT_TRUE(m_cache.Initialize(nullptr));
    ASSERT_EQ(m_cache.GetDisplays().size(), 2U);
    EXPECT_EQ(m_cache.GetDisplays()[0].name, "A");
    EXPECT_EQ(m_cache.GetDisplays()[1].name, "C");
    EXPECT_EQ(m_cache.GetDisplays()[1].deviceIndex, 2U);
    EXPECT_EQ(m_cache.GetActiveDisplayId(), 2);
}

// Displays of remote sessions and virtual ones report less than a card does.
TEST_F(DisplayCacheWindows, WhatTheSettingsLackIsTheMonitors)
{
    s_desktop.devices = {{L"A"}, {L"B", 1, 7, 8, 9, 10, 75}};
    s_desktop.monitors = {{L"A", {0, 0, 1, 1}}, {nullptr, {}}, {L"B", {-1600, -20, -320, 700}}};
    for (const DWORD missing : std::initializer_list<DWORD>{0x00080000, 0x00100000, 0x00400000, 0x00000020, 0x00200000,
                                                            0x00040000, s_allFields})
    {
        SCOPED_TRACE(missing);
        s_desktop.devices[1].fields = s_allFields & ~missing;
        DisplayCache cache;
        EXPECT_TRUE(cache.Initialize(nullptr));
        ASSERT_EQ(cache.GetDisplays().size(), 2U);
        const DisplayDescriptor& display = cache.GetDisplays()[1];
        EXPECT_EQ(display.x, (missing & 0x20U) != 0 ? -1600 : 7);
        EXPECT_EQ(display.y, (missing & 0x20U) != 0 ? -20 : 8);
        EXPECT_EQ(display.width, (missing & 0x80000U) != 0 ? 1280 : 9);
        EXPECT_EQ(display.height, (missing & 0x100000U) != 0 ? 720 : 10);
        EXPECT_EQ(display.refreshRate, (missing & 0x400000U) != 0 ? 0 : 75) << "a monitor's rectangle has none";
        EXPECT_EQ(cache.GetDisplays()[0].width, 1920) << "what is told stands";
    }
}

TEST_F(DisplayCacheWindows, MissingFieldsThatNoMonitorReportsAreAssertionFailuresInTheirOrder)
{
    struct Row
    {
        DWORD missing;
        const char* condition;
        const char* message;
    };
    for (const auto& [missing, condition, message] : std::initializer_list<Row>{
             {0x007C0020, "displaySettings.dmFields & 0x00080000L",
              "Display settings retrieved from Windows must contain the display width in pixels."},
             {0x00740020, "displaySettings.dmFields & 0x00100000L",
              "Display settings retrieved from Windows must contain the display height in pixels."},
             {0x00640020, "displaySettings.dmFields & 0x00400000L",
              "Display settings retrieved from Windows must contain the display's current refresh rate."},
             {0x00240020, "displaySettings.dmFields & 0x00000020L",
              "Display settings retrieved from Windows must contain the display's position in the virtual desktop "
              "space."},
             {0x00240000, "displaySettings.dmFields & 0x00200000L",
              "Display settings retrieved from Windows must contain the display's flags."},
             {0x00040000, "displaySettings.dmFields & 0x00040000L",
              "Display settings retrieved from Windows must contain the display's coler depth."}})
    {
        s_desktop.devices = {{L"A"}};
        s_desktop.devices[0].fields = s_allFields & ~missing;
        DisplayCache cache;
        EXPECT_ASSERTION((void)cache.Initialize(nullptr), condition, message);
    }
}

TEST_F(DisplayCacheWindows, ValuesBeyondTheRecordAreAssertionFailures)
{
    s_desktop.devices = {{L"A"}};
    s_desktop.devices[0].width = 65536;
    EXPECT_ASSERTION((void)m_cache.Initialize(nullptr), "value <= validMaxValue",
                     "Value must be equal or smaller than the target type's minimum value");
    s_desktop.devices = {{L"A", 1, -32769}};
    DisplayCache second;
    EXPECT_ASSERTION((void)second.Initialize(nullptr), "value >= validMinValue",
                     "Value must be equal or greater than the target type's minimum value");
}

std::string GetManifest()
{
    HRSRC const found = FindResourceW(nullptr, MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(24));
    if (found == nullptr)
        return {};
    const auto* const text = static_cast<const char*>(LockResource(LoadResource(nullptr, found)));
    return {text, SizeofResource(nullptr, found)};
}

// Wine lets every process be aware of monitors, so that it can't be seen there what the system makes of it.
TEST(DisplayCacheOfTheSystem, TheManifestDeclaresTheAwareness)
{
    const std::string manifest = GetManifest();
    EXPECT_THAT(manifest,
                testing::HasSubstr("<dpiAware xmlns=\"http://schemas.microsoft.com/SMI/2005/WindowsSettings\">"
                                   "true/pm</dpiAware>"));
    EXPECT_THAT(manifest, testing::HasSubstr("<dpiAwareness "
                                             "xmlns=\"http://schemas.microsoft.com/SMI/2016/WindowsSettings\">"
                                             "PerMonitor</dpiAwareness>"));
}

TEST(DisplayCacheOfTheSystem, FindsThePrimaryDisplayOfTheVirtualScreen)
{
    DisplayCache cache;
    EXPECT_TRUE(cache.Initialize(nullptr));
    ASSERT_GE(cache.GetDisplays().size(), 1U);
    const DisplayDescriptor* const display = cache.GetDisplay(cache.GetDefaultDisplayId());
    ASSERT_NE(display, nullptr);
    EXPECT_EQ(display->width, GetSystemMetrics(SM_CXSCREEN));
    EXPECT_EQ(display->height, GetSystemMetrics(SM_CYSCREEN));
}

} // namespace
} // namespace Orvik::System::Device::Display
