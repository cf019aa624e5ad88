// The queue of events: which part of it is a window's next message.
#include "Core/System/Desktop/PointerEvent.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Desktops/X11/WindowNative.h"
#include "Desktops/X11/WindowStack.h"

#include <algorithm>
#include <utility>

namespace Orvik::Desktops::X11
{
namespace
{

bool IsInput(const XEvent& event)
{
    const PointerInput& input = PointerInput::GetInstance();
    return event.type == KeyPress || event.type == KeyRelease || input.IsMotionEvent(event) ||
           input.IsButtonEvent(event);
}

} // namespace

// By moving windows, other programs make events without end. So only input counts as a message: all other events that
// have come are handled before it.
void Window::Pump()
{
    if (!m_native || !m_native->IsUsable())
        return;
    Native& native = *m_native;
    native.claim.Retry();
    if (native.DeliverQueuedRelease())
        return;
    // Each press of an arrow key moves the pointer on from the place of the last move.
    if (System::Device::Cursor::TakeOwnMotion() && native.DeliverQueuedMotion())
        return;
    const bool hasInput = native.PrepareInput(QueuedAfterFlush);
    native.DeliverChanges();
    native.FollowStack();
    // The server may go during the question, and the keys may have been released.
    if (!native.IsUsable() || m_owner.GetState() == System::Desktop::WindowState::ClosePending ||
        native.DeliverQueuedRelease())
        return;
    if (hasInput)
        native.DeliverInput();
}

bool Window::Native::PrepareInput(int mode)
{
    for (int left = XEventsQueued(display, mode); left > 0 && IsUsable(); --left)
    {
        XEvent event = {};
        XPeekEvent(display, &event);
        if (IsInput(event))
            return true;
        XNextEvent(display, &event);
        const EventData data(display, event);
        Dispatch(event, data, *this);
        NoteChangedWindow(event);
    }
    return false;
}

void Window::Native::DeliverInput()
{
    XEvent event = {};
    XNextEvent(display, &event);
    const EventData data(display, event);
    const std::optional<PointerMotion> motion = PointerInput::GetInstance().ReadPlainMotion(event, data);
    if (!motion)
    {
        Dispatch(event, data, *this);
        return;
    }
    const PointerMotion newest = SkipToNewest(*motion);
    if (Native* const native = Find(display, newest.window))
        native->OnMotion(newest);
}

PointerMotion Window::Native::SkipToNewest(PointerMotion motion)
{
    const PointerInput& input = PointerInput::GetInstance();
    while (PrepareInput(QueuedAlready))
    {
        XEvent next = {};
        XPeekEvent(display, &next);
        const EventData data(display, next);
        const std::optional<PointerMotion> newer = input.ReadPlainMotion(next, data);
        if (!newer || newer->window != motion.window)
            break;
        XEvent taken = {};
        XNextEvent(display, &taken);
        motion = *newer;
    }
    return motion;
}

XKeyEvent Window::Native::SkipToNewest(XKeyEvent repeat)
{
    while (PrepareInput(QueuedAlready))
    {
        XEvent next = {};
        XPeekEvent(display, &next);
        if (next.type != KeyPress || next.xkey.keycode != repeat.keycode || next.xkey.window != repeat.window)
            break;
        XEvent taken = {};
        XNextEvent(display, &taken);
        repeat = taken.xkey;
    }
    return repeat;
}

bool Window::Native::DeliverQueuedRelease()
{
    const KeyCode key = keys.TakeQueuedRelease();
    if (key == KeyCode::Undefined)
        return false;
    window.DeliverKey(key, false);
    return true;
}

bool Window::Native::DeliverQueuedMotion()
{
    PointerInput& input = PointerInput::GetInstance();
    const auto isMotion = [](::Display* /*display*/, XEvent* event, XPointer context) -> Bool
    { return reinterpret_cast<const PointerInput*>(context)->IsMotionEvent(*event) ? True : False; };
    std::optional<PointerMotion> newest;
    XEvent event = {};
    while (XCheckIfEvent(display, &event, isMotion, reinterpret_cast<XPointer>(&input)) != False)
    {
        const EventData data(display, event);
        if (const std::optional<PointerMotion> motion = input.ReadPlainMotion(event, data))
            newest = motion;
        else
            HandleInput(data); // a turn of a wheel
    }
    Native* const native = newest ? Find(display, newest->window) : nullptr;
    if (native == nullptr)
        return false;
    native->OnMotion(*newest);
    return true;
}

void Window::Native::NoteChange(WindowEventType type)
{
    if (std::find(changes.begin(), changes.end(), type) == changes.end())
        changes.push_back(type);
}

// The events of devices name no window.
void Window::Native::NoteChangedWindow(const XEvent& event)
{
    const Native* const native = event.type != GenericEvent ? Find(display, event.xany.window) : nullptr;
    if (native == nullptr || native == this || native->changes.empty())
        return;
    if (std::find(changedWindows.begin(), changedWindows.end(), native->id) == changedWindows.end())
        changedWindows.push_back(native->id);
}

void Window::Native::TellChanges()
{
    for (const WindowEventType type : std::exchange(changes, {}))
        window.DeliverPlain(type);
}

void Window::Native::DeliverChanges()
{
    if (std::exchange(areAxesStale, false) && IsUsable())
        PointerInput::GetInstance().RefreshAxes(display);
    TellChanges();
    for (::Window const changed : std::exchange(changedWindows, {}))
    {
        if (Native* const native = Find(display, changed))
            native->TellChanges();
    }
}

// Uses the windows on the root rather than the overlay's visibility: the overlay reaches one row above the topmost
// display, so the server reports it as partly covered from the start; and under a compositing manager nothing ever
// covers it.
void Window::Native::FollowStack()
{
    if (!isStackChanged || !IsUsable())
        return;
    const std::int64_t now = System::Time::GetMonotonicNanoseconds();
    const bool isOfInterest = window.GetState() == System::Desktop::WindowState::Visible && raises.HasLeft(now);
    if (isOfInterest && !stackLooks.Take(now))
        return; // until it may look again
    isStackChanged = false;
    if (!isOfInterest || !IsCovered(display, id) || !raises.Take(now))
        return;
    XRaiseWindow(display, id);
    XFlush(display);
}

} // namespace Orvik::Desktops::X11
