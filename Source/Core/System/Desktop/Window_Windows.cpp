#include "Core/System/Desktop/Window.h"

#include "Core/System/Desktop/WindowCalls_Windows.h"
#include "Core/System/Desktop/WindowProcedure_Windows.h"
#include "Core/System/Error/Assertion.h"
#include "Core/System/Error/SystemError.h"
#include "Core/System/Log/Site/LogSite.h"
#include "Core/System/Text/Unicode.h"
#include "Core/System/Time/Milliseconds.h"

#include <limits>
#include <optional>

namespace Orvik::System::Desktop
{
namespace
{

constexpr Log::Context s_context{Log::StreamID::System};

/// What a window of some type is made with.
struct WindowStyle
{
    DWORD style = 0;
    DWORD extendedStyle = 0;
    HWND parent = nullptr;
};

std::optional<WindowStyle> FindStyle(WindowType type)
{
    switch (type)
    {
    case WindowType::Overlapped:
        return WindowStyle{WS_OVERLAPPEDWINDOW, 0, nullptr};
    case WindowType::Popup:
        return WindowStyle{WS_POPUP | WS_CAPTION | WS_SYSMENU, 0, nullptr};
    case WindowType::ToolPopup:
        return WindowStyle{WS_POPUP, WS_EX_TOOLWINDOW, nullptr};
    case WindowType::Overlay:
        return WindowStyle{WS_POPUP, WS_EX_NOACTIVATE | WS_EX_LAYERED | WS_EX_TOOLWINDOW | WS_EX_TOPMOST, nullptr};
    case WindowType::MessageOnly:
        return WindowStyle{0, 0, HWND_MESSAGE};
    }
    return std::nullopt;
}

HWND ToHwnd(NativeWindow window)
{
    return reinterpret_cast<HWND>(window);
}

/// The frame is added to the client area. A side must be no longer than 16 bits with a sign tell: a mouse message has
/// no more for a place in the window.
std::optional<RECT> MakeFrame(const WindowSize& size, const WindowStyle& style)
{
    constexpr std::uint32_t longest = std::numeric_limits<std::int16_t>::max();
    if (size.width > longest || size.height > longest)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return std::nullopt;
    }
    RECT frame = {0, 0, static_cast<LONG>(size.width), static_cast<LONG>(size.height)};
    if (AdjustWindowRectEx(&frame, style.style, FALSE, style.extendedStyle) == FALSE)
        return std::nullopt;
    return frame;
}

/// Makes what the overlay doesn't draw see-through, where the desktop is composed. Where it isn't, the window has to be
/// given its opacity all the same: without one a layered window never shows.
void BlurBehind(HWND window)
{
    DWM_BLURBEHIND blur = {};
    blur.dwFlags = DWM_BB_ENABLE | DWM_BB_BLURREGION;
    blur.fEnable = TRUE;
    blur.hRgnBlur = CreateRectRgn(0, 0, -1, -1); // empty; it lives as long as the process
    blur.fTransitionOnMaximized = FALSE;
    GetWindowCalls().enableBlurBehindWindow(window, &blur);
    SetLayeredWindowAttributes(window, 0, 255, LWA_ALPHA);
}

/// Whether the window has the foreground after this has asked for it.
bool AskForForeground(HWND window)
{
    const WindowCalls& calls = GetWindowCalls();
    return calls.setForegroundWindow(window) != FALSE || calls.getForegroundWindow() == window;
}

/// Where the user has turned to another program in the meantime, the system keeps the foreground there. It is given to
/// a thread that shares its input with that program's. Whoever shares the input of a program that hangs hangs as well.
bool TakeForeground(HWND window)
{
    if (AskForForeground(window))
        return true;
    const WindowCalls& calls = GetWindowCalls();
    HWND const other = calls.getForegroundWindow();
    const DWORD otherThread = calls.getWindowThreadProcessId(other, nullptr);
    const DWORD thread = GetCurrentThreadId();
    if (otherThread == 0 || otherThread == thread || calls.isHungAppWindow(other) != FALSE ||
        calls.attachThreadInput(thread, otherThread, TRUE) == FALSE)
        return false;
    const bool isTaken = AskForForeground(window);
    calls.attachThreadInput(thread, otherThread, FALSE);
    return isTaken;
}

} // namespace

struct Window::Native
{
};

