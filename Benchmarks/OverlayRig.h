#pragma once

#include "Core/Graphics/Raster/Items.h"
#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/System/Runtime/Application.h"
#include "Tests/Support/SnipBenchProbe.h"

#include <cstdint>
#include <vector>

namespace Orvik::Benchmarks
{

/// A picture with 32 bits to the pixel that is made fast: what is measured doesn't depend on what it shows.
[[nodiscard]] System::Multimedia::Bitmap MakeStripes(std::uint16_t width, std::uint16_t height);

/// The overlay with the tool on it, on a desktop of values: what a run has, without a window system. It is drawn into
/// memory. One at a time.
class OverlayRig final : public System::Runtime::Application
{
public:
    OverlayRig(std::uint16_t width, std::uint16_t height, bool isSelecting);
    ~OverlayRig() override;

    /// Moves the pointer to the next of its places.
    void Move();
    /// Zooms the magnifier in and out in turn.
    void Zoom();
    void Render();

    [[nodiscard]] Graphics::Renderer::Renderer& GetRenderer() { return m_renderer; }
    [[nodiscard]] Graphics::Tools::SnipBenchProbe& GetTool() { return m_tool; }
    /// What the painter would paint now.
    [[nodiscard]] std::vector<Graphics::Raster::Item> MakeItems();

private:
    void Send(System::Tools::ToolContext context);

    std::uint16_t m_width;
    std::uint16_t m_height;
    int m_step = 0;
    Graphics::Renderer::Renderer m_renderer;
    Graphics::Tools::SnipBenchProbe m_tool;
};

} // namespace Orvik::Benchmarks
