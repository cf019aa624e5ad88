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

/// One desktop window, which its owner's loop moves on step by step. The thread that calls `Create` owns the native
/// window and makes all other calls, except those that take the lock.
class Window
{
public:
    using EventHandler = std::function<bool(const WindowEvent&)>;
    using ScopedLock = std::unique_lock<WindowMutex>;

    /// `name` is the title and the name of the class; it isn't copied and must outlive the window. Null or empty is an
    /// assertion failure. `position` is the top left corner in screen pixels, `size` the client area in pixels. The
    /// native window isn't made yet.
    Window(void* owner, const char* name, const Math::Point& position, const WindowSize& size, WindowType type);

    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    virtual ~Window();
    virtual void Hook2(); ///< does nothing; it keeps its place in the order, like the other three
    virtual void Hook3();
    /// Called when the native window exists. False cancels the creation.
    [[nodiscard]] virtual bool OnNativeWindowCreated(NativeWindow nativeWindow);
    /// Called twice in each `Update` of a visible window.
    virtual void OnVisibleUpdate();
    virtual void Hook6();
    virtual void Hook7();

    /// Sets the only receiver of events. It returns whether it has handled the event.
    void SetEventHandler(EventHandler handler);

    /// How the window will be drawn on; OpenGL if this isn't called. Before `Create`.
    void SetSurfaceKind(SurfaceKind kind) { m_surfaceKind = kind; }

    /// Creates the native window, hidden. False if the system refuses the window, which a log line explains, or its
    /// class, or if `OnNativeWindowCreated` cancels. No window is left then; its class stays until the destruction.
    [[nodiscard]] bool Create();

    /// One step: handles at most one message, or destroys a window that was asked to close.
    void Update();

    /// Whether `Update` would find something to do.
    [[nodiscard]] bool HasMessage();

    /// Returns when `HasMessage` may have become true, when `wake` was raised, or after that many nanoseconds; less
    /// than 0 means without a limit. It may return early without a reason. Resets the signal. A closed window waits for
    /// the other two, and for the end of the desktop.
    void WaitForMessage(std::int64_t nanoseconds, Threads::WakeSignal& wake);

    /// For a time without `Update`: handles messages whose senders, the system or other programs, wait for an answer,
    /// such as a broadcast or the end of the session. Queued messages, input included, stay where they are.
    void AnswerOthers();

    // These three take the lock of `Lock` as a proof.
    void Show(const ScopedLock& lock);
    void Hide(const ScopedLock& lock);
    [[nodiscard]] bool IsVisible(const ScopedLock& lock) const;

    /// Locks the window against being shown or hidden. A second lock on the same thread throws the standard library's
    /// error.
    [[nodiscard]] ScopedLock Lock();

    /// Replaces the title, UTF-8. Does nothing before `Create`.
    void SetTitle(const std::string& title);

    /// Whether mouse and keyboard input goes to the windows below.
    void SetClickThrough(bool enabled);

    /// Brings the window to the front and gives it the keyboard.
    void BringToFront();

    /// None before `Create`. Keeps its value when the window is closed.
    [[nodiscard]] NativeWindow GetNativeWindow() const { return m_handle; }
    /// The registered class, null before `Create`.
    [[nodiscard]] const char* GetWindowClassName() const { return m_className; }
    [[nodiscard]] WindowState GetState() const { return m_state.load(); }
    [[nodiscard]] WindowType GetType() const { return m_type; }

    // A desktop calls these when a native message has come, one operation for each kind. The result is the handler's,
    // false without a handler.
    bool DeliverKey(KeyCode key, bool pressed);
    bool DeliverMouseMove(std::int32_t x, std::int32_t y);
    bool DeliverMouseWheel(float notches);
    bool DeliverMouseButton(std::uint8_t button, bool pressed);
    bool DeliverHotKey(std::uint64_t value);
    /// Whether there is a handler.
    [[nodiscard]] bool HasEventHandler() const { return static_cast<bool>(m_eventHandler); }
    /// For kinds without data.
    bool DeliverPlain(WindowEventType type);
    /// The user or the system asks to close. The handler isn't called; without one the state doesn't change and the
    /// result is false.
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
