#include "Tests/Support/Desktop/Screen.h"

#include "Tests/Support/Desktop/CompositorClient.h"
#include "Tests/Support/Desktop/ScreenPixels.h"
#include "Tests/Support/Desktop/ScreenReader.h"
#include "Tests/Support/Desktop/XSession.h"

#include <X11/Xatom.h>
#include <stdexcept>
#include <utility>

namespace Orvik::Tests
{

namespace
{

class XScreenReader final : public ScreenReader
{
public:
    /// The session outlives the object.
    explicit XScreenReader(const XSession& session) : m_session(session) {}

    [[nodiscard]] int GetWidth() const override { return m_session.GetWidth(); }
    [[nodiscard]] int GetHeight() const override { return m_session.GetHeight(); }

    [[nodiscard]] Picture Capture(const Area& area) override
    {
        const ImagePointer image(XGetImage(m_session.GetDisplay(), m_session.GetRoot(), area.x, area.y,
                                           static_cast<unsigned>(area.width), static_cast<unsigned>(area.height),
                                           AllPlanes, ZPixmap));
        if (!image)
            throw std::runtime_error("The screen can't be read.");
        const ScreenFormat format(m_session);
        Picture picture{area.width, area.height, {}};
        for (int y = 0; y < area.height; ++y)
            for (int x = 0; x < area.width; ++x)
                picture.pixels.push_back(format.FromScreen(XGetPixel(image.get(), x, y)));
        return picture;
    }

private:
    const XSession& m_session;
};

} // namespace

Screen::Screen(const std::string& displayName)
    : m_session(IsCompositorName(displayName) ? nullptr : std::make_unique<XSession>(displayName))
{
    if (m_session != nullptr)
        m_reader = std::make_unique<XScreenReader>(*m_session);
    else
        m_reader = MakeCompositorReader(displayName);
}

Screen::~Screen() = default;

int Screen::GetWidth() const
{
    return m_reader->GetWidth();
}

int Screen::GetHeight() const
{
    return m_reader->GetHeight();
}

Picture Screen::Capture(const Area& area) const
{
    return m_reader->Capture(area);
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
