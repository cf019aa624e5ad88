#pragma once

#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/Graphics/Tools/SnipBench.h"
#include "Core/System/Desktop/KeyCode.h"
#include "Tests/Support/AssertionTrap.h"
#include "Tests/Support/GLRecorder.h"
#include "Tests/Support/NullDesktop.h"
#include "Tests/Support/SnipBenchProbe.h"
#include "Tests/Support/TestApplication.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Orvik::Graphics::Tools
{

using System::Desktop::KeyCode;
using System::Math::Matrix4;
using System::Math::Point;
using System::Math::Vector4;
using System::Multimedia::Bitmap;
using System::Tools::ToolContext;
using System::Tools::ToolEventType;

/// A picture whose pixels say where they lie: blue and green are the low bytes of column and row, red has four more
/// bits of each.
inline Bitmap MakePicture(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel = 32)
{
    Bitmap picture(width, height, bitsPerPixel);
    std::uint8_t* pixel = picture.GetPixels();
    for (unsigned y = 0; y < height; ++y)
    {
        for (unsigned x = 0; x < width; ++x)
        {
            *pixel++ = static_cast<std::uint8_t>(x);
            *pixel++ = static_cast<std::uint8_t>(y);
            *pixel++ = static_cast<std::uint8_t>((x >> 8) << 4 | (y >> 8));
            if (bitsPerPixel == 32)
                *pixel++ = 255;
        }
    }
    return picture;
}

inline ToolContext Move(std::int32_t x, std::int32_t y)
{
    ToolContext context;
    context.type = ToolEventType::MouseMove;
    context.x = x;
    context.y = y;
    return context;
}

inline ToolContext Button(bool left, bool pressed)
{
    ToolContext context;
    context.type = ToolEventType::MouseButton;
    context.leftButton = left;
    context.pressed = pressed;
    return context;
}

inline ToolContext LeftPress()
{
    return Button(true, true);
}
inline ToolContext LeftRelease()
{
    return Button(true, false);
}
inline ToolContext RightPress()
{
    return Button(false, true);
}
inline ToolContext RightRelease()
{
    return Button(false, false);
}

inline ToolContext Key(KeyCode key, bool pressed)
{
    ToolContext context;
    context.type = ToolEventType::Key;
    context.key = static_cast<std::uint8_t>(key);
    context.pressed = pressed;
    return context;
}

inline ToolContext Press(KeyCode key)
{
    return Key(key, true);
}
inline ToolContext Release(KeyCode key)
{
    return Key(key, false);
}

inline ToolContext Wheel(float delta)
{
    ToolContext context;
    context.type = ToolEventType::MouseWheel;
    context.wheelDelta = delta;
    return context;
}

/// What a receiver was given, copied while it was lent.
struct Delivery
{
    std::int64_t startTime;
    const Bitmap* capture;
    std::uint16_t snipWidth;
    std::uint16_t snipHeight;
    std::vector<std::uint8_t> snipPixels;
    System::Math::Rectangle bounds;
    std::optional<std::vector<Point>> polygon;
};

/// A tool over a renderer that draws into nothing. Without a display system screen positions are window positions.
class ToolFixture : public testing::Test
{
protected:
    ToolFixture()
    {
        Tests::NullDesktop::GetInstance().Reset();
        Tests::GLRecorder::GetInstance().Reset();
        m_tool.findDisplay = [this](std::uint16_t id)
        {
            const auto& displays = m_application->m_displaySystem;
            return displays != nullptr ? displays->GetDisplay(id) : nullptr;
        };
    }

    ~ToolFixture() override
    {
        m_tool.End(m_renderer);
        m_renderer.Shutdown(s_window);
    }

    /// A fresh renderer with a surface of that size.
    void OpenWindow(std::int32_t width, std::int32_t height)
    {
        if (!m_isOpen)
            m_isOpen = m_renderer.Initialize(s_window, "Window");
        ASSERT_TRUE(m_isOpen);
        m_renderer.Resize(s_window, width, height);
    }

    void Start(Bitmap picture, ToolContext context = Move(0, 0), bool crop = true)
    {
        m_tool.Start(context, {crop, nullptr, std::move(picture), m_switches}, m_renderer);
    }

    /// A picture of the window's size, at scale 1 and without a border.
    void StartFull(std::uint16_t width, std::uint16_t height)
    {
        OpenWindow(width, height);
        Start(MakePicture(width, height));
        ASSERT_EQ(m_tool.GetState(), SnipState::Ready);
    }

    void Update(ToolContext context) { m_tool.Update(context, m_renderer); }

    void Update(const std::vector<ToolContext>& contexts)
    {
        for (const ToolContext& context : contexts)
            Update(context);
    }

    void Click(std::int32_t x, std::int32_t y) { Update({Move(x, y), LeftPress(), LeftRelease()}); }

    void Drag(Point from, Point to) { Update({Move(from.x, from.y), LeftPress(), Move(to.x, to.y), LeftRelease()}); }

    /// Installs a receiver that remembers everything and answers `goOn`.
    void Receive(bool goOn = true)
    {
        m_tool.onResult = [this, goOn](SnipBench::Result& result)
        {
            const auto size = static_cast<std::size_t>(result.snip->GetSize());
            const std::uint8_t* const pixels = result.snip->GetPixels();
            m_deliveries.push_back({result.startTime, result.capture, result.snip->GetWidth(), result.snip->GetHeight(),
                                    std::vector<std::uint8_t>(pixels, pixels + size), *result.bounds,
                                    result.polygon != nullptr ? std::optional(*result.polygon) : std::nullopt});
            return goOn;
        };
    }

    [[nodiscard]] Renderer::Line& GetOutline() { return GetLine(m_probe.GetSelectionLine()); }
    [[nodiscard]] Renderer::Line& GetLine(std::uint16_t id)
    {
        Renderer::Line* const line = m_renderer.GetLineRenderer().Get(id);
        if (line == nullptr)
            throw std::runtime_error("There is no such line.");
        return *line;
    }
    [[nodiscard]] Renderer::Texture& GetTexture(std::uint16_t id)
    {
        Renderer::Texture* const texture = m_renderer.GetTextureRenderer().Get(id);
        if (texture == nullptr)
            throw std::runtime_error("There is no such texture.");
        return *texture;
    }
    [[nodiscard]] Renderer::Text& GetText(std::uint16_t id)
    {
        Renderer::Text* const text = m_renderer.GetTextRenderer().Get(id);
        if (text == nullptr)
            throw std::runtime_error("There is no such text.");
        return *text;
    }

    /// The characters that a text draws: all but its blanks.
    [[nodiscard]] std::string GetDrawnText(std::uint16_t id)
    {
        std::string drawn;
        for (const std::uint32_t layer : GetText(id).instanceIndices)
            drawn.push_back(static_cast<char>(layer + 32));
        return drawn;
    }

    /// A line's points without the ones that the line renderer adds at both ends.
    [[nodiscard]] static std::vector<Vector4> GetPoints(const Renderer::Line& line)
    {
        return {line.points.begin() + 1, line.points.end() - 1};
    }

    [[nodiscard]] std::array<std::size_t, 3> CountObjects()
    {
        return {m_renderer.GetTextureRenderer().GetCount(), m_renderer.GetLineRenderer().GetCount(),
                m_renderer.GetTextRenderer().GetCount()};
    }

    static constexpr Desktops::NativeWindow s_window{1};

    /// Has the displays that the tool finds: none unless a test makes them.
    std::unique_ptr<Tests::TestApplication> m_application = std::make_unique<Tests::TestApplication>();
    Renderer::Renderer m_renderer;
    SnipBenchProbe m_tool;
    SnipBenchProbe& m_probe = m_tool;
    ToolSwitches m_switches; ///< what a configuration adds; nothing unless a test sets it
    std::vector<Delivery> m_deliveries;

private:
    bool m_isOpen = false;
};

} // namespace Orvik::Graphics::Tools