void Window::NativeDeleter::operator()(Native* native) const noexcept
{
    delete native;
}

bool Window::RegisterClassPlatform()
{
    const std::wstring className = Text::ToWide(m_className);
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.style = CS_VREDRAW | CS_HREDRAW | CS_OWNDC;
    windowClass.lpfnWndProc = &WindowProcedure;
    windowClass.cbWndExtra = sizeof(void*);
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    windowClass.lpszClassName = className.c_str();
    return RegisterClassExW(&windowClass) != 0;
}

void Window::UnregisterClassPlatform()
{
    UnregisterClassW(Text::ToWide(m_className).c_str(), GetModuleHandleW(nullptr));
}

bool Window::CreatePlatform()
{
    const std::optional<WindowStyle> style = FindStyle(m_type);
    if (!style)
    {
        ORVIK_ASSERT(false, "Illegal switch case.");
        return false;
    }
    const std::optional<RECT> frame = MakeFrame(m_size, *style);
    HWND const window =
        frame ? CreateWindowExW(style->extendedStyle, Text::ToWide(m_className).c_str(), Text::ToWide(m_name).c_str(),
                                style->style, m_position.x, m_position.y, frame->right - frame->left,
                                frame->bottom - frame->top, style->parent, nullptr, GetModuleHandleW(nullptr), this)
              : nullptr;
    if (window == nullptr)
    {
        Log::Write(s_context, Log::MessageTypeID::Error, "Failed to create window: ", Error::FormatLastError());
        return false;
    }
    if (m_type == WindowType::Overlay)
        BlurBehind(window);
    const auto created = static_cast<NativeWindow>(reinterpret_cast<std::uintptr_t>(window));
    if (!OnNativeWindowCreated(created))
    {
        DestroyWindow(window);
        return false;
    }
    m_handle = created;
    return true;
}

void Window::DestroyPlatform()
{
    ReleasePointer(ToHwnd(m_handle));
    DestroyWindow(ToHwnd(m_handle));
}

void Window::ShowPlatform()
{
    ShowWindow(ToHwnd(m_handle), m_type == WindowType::Overlay ? SW_SHOWNA : SW_SHOW);
}

void Window::HidePlatform()
{
    ReleasePointer(ToHwnd(m_handle));
    ShowWindow(ToHwnd(m_handle), SW_HIDE);
}

void Window::PumpMessagePlatform()
{
    MSG message = {};
    if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) == FALSE)
        return;
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

// No look into the queue: it would deal with what others send, and what that changes would be waited upon unseen.
bool Window::HasMessagePlatform()
{
    return HIWORD(GetQueueStatus(QS_ALLINPUT)) != 0;
}

void Window::WaitForMessagePlatform(std::int64_t nanoseconds, Threads::WakeSignal& wake)
{
    // The messages of a window that is gone are nobody's to take.
    if (m_state == WindowState::Closed || wake.GetHandle() == -1)
    {
        wake.Wait(nanoseconds);
        return;
    }
    auto* const signal = reinterpret_cast<HANDLE>(wake.GetHandle());
    MsgWaitForMultipleObjectsEx(1, &signal, Time::ToMilliseconds(nanoseconds), QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    wake.Reset();
}

void Window::SetTitlePlatform(const std::string& title)
{
    SetWindowTextW(ToHwnd(m_handle), Text::ToWide(title).c_str());
}

void Window::AnswerOthersPlatform()
{
    MSG message = {};
    (void)PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
}

void Window::SetClickThroughPlatform(bool enabled)
{
    constexpr LONG passing = WS_EX_NOACTIVATE | WS_EX_TRANSPARENT;
    const LONG others = GetWindowLongW(ToHwnd(m_handle), GWL_EXSTYLE) & ~passing;
    SetWindowLongW(ToHwnd(m_handle), GWL_EXSTYLE, enabled ? others | passing : others);
}

void Window::BringToFrontPlatform()
{
    if (!TakeForeground(ToHwnd(m_handle)))
    {
        Log::Write(s_context, Log::MessageTypeID::Warning,
                   "Failed to bring the window to the foreground. Keys go to another program until the window is "
                   "clicked.");
    }
    if (m_type == WindowType::Overlay)
        BringWindowToTop(ToHwnd(m_handle));
}

} // namespace Orvik::System::Desktop
