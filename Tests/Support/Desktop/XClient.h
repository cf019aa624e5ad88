#pragma once

// Needs the headers of X11; only for tests of the X11 desktop.

#include "Desktops/X11/X11Headers.h"
#include "Tests/Support/Desktop/InputDriver.h"

#include <X11/Xatom.h>
#include <X11/extensions/Xrandr.h>
#include <cstdint>
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

/// Another client of the server that `DISPLAY` names: the person at the desktop, other programs, the window manager.
/// What it makes ends with it, monitors included. When an operation returns, the server has done it.
class XClient : public InputDriver
{
public:
    XClient();
    ~XClient();
    XClient(const XClient&) = delete;
    XClient& operator=(const XClient&) = delete;

    [[nodiscard]] ::Display* GetDisplay() const { return m_display; }
    [[nodiscard]] ::Window GetRoot() const { return DefaultRootWindow(m_display); }
    void Synchronize() const { XSync(m_display, False); }

    [[nodiscard]] bool GrabKeyboard();
    [[nodiscard]] bool GrabPointer();

    /// The pixels of the whole screen, or of a part of it, four bytes each; the byte without meaning is 0.
    [[nodiscard]] std::vector<std::uint32_t> ReadScreen();
    [[nodiscard]] std::vector<std::uint32_t> ReadScreen(const Place& place);

    /// The windows on the screen from the lowest to the highest, unmapped ones included.
    [[nodiscard]] std::vector<::Window> GetTopWindows();
    /// A property as 32-bit items; empty if the window doesn't have it.
    [[nodiscard]] std::vector<unsigned long> GetItems(::Window window, const char* name);
    [[nodiscard]] std::string GetText(::Window window, const char* name) { return GetProperty(window, name, 1); }
    [[nodiscard]] Atom GetAtom(const char* name) const { return XInternAtom(m_display, name, False); }

    /// A visible window of one colour. A running window manager may move it.
    ::Window AddWindow(const Place& place, unsigned long pixel = 0, ::Window parent = None, unsigned int border = 0);
    /// The same, above all others, and no window manager changes it.
    ::Window AddUnmanagedWindow(const Place& place, unsigned long pixel);
    void HideWindow(::Window window) const;
    void DestroyWindow(::Window window) const;
    void SendClientMessage(::Window target, ::Window window, const char* type, long first, long mask);

    /// Sets the property in which a window manager names the window that the user works in.
    void SetActiveWindow(::Window window) const;
    void ClearActiveWindow() const;
    void SetFocus(::Window window) const;

    /// Fills a part of a window, or of the root, with a colour of 8 bits per channel, or the nearest that the screen
    /// has.
    void Fill(::Window window, const Place& place, std::uint32_t color) const;
    /// The screen's value for a colour, red << 16 | green << 8 | blue.
    [[nodiscard]] unsigned long GetPixel(std::uint32_t color) const;

    /// The server's one output.
    [[nodiscard]] RROutput GetOutput() const;
    /// Adds a monitor. One with the server's output replaces the monitor that the server makes by itself.
    void AddMonitor(const char* name, const Place& place, bool isPrimary, RROutput output = None);
    /// Gives the output a new mode of the screen's size with that timing.
    void SetTiming(const char* name, unsigned long dotClock, unsigned int hTotal, unsigned int vTotal,
                   unsigned long flags = 0);
    /// Gives the screen another size, with its output switched off, because none of its modes fits.
    void ShrinkScreen(int width, int height);
    /// Restores the first size, and the output's mode of that size.
    void RestoreScreen();

private:
    [[nodiscard]] std::string GetProperty(::Window window, const char* name, std::size_t itemSize);
    /// None switches the output off.
    void SetOutputMode(RRMode mode) const;

    ::Display* m_display;
    bool m_isShrunk = false;
    std::vector<Atom> m_monitors;
};

} // namespace Orvik::Tests
