#pragma once

// For tests with a real X server: what a person and other programs do on it, over a connection of their own.

#include "Desktops/X11/X11Headers.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/extensions/XTest.h>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace Orvik::Tests
{

class XUser
{
public:
    XUser() : m_display(XOpenDisplay(nullptr))
    {
        if (m_display == nullptr)
            throw std::runtime_error("The virtual display doesn't answer.");
    }
    ~XUser() { XCloseDisplay(m_display); }
    XUser(const XUser&) = delete;
    XUser& operator=(const XUser&) = delete;

    [[nodiscard]] ::Display* GetDisplay() const { return m_display; }
    [[nodiscard]] ::Window GetRoot() const { return DefaultRootWindow(m_display); }

    // Each of these returns when the server has dealt with it.

    void MovePointer(int x, int y)
    {
        XTestFakeMotionEvent(m_display, 0, x, y, CurrentTime);
        XSync(m_display, False);
    }
    void Button(unsigned int button, bool pressed)
    {
        XTestFakeButtonEvent(m_display, button, pressed ? True : False, CurrentTime);
        XSync(m_display, False);
    }
    void Click(unsigned int button)
    {
        Button(button, true);
        Button(button, false);
    }
    void Key(unsigned int keycode, bool pressed)
    {
        XTestFakeKeyEvent(m_display, keycode, pressed ? True : False, CurrentTime);
        XSync(m_display, False);
    }
    void Type(unsigned int keycode)
    {
        Key(keycode, true);
        Key(keycode, false);
    }

    [[nodiscard]] bool GrabKeyboard()
    {
        return XGrabKeyboard(m_display, GetRoot(), False, GrabModeAsync, GrabModeAsync, CurrentTime) == GrabSuccess;
    }
    [[nodiscard]] bool GrabPointer()
    {
        return XGrabPointer(m_display, GetRoot(), False, ButtonPressMask, GrabModeAsync, GrabModeAsync, None, None,
                            CurrentTime) == GrabSuccess;
    }
    void Ungrab()
    {
        XUngrabKeyboard(m_display, CurrentTime);
        XUngrabPointer(m_display, CurrentTime);
        XSync(m_display, False);
    }

    /// The pixels of the whole screen, four bytes each, without the byte that means nothing.
    [[nodiscard]] std::vector<std::uint32_t> ReadScreen()
    {
        XWindowAttributes root = {};
        XGetWindowAttributes(m_display, GetRoot(), &root);
        return ReadScreen(0, 0, root.width, root.height);
    }
    [[nodiscard]] std::vector<std::uint32_t> ReadScreen(int x, int y, int width, int height)
    {
        XImage* const image = XGetImage(m_display, GetRoot(), x, y, static_cast<unsigned int>(width),
                                        static_cast<unsigned int>(height), AllPlanes, ZPixmap);
        std::vector<std::uint32_t> pixels;
        for (int row = 0; row < height; ++row)
        {
            for (int column = 0; column < width; ++column)
                pixels.push_back(static_cast<std::uint32_t>(XGetPixel(image, column, row)) & 0xFFFFFFU);
        }
        XDestroyImage(image);
        return pixels;
    }

    /// The windows on the screen from the lowest to the highest, those that aren't mapped included.
    [[nodiscard]] std::vector<::Window> GetTopWindows()
    {
        ::Window root = None;
        ::Window parent = None;
        ::Window* children = nullptr;
        unsigned int count = 0;
        XQueryTree(m_display, GetRoot(), &root, &parent, &children, &count);
        std::vector<::Window> windows(children, children + count);
        XFree(children);
        return windows;
    }

    /// A property as 32-bit items; empty if the window hasn't got it.
    [[nodiscard]] std::vector<unsigned long> GetItems(::Window window, const char* name)
    {
        const std::string bytes = GetProperty(window, name, sizeof(unsigned long));
        std::vector<unsigned long> items(bytes.size() / sizeof(unsigned long));
        if (!bytes.empty())
            std::memcpy(items.data(), bytes.data(), bytes.size());
        return items;
    }
    [[nodiscard]] std::string GetText(::Window window, const char* name) { return GetProperty(window, name, 1); }
    [[nodiscard]] Atom GetAtom(const char* name) { return XInternAtom(m_display, name, False); }

    /// A mapped window that no window manager touches.
    [[nodiscard]] ::Window MakeWindow(int x, int y, unsigned int width, unsigned int height, unsigned long color)
    {
        XSetWindowAttributes attributes = {};
        attributes.override_redirect = True;
        attributes.background_pixel = color;
        ::Window const window = XCreateWindow(m_display, GetRoot(), x, y, width, height, 0, CopyFromParent, InputOutput,
                                              CopyFromParent, CWOverrideRedirect | CWBackPixel, &attributes);
        XMapRaised(m_display, window);
        XSync(m_display, False);
        return window;
    }

    void SendClientMessage(::Window target, ::Window window, const char* type, long first, long mask)
    {
        XEvent event = {};
        event.xclient.type = ClientMessage;
        event.xclient.window = window;
        event.xclient.message_type = GetAtom(type);
        event.xclient.format = 32;
        event.xclient.data.l[0] = first;
        XSendEvent(m_display, target, False, mask, &event);
        XSync(m_display, False);
    }

private:
    [[nodiscard]] std::string GetProperty(::Window window, const char* name, std::size_t itemSize)
    {
        Atom type = None;
        int format = 0;
        unsigned long count = 0;
        unsigned long left = 0;
        unsigned char* data = nullptr;
        XGetWindowProperty(m_display, window, GetAtom(name), 0, 1024, False, AnyPropertyType, &type, &format, &count,
                           &left, &data);
        if (data == nullptr)
            return {};
        const std::string bytes(reinterpret_cast<const char*>(data), count * itemSize);
        XFree(data);
        return bytes;
    }

    ::Display* m_display;
};

} // namespace Orvik::Tests
