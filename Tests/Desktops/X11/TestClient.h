#pragma once

// Another client of the test's X server: what the person at the desktop and the other programs do.

#include <gtest/gtest.h>

#include "Desktops/X11/X11Headers.h"

#include <X11/Xatom.h>
#include <X11/extensions/Xrandr.h>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// The place and size of a monitor or window, screen pixels.
struct Place
{
    int x = 0;
    int y = 0;
    unsigned int width = 0;
    unsigned int height = 0;
};

/// A connection of its own to the server that `DISPLAY` names. What it makes goes with it, monitors included.
class TestClient
{
public:
    TestClient() : m_display(XOpenDisplay(nullptr))
    {
        if (m_display == nullptr)
            std::abort();
        m_root = DefaultRootWindow(m_display);
        m_screen = DefaultScreen(m_display);
    }

    ~TestClient()
    {
        for (const Atom monitor : m_monitors)
            XRRDeleteMonitor(m_display, m_root, monitor);
        ClearActiveWindow();
        RestoreScreen();
        XCloseDisplay(m_display);
    }
    TestClient(const TestClient&) = delete;
    TestClient& operator=(const TestClient&) = delete;

    [[nodiscard]] ::Display* GetDisplay() const { return m_display; }
    [[nodiscard]] ::Window GetRoot() const { return m_root; }
    void Synchronize() const { XSync(m_display, False); }

    /// The server's one output.
    [[nodiscard]] RROutput GetOutput() const
    {
        XRRScreenResources* const resources = XRRGetScreenResourcesCurrent(m_display, m_root);
        const RROutput output = resources->outputs[0];
        XRRFreeScreenResources(resources);
        return output;
    }

    /// Adds a monitor. One with the server's output takes the place of the monitor that the server makes by itself.
    void AddMonitor(const char* name, const Place& place, bool isPrimary, RROutput output = None)
    {
        XRRMonitorInfo* const monitor = XRRAllocateMonitor(m_display, output == None ? 0 : 1);
        monitor->name = XInternAtom(m_display, name, False);
        monitor->primary = isPrimary ? True : False;
        monitor->x = place.x;
        monitor->y = place.y;
        monitor->width = static_cast<int>(place.width);
        monitor->height = static_cast<int>(place.height);
        monitor->mwidth = 100;
        monitor->mheight = 100;
        if (output != None)
            monitor->outputs[0] = output;
        m_monitors.push_back(monitor->name);
        XRRSetMonitor(m_display, m_root, monitor);
        XRRFreeMonitors(monitor);
        Synchronize();
    }

    /// Gives the output a new mode of the screen's size with that timing.
    void SetTiming(const char* name, unsigned long dotClock, unsigned int hTotal, unsigned int vTotal,
                   unsigned long flags = 0)
    {
        XRRModeInfo mode = {};
        std::string modeName = name;
        mode.width = static_cast<unsigned int>(DisplayWidth(m_display, m_screen));
        mode.height = static_cast<unsigned int>(DisplayHeight(m_display, m_screen));
        mode.dotClock = dotClock;
        mode.hTotal = hTotal;
        mode.vTotal = vTotal;
        mode.modeFlags = flags;
        mode.name = modeName.data();
        mode.nameLength = static_cast<unsigned int>(modeName.size());
        const RRMode id = XRRCreateMode(m_display, m_root, &mode);
        XRRAddOutputMode(m_display, GetOutput(), id);
        SetOutputMode(id);
    }

    /// Gives the screen another size, with its output switched off, for no mode of it fits.
    void ShrinkScreen(int width, int height)
    {
        SetOutputMode(None);
        XRRSetScreenSize(m_display, m_root, width, height, width / 4, height / 4);
        m_isShrunk = true;
        Synchronize();
    }

