#pragma once

#include "Tests/Support/Desktop/Picture.h"

#include <memory>
#include <string>

namespace Orvik::Tests
{

class ScreenReader;
class XSession;

/// What an X server or a compositor shows to a person, and the picture on the X server's root window. If the screen
/// doesn't have 24 bits, every colour is the nearest that it has.
class Screen
{
public:
    /// The path of a socket is a compositor's.
    explicit Screen(const std::string& displayName);
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    [[nodiscard]] int GetWidth() const;
    [[nodiscard]] int GetHeight() const;

    /// The pixels that are on the screen now, windows included. The area must be on the screen.
    [[nodiscard]] Picture Capture(const Area& area) const;
    [[nodiscard]] Picture CaptureAll() const { return Capture({0, 0, GetWidth(), GetHeight()}); }

    /// Of X servers alone: makes the picture the root window's background, from the top left corner.
    void ShowOnRoot(const Picture& picture);

private:
    std::unique_ptr<XSession> m_session; ///< null for a compositor
    std::unique_ptr<ScreenReader> m_reader;
    unsigned long m_rootPixmap = 0; ///< goes with the session
};

} // namespace Orvik::Tests
