#include "Core/System/Desktop/Window.h"

#include "Core/System/Error/Assertion.h"
#include "Desktops/Desktop.h"

#include <utility>

namespace Orvik::System::Desktop
{
namespace
{

bool IsWindowType(WindowType type)
{
    switch (type)
    {
    case WindowType::Overlapped:
    case WindowType::Popup:
    case WindowType::ToolPopup:
    case WindowType::Overlay:
    case WindowType::MessageOnly:
        return true;
    }
    return false;
}

} // namespace

Window::Window(void* owner, const char* name, const Math::Point& position, const WindowSize& size, WindowType type)
    : m_owner(owner),
      m_type(type),
      m_size(size),
      m_position(position),
      m_name(name),
      m_native(Desktops::GetDesktop().MakeWindow(*this))
{
    ORVIK_ASSERT(name != nullptr && *name != '\0', "Parameter 'name' name must be a valid name for the window.");
}

Window::~Window()
{
    Destroy();
}

void Window::Hook2()
{
}

void Window::Hook3()
{
}

bool Window::OnNativeWindowCreated(NativeWindow /*nativeWindow*/)
{
    return true;
}

void Window::OnVisibleUpdate()
{
}

void Window::Hook6()
{
}

void Window::Hook7()
{
}

void Window::SetEventHandler(EventHandler handler)
{
    m_eventHandler = std::move(handler);
}

bool Window::Create()
{
    if (m_className == nullptr)
    {
        m_className = m_name;
        if (!m_native->Register(m_className))
            return false;
        ChangeState(WindowState::Undefined, WindowState::Registered);
    }
    ChangeState(WindowState::Registered, WindowState::Creating);
    if (!IsWindowType(m_type))
    {
        ORVIK_ASSERT(false, "Illegal switch case.");
        return false;
    }
    // The events that come during the creation don't find a handle yet.
    m_handle = m_native->Create({m_name, m_className, m_position, m_size, m_type, m_surfaceKind});
    if (m_handle == NativeWindow::None)
        return false;
    ChangeState(WindowState::Creating, WindowState::Hidden);
    return true;
}

void Window::Update()
{
    // Only this thread changes the state here, so nothing needs to be synchronised.
    switch (m_state.load(std::memory_order_relaxed))
    {
    case WindowState::Undefined:
    case WindowState::Registered:
    case WindowState::Creating:
        ORVIK_ASSERT(false, "Illegal switch case.");
        return;
    case WindowState::Hidden:
        m_native->Pump();
        return;
    case WindowState::Visible:
        PumpVisible();
        OnVisibleUpdate();
        return;
    case WindowState::ClosePending:
    {
        Destroy();
        auto expected = WindowState::ClosePending;
        const bool succesfullyChangedState = m_state.compare_exchange_strong(expected, WindowState::Closed);
        ORVIK_ASSERT(succesfullyChangedState, "Window can't be set closed due to an race condition.");
        return;
    }
    case WindowState::Closed:
        return;
    }
    ORVIK_ASSERT(false, "Implementation of case directive is missing.");
}

// The hook's first call belongs to the step, its second to `Update`: a surface that draws in it draws twice a step.
void Window::PumpVisible()
{
    m_native->Pump();
    OnVisibleUpdate();
}

bool Window::HasMessage()
{
    switch (m_state.load(std::memory_order_relaxed))
    {
    case WindowState::Hidden:
    case WindowState::Visible:
        return m_native->HasMessage();
    case WindowState::ClosePending:
        return true;
    case WindowState::Undefined:
    case WindowState::Registered:
    case WindowState::Creating:
    case WindowState::Closed:
        return false;
    }
    return false;
}

void Window::WaitForMessage(std::int64_t nanoseconds, Threads::WakeSignal& wake)
{
    if (!HasMessage())
        m_native->WaitForMessage(nanoseconds, wake);
}

void Window::Show(const ScopedLock& /*lock*/)
{
    if (m_state.load() != WindowState::Hidden)
        return;
    ChangeState(WindowState::Hidden, WindowState::Visible);
    if (m_handle != NativeWindow::None)
        m_native->Show();
}

void Window::Hide(const ScopedLock& /*lock*/)
{
    if (m_state.load() == WindowState::Hidden)
        return;
    if (m_handle != NativeWindow::None)
        m_native->Hide();
    ChangeState(WindowState::Visible, WindowState::Hidden);
}

bool Window::IsVisible(const ScopedLock& /*lock*/) const
{
    return m_state.load() == WindowState::Visible;
}

Window::ScopedLock Window::Lock()
{
    return ScopedLock(m_mutex);
}

void Window::SetTitle(const std::string& title)
{
    if (m_handle != NativeWindow::None)
        m_native->SetTitle(title);
}

void Window::AnswerOthers()
{
    if (m_handle != NativeWindow::None)
        m_native->AnswerOthers();
}

void Window::SetClickThrough(bool enabled)
{
    if (m_handle != NativeWindow::None)
        m_native->SetClickThrough(enabled);
}

void Window::BringToFront()
{
    if (m_handle != NativeWindow::None)
        m_native->BringToFront();
}

bool Window::DeliverKey(KeyCode key, bool pressed)
{
    WindowEvent event{.type = WindowEventType::Key};
    event.data.key = {.pressed = static_cast<std::uint8_t>(pressed), .key = key};
    return Deliver(event);
}

bool Window::DeliverMouseMove(std::int32_t x, std::int32_t y)
{
    WindowEvent event{.type = WindowEventType::MouseMove};
    event.data.mouseMove = {.x = x, .y = y};
    return Deliver(event);
}

bool Window::DeliverMouseWheel(float notches)
{
    WindowEvent event{.type = WindowEventType::MouseWheel};
    event.data.wheelDelta = notches;
    return Deliver(event);
}

bool Window::DeliverMouseButton(std::uint8_t button, bool pressed)
{
    WindowEvent event{.type = WindowEventType::MouseButton};
    event.data.mouseButton = {.pressed = static_cast<std::uint8_t>(pressed), .button = button};
    return Deliver(event);
}

bool Window::DeliverHotKey(std::uint64_t value)
{
    WindowEvent event{.type = WindowEventType::HotKey};
    event.data.hotKey = value;
    return Deliver(event);
}

bool Window::DeliverPlain(WindowEventType type)
{
    return Deliver(WindowEvent{.type = type});
}

bool Window::DeliverClose()
{
    if (!m_eventHandler)
        return false;
    m_state.store(WindowState::ClosePending, std::memory_order_relaxed);
    return true;
}

void Window::ChangeState(WindowState from, WindowState to)
{
    const bool succesfullyChangedState = m_state.compare_exchange_strong(from, to);
    ORVIK_ASSERT(succesfullyChangedState, "Window state can't be changed due to an race condition.");
}

void Window::Destroy()
{
    if (m_handle != NativeWindow::None)
        m_native->Destroy();
    // The class belongs to this window alone if both have the very same name.
    if (m_className == m_name)
        m_native->Unregister(m_className);
}

bool Window::Deliver(const WindowEvent& event)
{
    return m_eventHandler && m_eventHandler(event);
}

} // namespace Orvik::System::Desktop
