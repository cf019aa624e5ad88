#include "Desktops/Windows/UncoveredScreen.h"

#include "Core/System/Time/MonotonicClock.h"
#include "Systems/Windows/SystemCall.h"

#include <dwmapi.h>

namespace Orvik::Desktops::Windows
{
namespace
{

using Systems::SystemCall;

/// How long other programs need to redraw what is uncovered. Nothing reports when they are done.
constexpr std::int64_t s_repaintNanoseconds = 100'000'000;

/// Wine never composes. It says that it does where it imitates a version of Windows that always composes.
bool IsWine()
{
    return SystemCall<&::GetProcAddress>(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

bool IsDesktopComposed()
{
    BOOL isComposed = FALSE;
    return !IsWine() && SUCCEEDED(SystemCall<&::DwmIsCompositionEnabled>(&isComposed)) && isComposed != FALSE;
}

BOOL CALLBACK CollectOverlay(HWND window, LPARAM overlays)
{
    if (IsWindowVisible(window) != FALSE && (GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_LAYERED) != 0)
        reinterpret_cast<std::vector<HWND>*>(overlays)->push_back(window);
    return TRUE;
}

} // namespace

void AwaitRepaint()
{
    DwmFlush();
    System::Time::Sleep(s_repaintNanoseconds);
}

UncoveredScreen::UncoveredScreen()
{
    if (IsDesktopComposed())
        return;
    EnumThreadWindows(GetCurrentThreadId(), &CollectOverlay, reinterpret_cast<LPARAM>(&m_overlays));
    for (HWND const overlay : m_overlays)
        ShowWindow(overlay, SW_HIDE);
    if (!m_overlays.empty())
        AwaitRepaint();
}

UncoveredScreen::~UncoveredScreen()
{
    const DWORD error = GetLastError(); // the error of the copy
    for (HWND const overlay : m_overlays)
        ShowWindow(overlay, SW_SHOWNA);
    SetLastError(error);
}

} // namespace Orvik::Desktops::Windows
