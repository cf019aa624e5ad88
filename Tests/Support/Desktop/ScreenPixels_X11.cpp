#include "Tests/Support/Desktop/ScreenPixels.h"

#include <bit>
#include <cstdlib>
#include <stdexcept>

namespace Orvik::Tests
{
namespace
{

constexpr unsigned long s_greatest = 255;

unsigned long ToChannel(std::uint32_t level, unsigned long mask)
{
    const unsigned long steps = mask >> std::countr_zero(mask);
    return ((level & s_greatest) * steps + s_greatest / 2) / s_greatest << std::countr_zero(mask);
}

std::uint32_t FromChannel(unsigned long pixel, unsigned long mask)
{
    const unsigned long steps = mask >> std::countr_zero(mask);
    const unsigned long value = (pixel & mask) >> std::countr_zero(mask);
    return static_cast<std::uint32_t>((value * s_greatest + steps / 2) / steps);
}

Visual* GetVisual(const XSession& session)
{
    return DefaultVisual(session.GetDisplay(), DefaultScreen(session.GetDisplay()));
}

ImagePointer MakeImage(const XSession& session, const Picture& picture)
{
    ::Display* const display = session.GetDisplay();
    const auto depth = static_cast<unsigned>(DefaultDepth(display, DefaultScreen(display)));
    ImagePointer image(XCreateImage(display, GetVisual(session), depth, ZPixmap, 0, nullptr,
                                    static_cast<unsigned>(picture.width), static_cast<unsigned>(picture.height), 32,
                                    0));
    // Freed with the image.
    image->data = static_cast<char*>(
        std::malloc(static_cast<std::size_t>(image->bytes_per_line) * static_cast<std::size_t>(image->height)));
    const ScreenFormat format(session);
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            XPutPixel(image.get(), x, y, format.ToScreen(picture.At(x, y)));
    return image;
}

} // namespace

ScreenFormat::ScreenFormat(const XSession& session)
    : m_red(GetVisual(session)->red_mask),
      m_green(GetVisual(session)->green_mask),
      m_blue(GetVisual(session)->blue_mask)
{
    if (m_red == 0 || m_green == 0 || m_blue == 0)
        throw std::runtime_error("The screen has a colour table.");
}

unsigned long ScreenFormat::ToScreen(std::uint32_t pixel) const
{
    return ToChannel(pixel >> 16, m_red) | ToChannel(pixel >> 8, m_green) | ToChannel(pixel, m_blue);
}

std::uint32_t ScreenFormat::FromScreen(unsigned long pixel) const
{
    return 0xFF000000U | FromChannel(pixel, m_red) << 16 | FromChannel(pixel, m_green) << 8 |
           FromChannel(pixel, m_blue);
}

Pixmap SetBackground(const XSession& session, ::Window window, const Picture& picture)
{
    ::Display* const display = session.GetDisplay();
    const int screen = DefaultScreen(display);
    const ImagePointer image = MakeImage(session, picture);
    const auto width = static_cast<unsigned>(picture.width);
    const auto height = static_cast<unsigned>(picture.height);
    const Pixmap pixmap =
        XCreatePixmap(display, session.GetRoot(), width, height, static_cast<unsigned>(DefaultDepth(display, screen)));
    XPutImage(display, pixmap, DefaultGC(display, screen), image.get(), 0, 0, 0, 0, width, height);
    XSetWindowBackgroundPixmap(display, window, pixmap);
    XClearWindow(display, window);
    session.Synchronize();
    return pixmap;
}

} // namespace Orvik::Tests
