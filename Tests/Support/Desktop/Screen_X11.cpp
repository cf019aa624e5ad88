#include "Tests/Support/Desktop/Screen.h"

#include "Tests/Support/Desktop/XSession.h"

#include <X11/Xutil.h>
#include <stdexcept>

namespace Orvik::Tests
{
namespace
{

struct ImageDeleter
{
    void operator()(XImage* image) const { XDestroyImage(image); }
};

using ImagePointer = std::unique_ptr<XImage, ImageDeleter>;

} // namespace

Screen::Screen(const std::string& displayName) : m_session(std::make_unique<XSession>(displayName))
{
    if (DefaultDepth(m_session->GetDisplay(), DefaultScreen(m_session->GetDisplay())) != 24)
        throw std::runtime_error("The screen isn't 24 bits deep.");
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
    Picture picture{area.width, area.height, {}};
    for (int y = 0; y < area.height; ++y)
        for (int x = 0; x < area.width; ++x)
            picture.pixels.push_back(0xFF000000U | static_cast<std::uint32_t>(XGetPixel(image.get(), x, y)));
    return picture;
}

void Screen::ShowOnRoot(const Picture& picture)
{
    ::Display* display = m_session->GetDisplay();
    const int screen = DefaultScreen(display);
    std::vector<std::uint32_t> pixels = picture.pixels;
    const ImagePointer image(XCreateImage(display, DefaultVisual(display, screen), 24, ZPixmap, 0,
                                          reinterpret_cast<char*>(pixels.data()), static_cast<unsigned>(picture.width),
                                          static_cast<unsigned>(picture.height), 32, 0));
    const Pixmap pixmap = XCreatePixmap(display, m_session->GetRoot(), static_cast<unsigned>(picture.width),
                                        static_cast<unsigned>(picture.height), 24);
    XPutImage(display, pixmap, DefaultGC(display, screen), image.get(), 0, 0, 0, 0,
              static_cast<unsigned>(picture.width), static_cast<unsigned>(picture.height));
    XSetWindowBackgroundPixmap(display, m_session->GetRoot(), pixmap);
    XClearWindow(display, m_session->GetRoot());
    XFreePixmap(display, pixmap);
    m_session->Synchronize();
    image->data = nullptr; // the pixels are the vector's
}

} // namespace Orvik::Tests
