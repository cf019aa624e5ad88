#include "Desktops/Wayland/Window.h"

#include "Core/System/Log/LogSite.h"
#include "Desktops/Wayland/WindowNative.h"

#include <utility>

namespace Orvik::Desktops::Wayland
{
namespace
{

NativeWindow ReportFailedCreation(const std::string& text)
{
    System::Log::Write(System::Log::s_system, System::Log::MessageTypeID::Error, "Failed to create window: ", text,
                       ".");
    return NativeWindow::None;
}

/// The display that an overlay of that area covers: it may begin a row above, and is then a row taller. Null if there
/// is none there.
const Output* FindCoveredOutput(const Globals& globals, const WindowDescription& description)
{
    const System::Math::Point& position = description.position;
    const auto right = position.x + static_cast<std::int32_t>(description.size.width);
    const auto bottom = position.y + static_cast<std::int32_t>(description.size.height);
    for (const std::unique_ptr<Output>& output : globals.GetOutputs())
    {
        const System::Math::Rectangle area = output->GetDescription().GetArea();
        const bool isWithin = area.left >= position.x && area.top >= position.y && area.right <= right;
        if (isWithin && area.bottom <= bottom)
            return output.get();
    }
    return nullptr;
}

} // namespace

Window::Window(System::Desktop::Window& owner, std::shared_ptr<Session> session)
    : m_owner(owner), m_session(std::move(session))
{
}

Window::~Window() = default;

// The compositor knows no classes.
bool Window::Register(const char* /*className*/)
{
    return true;
}

void Window::Unregister(const char* /*className*/)
{
}

NativeWindow Window::Create(const WindowDescription& description)
{
    if (m_session == nullptr || !m_session->connection->IsUsable())
        return ReportFailedCreation("there is no compositor");
    if (m_session->globals.compositor == nullptr)
        return ReportFailedCreation("the compositor has no surfaces (wl_compositor)");
    System::Math::Point origin = description.position;
    WindowSize size = description.size;
    const Output* covered = nullptr;
    if (description.type == WindowType::Overlay)
    {
        covered = FindCoveredOutput(m_session->globals, description);
        if (covered == nullptr)
            return ReportFailedCreation("the display is gone");
        const System::Math::Rectangle area = covered->GetDescription().GetArea();
        origin = {area.left, area.top};
        size = {area.GetWidth(), area.GetHeight()};
    }
    m_native = std::make_unique<Native>(m_owner, m_session, origin, size);
    if (covered != nullptr)
        m_session->overlay = &m_native->surface;
    if (description.type != WindowType::MessageOnly)
    {
        if (const Failure failure = m_native->surface.TakeRole(covered, description.name))
        {
            m_native.reset();
            return ReportFailedCreation(*failure);
        }
    }
    m_owner.DeliverPlain(WindowEventType::Created);
    const NativeWindow handle = m_native->surface.GetHandle();
    if (!m_owner.OnNativeWindowCreated(handle))
    {
        m_native.reset();
        return NativeWindow::None;
    }
    return handle;
}

void Window::Destroy()
{
    m_native.reset();
}

// What has no picture yet isn't shown: the screen stays as it is until the first frame.
void Window::Show()
{
    if (!m_native || !m_native->IsUsable())
        return;
    m_native->NoteChange(WindowEventType::Resized);
    m_native->NoteChange(WindowEventType::Moved);
}

void Window::Hide()
{
    if (!m_native || !m_native->IsUsable())
        return;
    m_native->keys.LetGo();
    m_native->surface.Unmap();
}

void Window::SetTitle(const std::string& title)
{
    if (m_native && m_native->IsUsable())
        m_native->surface.SetTitle(title);
}

void Window::SetClickThrough(bool enabled)
{
    if (!m_native || !m_native->IsUsable())
        return;
    m_native->surface.SetClickThrough(enabled);
    if (!enabled)
        return;
    m_native->surface.GetClaim().End();
    m_native->keys.LetGo();
}

// The compositor asks now and then whether the program is there.
void Window::AnswerOthers()
{
    if (m_native && m_native->IsUsable())
        m_native->Read();
}

// A surface on the layer above all others needs no raising, and the compositor gives it the keyboard.
void Window::BringToFront()
{
    if (!m_native || !m_native->IsUsable() || m_owner.GetType() != WindowType::Overlay)
        return;
    m_native->surface.GetClaim().Hold();
}

} // namespace Orvik::Desktops::Wayland
