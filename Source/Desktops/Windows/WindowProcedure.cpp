#include "Desktops/Windows/WindowProcedure.h"

#include "Core/System/Desktop/PointerEvent.h"
#include "Core/System/Desktop/Window.h"
#include "Core/System/Log/Log.h"
#include "Core/System/Log/LogSite.h"
#include "Desktops/Windows/KeyMap.h"
#include "Desktops/Windows/MessageNames.h"
#include "Systems/Windows/SystemCall.h"

#include <csignal>
#include <dbt.h>
#include <thread>

namespace Orvik::Desktops::Windows
{
namespace
{

using System::Desktop::WindowEventType;
using Systems::SystemCall;

constexpr std::uint8_t s_leftButton = 1;
constexpr std::uint8_t s_rightButton = 3;

/// What a desktop sends, and in which order, differs between machines and can't be seen anywhere else: a configuration
/// can make every message a log line, without another build.
void LogMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    System::Log::Write(System::Log::GetSystemContext(), System::Log::MessageTypeID::Debug, "Window (",
                       reinterpret_cast<std::uintptr_t>(window), "): ", GetMessageName(message), " (", message, ") ",
                       wParam, " ", lParam);
}

/// The low and the high 16 bits with their signs: displays left of and above the primary one have negative coordinates.
std::int32_t GetSignedLow(std::uintptr_t bits)
{
    return static_cast<std::int16_t>(LOWORD(bits));
}

std::int32_t GetSignedHigh(std::uintptr_t bits)
{
    return static_cast<std::int16_t>(HIWORD(bits));
}

/// The virtual key of a key message; for a modifier that of its side.
UINT GetMessageKey(WPARAM wParam, LPARAM lParam)
{
    const UINT key = LOWORD(wParam);
    if (key != VK_SHIFT && key != VK_CONTROL && key != VK_MENU)
        return key;
    const WORD flags = HIWORD(lParam);
    const UINT scanCode = LOBYTE(flags);
    return SystemCall<&::MapVirtualKeyW>((flags & KF_EXTENDED) != 0 ? 0xE000U + scanCode : scanCode,
                                         MAPVK_VSC_TO_VK_EX);
}

bool OnKey(System::Desktop::Window& target, WPARAM wParam, LPARAM lParam)
{
    const UINT virtualKey = GetMessageKey(wParam, lParam);
    const KeyCode key = GetKeyCode(virtualKey);
    if (key == KeyCode::Undefined)
    {
        System::Log::Write(System::Log::s_system, System::Log::MessageTypeID::Warning,
                           "Found undefined virtual key: ", virtualKey);
        return false;
    }
    const bool isReleased = (HIWORD(lParam) & KF_UP) != 0;
    return target.DeliverKey(key, !isReleased);
}

bool OnMouseMove(System::Desktop::Window& target, HWND window, LPARAM lParam)
{
    const std::int32_t x = GetSignedLow(static_cast<std::uintptr_t>(lParam));
    const std::int32_t y = GetSignedHigh(static_cast<std::uintptr_t>(lParam));
    POINT place = {x, y};
    ClientToScreen(window, &place);
    const System::Math::Point onScreen = {place.x, place.y};
    const System::Device::Cursor::PointerEventScope scope(onScreen);
    return target.DeliverMouseMove(x, y);
}

/// While a button is held, the window captures the pointer: a drag may end on another display, and its end must arrive
/// here. `held` are the buttons that are down now.
bool OnMouseButton(System::Desktop::Window& target, HWND window, std::uint8_t button, bool isPressed, WPARAM held)
{
    if (isPressed)
        SetCapture(window);
    else if ((held & (MK_LBUTTON | MK_RBUTTON)) == 0)
        ReleasePointer(window);
    return target.DeliverMouseButton(button, isPressed);
}

bool OnPaint(System::Desktop::Window& target, HWND window)
{
    PAINTSTRUCT paint = {};
    BeginPaint(window, &paint);
    const bool isHandled = target.DeliverPlain(WindowEventType::Paint);
    EndPaint(window, &paint);
    return isHandled;
}

/// The session ends, which is a request to end like any other. It comes on a thread of its own, because the run that it
/// waits for goes on here.
bool OnEndSession(WPARAM isEnding)
{
    if (isEnding == FALSE)
        return false;
    std::thread([] { std::raise(SIGTERM); }).detach();
    return true;
}

/// Delivers a message's event. False if the message makes none, or if the event wasn't handled.
bool DeliverMessage(System::Desktop::Window& target, HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_CREATE:
        return target.DeliverPlain(WindowEventType::Created);
    case WM_DEVICECHANGE:
        return wParam == DBT_DEVNODES_CHANGED && target.DeliverPlain(WindowEventType::DevicesChanged);
    case WM_DISPLAYCHANGE:
        return target.DeliverPlain(WindowEventType::DisplayChanged);
    case WM_KEYDOWN:
    case WM_KEYUP:
    case WM_SYSKEYDOWN:
    case WM_SYSKEYUP:
        return OnKey(target, wParam, lParam);
    case WM_MOUSEMOVE:
        return OnMouseMove(target, window, lParam);
    case WM_MOUSEWHEEL:
        return target.DeliverMouseWheel(static_cast<float>(GetSignedHigh(wParam)) / 120.0F);
    case WM_LBUTTONDOWN:
        return OnMouseButton(target, window, s_leftButton, true, wParam);
    case WM_LBUTTONUP:
        return OnMouseButton(target, window, s_leftButton, false, wParam);
    case WM_RBUTTONDOWN:
        return OnMouseButton(target, window, s_rightButton, true, wParam);
    case WM_RBUTTONUP:
        return OnMouseButton(target, window, s_rightButton, false, wParam);
    case WM_HOTKEY:
        return target.DeliverHotKey(wParam);
    case WM_MOVE:
        return target.DeliverPlain(WindowEventType::Moved);
    case WM_SIZE:
        return target.DeliverPlain(WindowEventType::Resized);
    case WM_PAINT:
        return OnPaint(target, window);
    case WM_ENDSESSION:
        return OnEndSession(wParam);
    default:
        return false;
    }
}

} // namespace

void ReleasePointer(HWND window)
{
    if (GetCapture() == window)
        ReleaseCapture();
}

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    LogMessage(window, message, wParam, lParam);
    if (message == WM_NCCREATE)
    {
        const auto* const creation = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
        return TRUE;
    }
    auto* const target = reinterpret_cast<System::Desktop::Window*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (target == nullptr || !target->HasEventHandler())
        return DefWindowProcW(window, message, wParam, lParam);
    if (message == WM_CLOSE)
    {
        target->DeliverClose();
        return 0;
    }
    if (message == WM_DESTROY)
    {
        PostQuitMessage(0);
        return 0;
    }
    if (DeliverMessage(*target, window, message, wParam, lParam))
        return 0;
    return DefWindowProcW(window, message, wParam, lParam);
}

} // namespace Orvik::Desktops::Windows
