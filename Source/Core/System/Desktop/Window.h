#pragma once

#include "Core/System/Desktop/WindowEvent.h"
#include "Core/System/Desktop/WindowMutex.h"
#include "Core/System/Threads/WakeSignal.h"
#include "Core/System/Types/Point.h"
#include "Desktops/NativeWindow.h"
#include "Desktops/WindowDescription.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace Orvik::Desktops
{
class DesktopWindow;
} // namespace Orvik::Desktops

namespace Orvik::System::Desktop
{

using Desktops::NativeWindow;
using Desktops::SurfaceKind;
using Desktops::WindowSize;
using Desktops::WindowType;

enum class WindowState : std::uint8_t
{
    Undefined,    ///< constructed; no class registered
    Registered,   ///< the class exists
    Creating,     ///< the native window is being created
    Hidden,       ///< the window exists and isn't shown
    Visible,      ///< the window is shown
    ClosePending, ///< the user or the system asked to close; the next `Update` destroys
    Closed,       ///< the native window is gone
};

/// One desktop window, driven a step at a time by its owner's loop. The thread that calls `Create` owns the native
/// window and makes all other calls, but for those that take the lock.
class Window
{
public:
    using EventHandler = std::function<bool(const WindowEvent&)>;
    using ScopedLock = std::unique_lock<WindowMutex>;

    /// `name` is the title and names the class; it isn't copied and outlives the window. Null or empty is an assertion
    /// failure. `position` is the top left corner in screen pixels, `size` the client area in pixels. Nothing
    /// native is made yet.
    Window(void* owner, const char* name, const Math::Point& position, const WindowSize& size, WindowType type);

    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    virtual ~Window();
    virtual void Hook2(); ///< nothing; it keeps its place in the order, like the other three
    virtual void Hook3();
    /// The native window exists. False cancels the creation.
    [[nodiscard]] virtual bool OnNativeWindowCreated(NativeWindow nativeWindow);
    /// Runs twice in each `Update` of a visible window.
    virtual void OnVisibleUpdate();
    virtual void Hook6();
    virtual void Hook7();

    /// The one receiver of events. It returns whether it has dealt with the event.
    void SetEventHandler(EventHandler handler);

    /// What the window will be drawn on by; OpenGL if this isn't called. Before `Create`.
    void SetSurfaceKind(SurfaceKind kind) { m_surfaceKind = kind; }

    /// Creates the native window, hidden. False if the system refuses the window, for which a log line gives the
    /// reason, or its class, or if `OnNativeWindowCreated` cancels. No window is left behind; its class stays until the
    /// destruction.
    [[nodiscard]] bool Create();

    /// One step: handles one message at most, or destroys a window that was asked to close.
    void Update();

    /// Whether `Update` would find something to do.
    [[nodiscard]] bool HasMessage();

    /// Returns when `HasMessage` may have become true, when `wake` was raised, or after that many nanoseconds; less
    /// than 0 is without a limit. It may return early for no reason. Takes the signal back. A closed window waits for
    /// the other two, and for the end of the desktop.
    void WaitForMessage(std::int64_t nanoseconds, Threads::WakeSignal& wake);

    /// Handles what the system and other programs send the window and wait for, a broadcast or the end of the session,
    /// for a time without `Update`. Queued messages, input among them, stay where they are.
    void AnswerOthers();

    // These three want the lock of `Lock` as a proof.
    void Show(const ScopedLock& lock);
    void Hide(const ScopedLock& lock);
    [[nodiscard]] bool IsVisible(const ScopedLock& lock) const;

    /// Locks the window against being shown or hidden. A second lock on the same thread is an error of the standard
    /// library.
    [[nodiscard]] ScopedLock Lock();

    /// Replaces the title, UTF-8. Nothing before `Create`.
    void SetTitle(const std::string& title);

    /// Whether mouse and keyboard pass the window by.
    void SetClickThrough(bool enabled);

    /// Brings the window to the front and gives it the keyboard.
    void BringToFront();

    /// None before `Create`. It stays what it was when the window is closed.
    [[nodiscard]] NativeWindow GetNativeWindow() const { return m_handle; }
    /// The registered class, null before `Create`.
    [[nodiscard]] const char* GetWindowClassName() const { return m_className; }
    [[nodiscard]] WindowState GetState() const { return m_state.load(); }
    [[nodiscard]] WindowType GetType() const { return m_type; }

    // What a desktop calls when a native message has come: one door for each kind. The result is the handler's, false
    // without a handler.
    bool DeliverKey(KeyCode key, bool pressed);
    bool DeliverMouseMove(std::int32_t x, std::int32_t y);
    bool DeliverMouseWheel(float notches);
    bool DeliverMouseButton(std::uint8_t button, bool pressed);
    bool DeliverHotKey(std::uint64_t value);
    /// Whether there is anybody to deliver to.
    [[nodiscard]] bool HasEventHandler() const { return static_cast<bool>(m_eventHandler); }
    /// A kind that carries nothing.
    bool DeliverPlain(WindowEventType type);
    /// The user or the system asks to close. The handler isn't called; without one the state doesn't change
    /// and the result is false.
    bool DeliverClose();

private:
    void ChangeState(WindowState from, WindowState to);
    void PumpVisible();
    void Destroy();
    bool Deliver(const WindowEvent& event);

    NativeWindow m_handle = NativeWindow::None;
    void* m_owner;
    std::atomic<WindowState> m_state{WindowState::Undefined};
    EventHandler m_eventHandler;
    WindowType m_type;
    SurfaceKind m_surfaceKind = SurfaceKind::OpenGL;
    WindowSize m_size;
    Math::Point m_position;
    const char* m_className = nullptr;
    const char* m_name;
    std::string m_auxiliaryText; ///< stays empty in this program
    WindowMutex m_mutex;
    std::unique_ptr<Desktops::DesktopWindow> m_native; ///< never null
};

} // namespace Orvik::System::Desktop