    /// The first size again, and the output's mode of that size.
    void RestoreScreen()
    {
        if (!m_isShrunk)
            return;
        const int width = DisplayWidth(m_display, m_screen);
        const int height = DisplayHeight(m_display, m_screen);
        XRRSetScreenSize(m_display, m_root, width, height, width / 4, height / 4);
        XRRScreenResources* const resources = XRRGetScreenResourcesCurrent(m_display, m_root);
        SetOutputMode(resources->modes[0].id);
        XRRFreeScreenResources(resources);
        m_isShrunk = false;
        Synchronize();
    }

    /// A window of one colour, shown. No window manager moves it.
    ::Window AddWindow(const Place& place, unsigned long pixel = 0, ::Window parent = None, unsigned int border = 0)
    {
        const ::Window window = XCreateSimpleWindow(m_display, parent == None ? m_root : parent, place.x, place.y,
                                                    place.width, place.height, border, 0, pixel);
        XMapWindow(m_display, window);
        Synchronize();
        return window;
    }

    void HideWindow(::Window window) const
    {
        XUnmapWindow(m_display, window);
        Synchronize();
    }

    void DestroyWindow(::Window window) const
    {
        XDestroyWindow(m_display, window);
        Synchronize();
    }

    /// What a window manager tells of the window that the user works in.
    void SetActiveWindow(::Window window) const
    {
        XChangeProperty(m_display, m_root, XInternAtom(m_display, "_NET_ACTIVE_WINDOW", False), XA_WINDOW, 32,
                        PropModeReplace, reinterpret_cast<const unsigned char*>(&window), 1);
        Synchronize();
    }

    void ClearActiveWindow() const
    {
        XDeleteProperty(m_display, m_root, XInternAtom(m_display, "_NET_ACTIVE_WINDOW", False));
        Synchronize();
    }

    void SetFocus(::Window window) const
    {
        XSetInputFocus(m_display, window, RevertToNone, CurrentTime);
        Synchronize();
    }

    /// Fills a part of a window, or of the root, with a colour of 8 bits to the channel, as near as the screen has it.
    void Fill(::Window window, const Place& place, std::uint32_t color) const
    {
        XGCValues values = {};
        values.foreground = GetPixel(color);
        values.subwindow_mode = ClipByChildren;
        const ::GC context = XCreateGC(m_display, window, GCForeground | GCSubwindowMode, &values);
        XFillRectangle(m_display, window, context, place.x, place.y, place.width, place.height);
        XFreeGC(m_display, context);
        Synchronize();
    }

    /// The screen's value for a colour, red << 16 | green << 8 | blue.
    [[nodiscard]] unsigned long GetPixel(std::uint32_t color) const
    {
        const Visual* const visual = DefaultVisual(m_display, m_screen);
        return Place8Bits(color >> 16 & 0xFF, visual->red_mask) | Place8Bits(color >> 8 & 0xFF, visual->green_mask) |
               Place8Bits(color & 0xFF, visual->blue_mask);
    }

private:
    /// None switches the output off.
    void SetOutputMode(RRMode mode) const
    {
        RROutput output = GetOutput();
        XRRScreenResources* const resources = XRRGetScreenResourcesCurrent(m_display, m_root);
        const Status status = XRRSetCrtcConfig(m_display, resources, resources->crtcs[0], CurrentTime, 0, 0, mode,
                                               RR_Rotate_0, mode == None ? nullptr : &output, mode == None ? 0 : 1);
        EXPECT_EQ(status, RRSetConfigSuccess);
        XRRFreeScreenResources(resources);
        Synchronize();
    }

    static unsigned long Place8Bits(unsigned long level, unsigned long mask)
    {
        unsigned int shift = 0;
        while ((mask >> shift & 1) == 0)
            ++shift;
        const unsigned long greatest = mask >> shift;
        return ((level * greatest + 127) / 255) << shift;
    }

    ::Display* m_display;
    ::Window m_root = None;
    bool m_isShrunk = false;
    int m_screen = 0;
    std::vector<Atom> m_monitors;
};

} // namespace Orvik::Tests
