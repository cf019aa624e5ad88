#include "Tests/Support/GLWindow_X11.h"

#include "Desktops/X11/EglDisplay.h"
#include "Desktops/X11/XConnection.h"

#include <X11/Xatom.h>
#include <algorithm>
#include <stdexcept>

namespace Orvik::Tests
{
namespace
{

::Display* GetDisplay()
{
    ::Display* const display = Desktops::X11::GetXDisplay();
    if (display == nullptr)
        throw std::runtime_error("There is no X server.");
    return display;
}

} // namespace

GLWindow::GLWindow(std::uint32_t width, std::uint32_t height, int x) : m_width(width), m_height(height)
{
    ::Display* const display = GetDisplay();
    const auto& configuration = Desktops::X11::GetEglConfiguration();
    if (!configuration)
        throw std::runtime_error("The X server has no OpenGL with 4 samples.");
    const XVisualInfo& visual = configuration->visual;
    m_colormap = XCreateColormap(display, DefaultRootWindow(display), visual.visual, AllocNone);
    XSetWindowAttributes attributes = {};
    attributes.colormap = m_colormap;
    attributes.override_redirect = True;
    const ::Window window =
        XCreateWindow(display, DefaultRootWindow(display), x, 0, width, height, 0, visual.depth, InputOutput,
                      visual.visual, CWColormap | CWBorderPixel | CWOverrideRedirect, &attributes);
    XStoreName(display, window, "Before");
    XMapRaised(display, window);
    XSync(display, False);
    m_native = static_cast<Desktops::NativeWindow>(window);
}

GLWindow::~GLWindow()
{
    Destroy();
    if (Desktops::X11::GetXDisplay() != nullptr)
        XFreeColormap(GetDisplay(), m_colormap);
}

void GLWindow::Destroy()
{
    if (m_native == Desktops::NativeWindow{} || Desktops::X11::GetXDisplay() == nullptr)
        return;
    XDestroyWindow(GetDisplay(), static_cast<::Window>(m_native));
    XSync(GetDisplay(), False);
    m_native = {};
}

std::string GLWindow::GetTitle(const char* property) const
{
    ::Display* const display = GetDisplay();
    Atom type = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(display, static_cast<::Window>(m_native), XInternAtom(display, property, False), 0, 1024, False,
                       AnyPropertyType, &type, &format, &count, &rest, &data);
    std::string title = data != nullptr ? std::string(reinterpret_cast<const char*>(data), count) : std::string();
    if (data != nullptr)
        XFree(data);
    return title;
}

std::vector<std::uint32_t> GLWindow::Capture() const
{
    XImage* const image = XGetImage(GetDisplay(), static_cast<::Window>(m_native), 0, 0, m_width, m_height,
                                    static_cast<unsigned long>(-1), ZPixmap);
    if (image == nullptr)
        return {};
    std::vector<std::uint32_t> pixels;
    for (std::uint32_t y = 0; y < m_height; ++y)
    {
        for (std::uint32_t x = 0; x < m_width; ++x)
            pixels.push_back(static_cast<std::uint32_t>(XGetPixel(image, static_cast<int>(x), static_cast<int>(y))));
    }
    XDestroyImage(image);
    return pixels;
}

Desktops::NativeWindow CreateForeignWindow()
{
    ::Display* const display = GetDisplay();
    XVisualInfo wanted = {};
    wanted.screen = DefaultScreen(display);
    int count = 0;
    XVisualInfo* const visuals = XGetVisualInfo(display, VisualScreenMask, &wanted, &count);
    const XVisualInfo* const foreign =
        std::find_if(visuals, visuals + count,
                     [](const XVisualInfo& visual)
                     { return visual.visualid != Desktops::X11::GetEglConfiguration()->visual.visualid; });
    if (foreign == visuals + count)
        throw std::runtime_error("The X server has but one visual.");
    XSetWindowAttributes attributes = {};
    attributes.colormap = XCreateColormap(display, DefaultRootWindow(display), foreign->visual, AllocNone);
    const ::Window window = XCreateWindow(display, DefaultRootWindow(display), 0, 0, 16, 16, 0, foreign->depth,
                                          InputOutput, foreign->visual, CWColormap | CWBorderPixel, &attributes);
    XFree(visuals);
    XSync(display, False);
    return static_cast<Desktops::NativeWindow>(window);
}

} // namespace Orvik::Tests
