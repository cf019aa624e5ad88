#pragma once

#include "Core/Graphics/Renderer/Renderer.h"
#include "Tests/Support/GLWindow_X11.h"
#include "Tests/Support/TestApplication.h"

#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

extern "C"
{
    GLenum glGetError();
}

namespace Orvik::Tests
{

/// A colour as it was read back. Not every X visual keeps the fourth channel.
struct Pixel
{
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool operator==(const Pixel&) const = default;
};

inline constexpr Pixel s_black = {0, 0, 0}; ///< what a frame begins with
inline constexpr Pixel s_white = {255, 255, 255};

inline void PrintTo(const Pixel& pixel, std::ostream* stream)
{
    *stream << '(' << int{pixel.red} << ", " << int{pixel.green} << ", " << int{pixel.blue} << ')';
}

/// A drawn frame. Positions are window pixels, counted from the top left corner.
class Frame
{
public:
    /// `pixels` are rows from the top, as blue | green << 8 | red << 16.
    Frame(std::int32_t width, std::int32_t height, const std::vector<std::uint32_t>& pixels)
        : m_width(width), m_height(height)
    {
        for (const std::uint32_t pixel : pixels)
        {
            m_pixels.push_back({static_cast<std::uint8_t>(pixel >> 16U), static_cast<std::uint8_t>(pixel >> 8U),
                                static_cast<std::uint8_t>(pixel)});
        }
    }

    [[nodiscard]] Pixel At(std::int32_t x, std::int32_t y) const
    {
        return m_pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) +
                           static_cast<std::size_t>(x));
    }

    /// How many pixels aren't as the frame began.
    [[nodiscard]] std::int64_t CountDrawn() const
    {
        std::int64_t count = 0;
        for (const Pixel& pixel : m_pixels)
            count += pixel == s_black ? 0 : 1;
        return count;
    }

    /// A line of text per row, for messages: '#' white, '.' untouched, '+' anything else.
    [[nodiscard]] std::string Describe() const
    {
        std::string text = "\n";
        for (std::int32_t y = 0; y < m_height; ++y)
        {
            for (std::int32_t x = 0; x < m_width; ++x)
                text += At(x, y) == s_white ? '#' : At(x, y) == s_black ? '.' : '+';
            text += '\n';
        }
        return text;
    }

    [[nodiscard]] std::int32_t GetWidth() const { return m_width; }
    [[nodiscard]] std::int32_t GetHeight() const { return m_height; }

private:
    std::int32_t m_width;
    std::int32_t m_height;
    std::vector<Pixel> m_pixels;
};

/// A renderer on a real window.
class RendererScene
{
public:
    RendererScene(std::int32_t width, std::int32_t height)
        : m_width(width),
          m_height(height),
          m_window(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height))
    {
        m_renderer.SetPainter({GetWantedPainter(), true, "a test"});
        EXPECT_TRUE(m_renderer.Initialize(m_window.GetNative(), "Test"));
        m_renderer.Resize(m_window.GetNative(), width, height);
        ExpectNoError();
    }

    ~RendererScene() { m_renderer.Shutdown(m_window.GetNative()); }
    RendererScene(const RendererScene&) = delete;
    RendererScene& operator=(const RendererScene&) = delete;

    /// Draws a frame and takes it from the screen. (`glReadPixels` would be nearer, but the software renderer gives but
    /// one of a pixel's four samples there.)
    [[nodiscard]] Frame Draw()
    {
        m_renderer.Render(m_window.GetNative());
        ExpectNoError();
        return Frame(m_width, m_height, m_window.Capture());
    }

    [[nodiscard]] Graphics::Renderer::Renderer& GetRenderer() { return m_renderer; }
    [[nodiscard]] GLWindow& GetWindow() { return m_window; }

private:
    /// By OpenGL, unless the tests are run for the program's own drawing.
    [[nodiscard]] static Desktops::SurfaceKind GetWantedPainter()
    {
        const char* const wanted = std::getenv("ORVIK_RENDERER");
        const bool isRaster = wanted != nullptr && std::string_view(wanted) == "raster";
        return isRaster ? Desktops::SurfaceKind::Pixels : Desktops::SurfaceKind::OpenGL;
    }

    void ExpectNoError() const
    {
        if (!m_renderer.DrawsIntoMemory())
        {
            EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
        }
    }

    std::int32_t m_width;
    std::int32_t m_height;
    TestApplication m_application;
    GLWindow m_window;
    Graphics::Renderer::Renderer m_renderer;
};

} // namespace Orvik::Tests
