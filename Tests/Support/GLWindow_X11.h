#pragma once

#include "Desktops/NativeWindow.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// A plain, visible X window of the kind that the program draws on.
class GLWindow
{
public:
    /// `x` is the column of the screen at which it begins.
    GLWindow(std::uint32_t width, std::uint32_t height, int x = 0);
    ~GLWindow();
    GLWindow(const GLWindow&) = delete;
    GLWindow& operator=(const GLWindow&) = delete;

    [[nodiscard]] Desktops::NativeWindow GetNative() const { return m_native; }

    /// Destroys the window while something may still draw on it.
    void Destroy();

    /// The title in that property, as a window manager would show it.
    [[nodiscard]] std::string GetTitle(const char* property) const;

    /// The pixels that the X server shows, rows from the top, as blue | green << 8 | red << 16; the highest byte
    /// depends on the visual.
    [[nodiscard]] std::vector<std::uint32_t> Capture() const;

private:
    std::uint32_t m_width;
    std::uint32_t m_height;
    unsigned long m_colormap = 0;
    Desktops::NativeWindow m_native{};
};

/// An X window of a visual that the program doesn't draw on. It ends with the X connection.
[[nodiscard]] Desktops::NativeWindow CreateForeignWindow();

} // namespace Orvik::Tests
