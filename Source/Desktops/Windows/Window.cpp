#include "Desktops/Windows/Window.h"

#include "Core/System/Error/SystemError.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Text/Unicode.h"
#include "Core/System/Time/Milliseconds.h"
#include "Desktops/Windows/WindowProcedure.h"
#include "Systems/Windows/SystemCall.h"

#include <dwmapi.h>
#include <limits>
#include <optional>

namespace Orvik::Desktops::Windows
{
namespace
{

using Systems::SystemCall;

/// The styles of a window type.
struct WindowStyle
{
    DWORD style = 0;
    DWORD extendedStyle = 0;
    HWND parent = nullptr;
};

WindowStyle GetStyle(WindowType type)
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
    return {};
}

HWND ToHwnd(NativeWindow window)
{
    return reinterpret_cast<HWND>(window);
}

/// The client area with the frame around it. No side may be longer than 16 bits with a sign can hold, because mouse
/// messages give positions in such bits.
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

/// Makes transparent what the overlay doesn't draw, on a composed desktop. Elsewhere the window still needs an opacity:
/// without one a layered window is never shown.
void BlurBehind(HWND window)
{
    DWM_BLURBEHIND blur = {};
    blur.dwFlags = DWM_BB_ENABLE | DWM_BB_BLURREGION;
    blur.fEnable = TRUE;
    blur.hRgnBlur = CreateRectRgn(0, 0, -1, -1); // empty; it lives as long as the process
    blur.fTransitionOnMaximized = FALSE;
    SystemCall<&::DwmEnableBlurBehindWindow>(window, &blur);
    SetLayeredWindowAttributes(window, 0, 255, LWA_ALPHA);
}

/// Requests the foreground and returns whether the window has it.
bool AskForForeground(HWND window)
{
    return SystemCall<&::SetForegroundWindow>(window) != FALSE || SystemCall<&::GetForegroundWindow>() == window;
}

/// If the user is using another program by now, the system keeps the foreground there. It gives the foreground to a
/// thread that shares that program's input. A thread that shares the input of a hanging program hangs as well.
bool TakeForeground(HWND window)
{
    if (AskForForeground(window))
        return true;
    HWND const other = SystemCall<&::GetForegroundWindow>();
    const DWORD otherThread = SystemCall<&::GetWindowThreadProcessId>(other, nullptr);
    const DWORD thread = GetCurrentThreadId();
    if (otherThread == 0 || otherThread == thread || SystemCall<&::IsHungAppWindow>(other) != FALSE ||
        SystemCall<&::AttachThreadInput>(thread, otherThread, TRUE) == FALSE)
        return false;
    const bool isTaken = AskForForeground(window);
    SystemCall<&::AttachThreadInput>(thread, otherThread, FALSE);
    return isTaken;
}

} // namespace

bool Window::Register(const char* name)
{
    const std::wstring className = System::Text::ToWide(name);
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

void Window::Unregister(const char* className)
{
    UnregisterClassW(System::Text::ToWide(className).c_str(), GetModuleHandleW(nullptr));
}

NativeWindow Window::Create(const WindowDescription& description)
{
    m_type = description.type;
    const WindowStyle style = GetStyle(m_type);
    const std::optional<RECT> frame = MakeFrame(description.size, style);
    HWND const window =
        frame ? CreateWindowExW(style.extendedStyle, System::Text::ToWide(description.className).c_str(),
                                System::Text::ToWide(description.name).c_str(), style.style, description.position.x,
                                description.position.y, frame->right - frame->left, frame->bottom - frame->top,
                                style.parent, nullptr, GetModuleHandleW(nullptr), &m_owner)
              : nullptr;
    if (window == nullptr)
    {
        System::Log::Write(System::Log::s_system, System::Log::MessageTypeID::Error,
                           "Failed to create window: ", System::Error::FormatLastError());
        return NativeWindow::None;
    }
    if (m_type == WindowType::Overlay)
        BlurBehind(window);
    const auto created = static_cast<NativeWindow>(reinterpret_cast<std::uintptr_t>(window));
    if (!m_owner.OnNativeWindowCreated(created))
    {
        DestroyWindow(window);
        return NativeWindow::None;
    }
    m_handle = created;
    return created;
}

void Window::Destroy()
{
    ReleasePointer(ToHwnd(m_handle));
    DestroyWindow(ToHwnd(m_handle));
}

void Window::Show()
{
    ShowWindow(ToHwnd(m_handle), m_type == WindowType::Overlay ? SW_SHOWNA : SW_SHOW);
}

void Window::Hide()
{
    ReleasePointer(ToHwnd(m_handle));
    ShowWindow(ToHwnd(m_handle), SW_HIDE);
}

void Window::Pump()
{
    MSG message = {};
    if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) == FALSE)
        return;
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

// Doesn't look into the queue: that would handle messages that were sent, and their changes would then go unnoticed.
bool Window::HasMessage()
{
    return HIWORD(GetQueueStatus(QS_ALLINPUT)) != 0;
}

void Window::WaitForMessage(std::int64_t nanoseconds, System::Threads::WakeSignal& wake)
{
    // The messages of a window that is gone must not be taken.
    if (m_owner.GetState() == System::Desktop::WindowState::Closed || wake.GetHandle() == -1)
    {
        wake.Wait(nanoseconds);
        return;
    }
    auto* const signal = reinterpret_cast<HANDLE>(wake.GetHandle());
    MsgWaitForMultipleObjectsEx(1, &signal, System::Time::ToMilliseconds(nanoseconds), QS_ALLINPUT,
                                MWMO_INPUTAVAILABLE);
    wake.Reset();
}

void Window::SetTitle(const std::string& title)
{
    SetWindowTextW(ToHwnd(m_handle), System::Text::ToWide(title).c_str());
}

void Window::AnswerOthers()
{
    MSG message = {};
    (void)PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
}

void Window::SetClickThrough(bool enabled)
{
    constexpr LONG passing = WS_EX_NOACTIVATE | WS_EX_TRANSPARENT;
    const LONG others = GetWindowLongW(ToHwnd(m_handle), GWL_EXSTYLE) & ~passing;
    SetWindowLongW(ToHwnd(m_handle), GWL_EXSTYLE, enabled ? others | passing : others);
}

void Window::BringToFront()
{
    if (!TakeForeground(ToHwnd(m_handle)))
    {
        System::Log::Write(
            System::Log::s_system, System::Log::MessageTypeID::Warning,
            "Failed to bring the window to the foreground. Keys go to another program until the window is "
            "clicked.");
    }
    if (m_type == WindowType::Overlay)
        BringWindowToTop(ToHwnd(m_handle));
}

} // namespace Orvik::Desktops::Windows
