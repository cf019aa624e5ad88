#include "Tests/Support/Desktop/Screen.h"

#include "Tests/Support/Desktop/ScreenPixels.h"
#include "Tests/Support/Desktop/XSession.h"

#include <X11/Xatom.h>
#include <stdexcept>
#include <utility>

namespace Orvik::Tests
{

Screen::Screen(const std::string& displayName) : m_session(std::make_unique<XSession>(displayName))
{
}

Screen::~Screen() = default;

int Screen::GetWidth() const
{
    return m_session->GetWidth();
}

int Screen::GetHeight() const
{
    return m_session->GetHeight();
}

Picture Screen::Capture(const Area& area) const
{
    const ImagePointer image(XGetImage(m_session->GetDisplay(), m_session->GetRoot(), area.x, area.y,
                                       static_cast<unsigned>(area.width), static_cast<unsigned>(area.height), AllPlanes,
                                       ZPixmap));
    if (!image)
        throw std::runtime_error("The screen can't be read.");
    const ScreenFormat format(*m_session);
    Picture picture{area.width, area.height, {}};
    for (int y = 0; y < area.height; ++y)
        for (int x = 0; x < area.width; ++x)
            picture.pixels.push_back(format.FromScreen(XGetPixel(image.get(), x, y)));
    return picture;
}

void Screen::ShowOnRoot(const Picture& picture)
{
    ::Display* const display = m_session->GetDisplay();
    const Pixmap previous = std::exchange(m_rootPixmap, SetBackground(*m_session, m_session->GetRoot(), picture));
    // Where programs that lay the root's picture below the windows themselves look for it.
    for (const char* name : {"_XROOTPMAP_ID", "ESETROOT_PMAP_ID", "_XSETROOT_ID"})
        XChangeProperty(display, m_session->GetRoot(), XInternAtom(display, name, False), XA_PIXMAP, 32,
                        PropModeReplace, reinterpret_cast<const unsigned char*>(&m_rootPixmap), 1);
    m_session->Synchronize();
    if (previous != None)
        XFreePixmap(display, previous);
}

} // namespace Orvik::Tests
