#pragma once

// Wayland's own.

#include "Core/System/Desktop/PressedKeys.h"
#include "Desktops/Wayland/Window.h"
#include "Desktops/Wayland/WindowSurface.h"

#include <optional>
#include <vector>

namespace Orvik::Desktops::Wayland
{

using System::Desktop::KeyCode;
using System::Desktop::WindowEventType;

/// The surface of a window, and what the user does to it.
struct Window::Native
{
    Native(System::Desktop::Window& owner, std::shared_ptr<Session> session, const System::Math::Point& origin,
           const WindowSize& size);
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;

    /// Whether the compositor is still there.
    [[nodiscard]] bool IsUsable() const { return surface.IsUsable(); }

    /// Takes in what has come, without waiting.
    void Read();
    /// Whether the next step has anything to do, by what has been read.
    [[nodiscard]] bool HasWork() const;
    /// Nanoseconds until there is something to do that the compositor doesn't announce; less than 0 if there isn't.
    [[nodiscard]] std::int64_t GetTimeToWork() const;

    /// Delivers what has changed of the window itself. False if it is to close.
    bool DeliverChanges();
    /// Delivers the next release of a key that was let go. False if there is none.
    bool DeliverQueuedRelease();
    /// Takes the first of what waits and delivers it.
    void DeliverInput();

    /// Notes a change that the window is to hear of; once is enough.
    void NoteChange(WindowEventType type);

    /// The first of what waits for this window; the queue's end if nothing does.
    [[nodiscard]] InputQueue::iterator FindInput() const;
    [[nodiscard]] InputEvent TakeInput(InputQueue::iterator input) const;
    /// Follows the motions that come before any other input. The window sees where the pointer is and not where it was.
    void SkipToNewestMotion();
    void FollowMotion(const InputEvent& event);
    /// Reports where the pointer is, if it is elsewhere than was reported.
    void ReportMotion();
    void OnButton(const InputEvent& event);
    void OnKey(const InputEvent& event);

    System::Desktop::Window& window;
    WindowSurface surface;
    System::Desktop::PressedKeys keys;
    std::optional<System::Math::Point> pointer; ///< the pixel that was reported last
    std::vector<WindowEventType> changes;       ///< noted and not yet reported
};

} // namespace Orvik::Desktops::Wayland
