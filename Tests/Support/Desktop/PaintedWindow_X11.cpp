#include "Tests/Support/Desktop/PaintedWindow.h"

#include "Tests/Support/Desktop/ScreenPixels.h"
#include "Tests/Support/Desktop/XSession.h"

namespace Orvik::Tests
{

PaintedWindow::PaintedWindow(const std::string& displayName, Position position, const Picture& picture)
    : m_session(std::make_unique<XSession>(displayName))
{
    ::Display* const display = m_session->GetDisplay();
    XSetWindowAttributes attributes = {};
    attributes.override_redirect = True;
    m_window = XCreateWindow(display, m_session->GetRoot(), position.x, position.y,
                             static_cast<unsigned>(picture.width), static_cast<unsigned>(picture.height), 0,
                             CopyFromParent, InputOutput, nullptr, CWOverrideRedirect, &attributes);
    XMapRaised(display, m_window);
    Show(picture);
}

PaintedWindow::~PaintedWindow() = default;

void PaintedWindow::Show(const Picture& picture)
{
    XFreePixmap(m_session->GetDisplay(), SetBackground(*m_session, m_window, picture));
}

} // namespace Orvik::Tests
