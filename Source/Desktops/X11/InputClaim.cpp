#include "Desktops/X11/InputClaim.h"

#include "Core/System/Log/LogSite.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Desktops/X11/XConnection.h"

#include <algorithm>

namespace Orvik::Desktops::X11
{
namespace
{

constexpr std::int64_t s_patience = 2'000'000'000;
constexpr std::int64_t s_retryInterval = 10'000'000; // each try waits for the server once

const char* GetReason(int status)
{
    switch (status)
    {
    case AlreadyGrabbed:
        return "another client holds it";
    case GrabFrozen:
        return "another client has frozen it";
    case GrabNotViewable:
        return "the window isn't viewable";
    default:
        return "the server refuses";
    }
}

} // namespace

void InputClaim::Begin()
{
    m_isClaimed = true;
    if (!CanBeSeen())
        return;
    TakeFocus();
    m_keyboard = Grab::Wanted;
    m_pointer = Grab::Wanted;
    m_nextTry = System::Time::GetMonotonicNanoseconds();
    m_deadline = m_nextTry + s_patience;
    Retry();
}

void InputClaim::Retry()
{
    if (m_keyboard != Grab::Wanted && m_pointer != Grab::Wanted)
        return;
    const std::int64_t now = System::Time::GetMonotonicNanoseconds();
    if (now < m_nextTry)
        return;
    m_nextTry = now + s_retryInterval;
    if (m_keyboard == Grab::Wanted)
        m_keyboard = Judge("Keyboard", GrabKeyboard(), now);
    if (m_pointer == Grab::Wanted)
        m_pointer = Judge("Pointer", GrabPointer(), now);
}

std::int64_t InputClaim::GetTimeToRetry(std::int64_t now) const
{
    if (m_keyboard != Grab::Wanted && m_pointer != Grab::Wanted)
        return -1;
    return std::max<std::int64_t>(m_nextTry - now, 0);
}

void InputClaim::Suspend()
{
    if (m_keyboard == Grab::Held)
        XUngrabKeyboard(m_display, CurrentTime);
    if (m_pointer == Grab::Held)
        XUngrabPointer(m_display, CurrentTime);
    m_keyboard = Grab::None;
    m_pointer = Grab::None;
    RestoreFocus();
    XFlush(m_display);
}

void InputClaim::Resume()
{
    if (m_isClaimed)
        Begin();
}

void InputClaim::End()
{
    Suspend();
    m_isClaimed = false;
}

bool InputClaim::CanBeSeen() const
{
    XWindowAttributes attributes = {};
    return XGetWindowAttributes(m_display, m_window, &attributes) != 0 && attributes.map_state == IsViewable;
}

void InputClaim::TakeFocus()
{
    XErrorScope scope(m_display);
    ::Window focus = None;
    int revert = RevertToNone;
    XGetInputFocus(m_display, &focus, &revert);
    if (focus != m_window)
    {
        m_previousFocus = focus;
        m_previousRevert = revert;
    }
    XSetInputFocus(m_display, m_window, RevertToPointerRoot, CurrentTime);
    m_hasFocus = !scope.HasFailed();
}

// The window that had the keyboard gets it back: without a window manager the desktop would have lost it.
void InputClaim::RestoreFocus()
{
    if (!m_hasFocus)
        return;
    m_hasFocus = false;
    XErrorScope scope(m_display);
    ::Window focus = None;
    int revert = RevertToNone;
    XGetInputFocus(m_display, &focus, &revert);
    if (focus == m_window)
        XSetInputFocus(m_display, m_previousFocus, m_previousRevert, CurrentTime);
}

int InputClaim::GrabKeyboard() const
{
    return XGrabKeyboard(m_display, m_window, False, GrabModeAsync, GrabModeAsync, CurrentTime);
}

// Events over our own windows still come from XInput 2, with fractions of wheel notches; the others through the grab.
int InputClaim::GrabPointer() const
{
    constexpr unsigned int mask = ButtonPressMask | ButtonReleaseMask | PointerMotionMask;
    return XGrabPointer(m_display, m_window, True, mask, GrabModeAsync, GrabModeAsync, None, None, CurrentTime);
}

InputClaim::Grab InputClaim::Judge(const char* device, int status, std::int64_t now) const
{
    if (status == GrabSuccess)
        return Grab::Held;
    if (now < m_deadline)
        return Grab::Wanted;
    System::Log::Write(System::Log::s_system, System::Log::MessageTypeID::Warning, device,
                       " grab failed: ", GetReason(status), ".");
    return Grab::None;
}

} // namespace Orvik::Desktops::X11
