#pragma once

#include "Core/System/Threads/WakeSignal.h"
#include "Desktops/NativeWindow.h"
#include "Desktops/WindowDescription.h"

#include <cstdint>
#include <string>

namespace Orvik::Desktops
{

/// A desktop's part of a `System::Desktop::Window`. The `Window` owns it, keeps the state, and gets the events through
/// its `Deliver...` operations, one for each kind. Operations that are only called between `Create` and `Destroy` say
/// so. Thread of the window.
class DesktopWindow
{
public:
    DesktopWindow() = default;
    DesktopWindow(const DesktopWindow&) = delete;
    DesktopWindow& operator=(const DesktopWindow&) = delete;
    virtual ~DesktopWindow() = default;

    /// Makes the class of a window known, where the desktop has classes. False if it refuses.
    [[nodiscard]] virtual bool Register(const char* className) = 0;
    virtual void Unregister(const char* className) = 0;

    /// Creates the native window, hidden, delivers `Created` and asks `OnNativeWindowCreated`. If that cancels, or if
    /// the desktop refuses, which a log line explains, the result is `None` and no window is left.
    [[nodiscard]] virtual NativeWindow Create(const WindowDescription& description) = 0;
    /// Only after `Create`. Called twice for a window that was closed before its end: the second call does nothing.
    virtual void Destroy() = 0;

    virtual void Show() = 0; ///< after `Create`, like all up to `BringToFront` except the two about waiting
    virtual void Hide() = 0;
    /// Handles one native message at most, of any window of the thread.
    virtual void Pump() = 0;
    /// Whether `Pump` would find something to do.
    [[nodiscard]] virtual bool HasMessage() = 0;
    /// Returns when `HasMessage` may have become true, when `wake` was raised, or after that many nanoseconds; less
    /// than 0 means without a limit. It may return early without a reason. Resets the signal. Without a native window
    /// it waits for the other two, and for the end of the desktop. At any time.
    virtual void WaitForMessage(std::int64_t nanoseconds, System::Threads::WakeSignal& wake) = 0;
    /// Replaces the title, UTF-8.
    virtual void SetTitle(const std::string& title) = 0;
    /// Handles messages whose senders wait for an answer; queued messages stay where they are.
    virtual void AnswerOthers() = 0;
    /// Whether mouse and keyboard input goes to the windows below.
    virtual void SetClickThrough(bool enabled) = 0;
    /// Brings the window to the front and gives it the keyboard.
    virtual void BringToFront() = 0;
};

} // namespace Orvik::Desktops
