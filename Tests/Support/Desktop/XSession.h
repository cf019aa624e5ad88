#pragma once

// Private to the X11 units of this folder.

#include "Desktops/X11/X11Headers.h"

#include <string>

namespace Orvik::Tests
{

/// A connection of its own to an X server. Throws `std::runtime_error` if there is none.
class XSession
{
public:
    explicit XSession(const std::string& displayName);
    ~XSession();
    XSession(const XSession&) = delete;
    XSession& operator=(const XSession&) = delete;

    [[nodiscard]] ::Display* GetDisplay() const { return m_display; }
    [[nodiscard]] ::Window GetRoot() const { return DefaultRootWindow(m_display); }
    [[nodiscard]] int GetWidth() const { return DisplayWidth(m_display, DefaultScreen(m_display)); }
    [[nodiscard]] int GetHeight() const { return DisplayHeight(m_display, DefaultScreen(m_display)); }
    /// Returns once the server has done all requests so far.
    void Synchronize() const { XSync(m_display, False); }

private:
    ::Display* m_display;
};

} // namespace Orvik::Tests
