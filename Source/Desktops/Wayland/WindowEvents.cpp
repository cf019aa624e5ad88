// What comes to a window: what of it is the next message, and what the window hears of it.
#include "Core/System/Desktop/PointerEvent.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Threads/WakeSignal.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Core/System/Time/Wait.h"
#include "Desktops/Wayland/WindowNative.h"

#include <algorithm>
#include <linux/input-event-codes.h>
#include <utility>

namespace Orvik::Desktops::Wayland
{
namespace
{

// As the window's events number them.
constexpr std::uint8_t s_leftButton = 1;
constexpr std::uint8_t s_rightButton = 3;

bool IsMotion(const InputEvent& event)
{
    return event.kind == InputKind::Motion || event.kind == InputKind::Push || event.kind == InputKind::Entry;
}

} // namespace

Window::Native::Native(System::Desktop::Window& owner, std::shared_ptr<Session> session,
                       const System::Math::Point& origin, const WindowSize& size)
    : window(owner), surface(std::move(session), origin, size)
{
}

void Window::Pump()
{
    if (!m_native || !m_native->IsUsable())
        return;
    Native& native = *m_native;
    native.Read();
    if (!native.IsUsable() || native.DeliverQueuedRelease())
        return;
    // Each press of an arrow key moves the pointer on from where the one before has put it.
    if (System::Device::Cursor::TakeOwnMotion())
    {
        native.ReportMotion();
        return;
    }
    if (native.DeliverChanges() && !native.DeliverQueuedRelease())
        native.DeliverInput();
}

bool Window::HasMessage()
{
    if (!m_native || !m_native->IsUsable())
        return false;
    m_native->Read();
    return m_native->HasWork();
}

void Window::WaitForMessage(std::int64_t nanoseconds, System::Threads::WakeSignal& wake)
{
    if (m_session == nullptr || !m_session->connection->IsUsable())
    {
        wake.Wait(nanoseconds);
        return;
    }
    const std::int64_t time = m_native ? m_native->GetTimeToWork() : -1;
    m_session->connection->Dispatch(wake.LimitWait(System::Time::GetShorter(nanoseconds, time)),
                                    static_cast<int>(wake.GetHandle()));
    wake.Reset();
}

void Window::Native::Read()
{
    surface.GetSession().connection->Dispatch(0);
}

bool Window::Native::HasWork() const
{
    Session& session = surface.GetSession();
    return !changes.empty() || keys.HasQueuedRelease() || FindInput() != session.seat.GetQueue().end() ||
           surface.GetRole().HasNews() || GetTimeToWork() == 0;
}

std::int64_t Window::Native::GetTimeToWork() const
{
    const KeyboardDevice* const keyboard = surface.GetSession().seat.GetKeyboard();
    return keyboard != nullptr ? keyboard->GetTimeToRepeat(System::Time::GetMonotonicNanoseconds()) : -1;
}

void Window::Native::NoteChange(WindowEventType type)
{
    if (std::find(changes.begin(), changes.end(), type) == changes.end())
        changes.push_back(type);
}

bool Window::Native::DeliverChanges()
{
    if (surface.TakeClosing())
    {
        window.DeliverClose();
        return false;
    }
    if (surface.GetRole().HasNews())
    {
        surface.FollowSize();
        NoteChange(WindowEventType::Resized);
    }
    for (const WindowEventType type : std::exchange(changes, {}))
        window.DeliverPlain(type);
    return window.GetState() != System::Desktop::WindowState::ClosePending;
}

bool Window::Native::DeliverQueuedRelease()
{
    const KeyCode key = keys.TakeQueuedRelease();
    if (key == KeyCode::Undefined)
        return false;
    window.DeliverKey(key, false);
    return true;
}

// What is for another window waits for that one's step.
InputQueue::iterator Window::Native::FindInput() const
{
    InputQueue& queue = surface.GetSession().seat.GetQueue();
    return std::find_if(queue.begin(), queue.end(),
                        [this](const InputEvent& event) { return event.surface == surface.GetProxy(); });
}

InputEvent Window::Native::TakeInput(InputQueue::iterator input) const
{
    const InputEvent event = *input;
    surface.GetSession().seat.GetQueue().erase(input);
    return event;
}

void Window::Native::DeliverInput()
{
    Session& session = surface.GetSession();
    const auto input = FindInput();
    if (input == session.seat.GetQueue().end())
    {
        KeyboardDevice* const keyboard = session.seat.GetKeyboard();
        const auto repeat =
            keyboard != nullptr ? keyboard->TakeRepeat(System::Time::GetMonotonicNanoseconds()) : std::nullopt;
        if (repeat && keys.IsDown(static_cast<std::uint8_t>(repeat->code)))
            window.DeliverKey(repeat->key, true);
        return;
    }
    const InputEvent event = TakeInput(input);
    switch (event.kind)
    {
    case InputKind::Entry:
    case InputKind::Motion:
    case InputKind::Push:
        FollowMotion(event);
        SkipToNewestMotion();
        ReportMotion();
        return;
    case InputKind::Button:
        OnButton(event);
        return;
    case InputKind::Wheel:
        window.DeliverMouseWheel(event.notches);
        return;
    case InputKind::Key:
        OnKey(event);
        return;
    case InputKind::FocusLoss:
        keys.LetGo();
        return;
    }
}

void Window::Native::SkipToNewestMotion()
{
    const InputQueue& queue = surface.GetSession().seat.GetQueue();
    for (auto input = FindInput(); input != queue.end() && IsMotion(*input); input = FindInput())
        FollowMotion(TakeInput(input));
}

void Window::Native::FollowMotion(const InputEvent& event)
{
    if (event.kind == InputKind::Entry)
    {
        surface.GetPointer().Enter(event.place);
        if (surface.GetClaim().IsHeld())
            surface.GetClaim().Hold(); // of a pointer that wasn't there before
        return;
    }
    if (event.kind == InputKind::Push)
        surface.GetPointer().Push(event.relative.value_or(SurfaceVector()));
    // What the user points at is meant, wherever the own pointer was moved before.
    else if (event.isPointing)
        surface.GetPointer().Enter(event.place);
    else
        surface.GetPointer().Move(event.place, event.relative);
}

void Window::Native::ReportMotion()
{
    const System::Math::Point pixel = surface.GetPointer().GetPixel();
    if (pointer == pixel)
        return;
    pointer = pixel;
    const System::Math::Point position = {surface.GetOrigin().x + pixel.x, surface.GetOrigin().y + pixel.y};
    const System::Device::Cursor::PointerEventScope scope(position);
    window.DeliverMouseMove(pixel.x, pixel.y);
}

void Window::Native::OnButton(const InputEvent& event)
{
    if (event.code == BTN_LEFT)
        window.DeliverMouseButton(s_leftButton, event.isPressed);
    else if (event.code == BTN_RIGHT)
        window.DeliverMouseButton(s_rightButton, event.isPressed);
}

void Window::Native::OnKey(const InputEvent& event)
{
    const auto physicalKey = static_cast<std::uint8_t>(event.code);
    const KeyCode key = event.isPressed ? event.key : keys.Release(physicalKey, event.key);
    if (key == KeyCode::Undefined)
    {
        const KeyboardDevice* const keyboard = surface.GetSession().seat.GetKeyboard();
        System::Log::Write(System::Log::s_system, System::Log::MessageTypeID::Warning, "Found undefined virtual key: ",
                           keyboard != nullptr ? keyboard->GetUnshiftedSymbol(event.code) : 0U);
        return;
    }
    if (event.isPressed)
        keys.Press(physicalKey, key);
    window.DeliverKey(key, event.isPressed);
}

} // namespace Orvik::Desktops::Wayland
