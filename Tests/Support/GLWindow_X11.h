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
    /// `x` is the column of the screen where it begins.
    GLWindow(std::uint32_t width, std::uint32_t height, int x = 0);
    ~GLWindow();
    GLWindow(const GLWindow&) = delete;
    GLWindow& operator=(const GLWindow&) = delete;

    [[nodiscard]] Desktops::NativeWindow GetNative() const { return m_native; }

    /// Takes the window away from under whoever draws on it.
    void Destroy();

    /// What a window manager would show, by the name of the property.
    [[nodiscard]] std::string GetTitle(const char* property) const;

    /// What the X server shows, rows from the top, as blue | green << 8 | red << 16; above that whatever
    /// the visual has.
    [[nodiscard]] std::vector<std::uint32_t> Capture() const;

private:
    std::uint32_t m_width;
    std::uint32_t m_height;
    unsigned long m_colormap = 0;
    Desktops::NativeWindow m_native{};
};

/// An X window of another visual than the program draws on. It goes with the X connection.
[[nodiscard]] Desktops::NativeWindow CreateForeignWindow();

} // namespace Orvik::Tests
