#pragma once

#include "Core/Graphics/Renderer/LineRenderer.h"
#include "Core/Graphics/Tools/SnipGeometry.h"

#include <cstdint>
#include <vector>

namespace Orvik::Graphics::Tools
{

/// The line around the selection that is being made; with contrast, a dark one is outside of it, or below a polygon's.
/// Owns both.
class SelectionOutline
{
public:
    static constexpr System::Math::Vector4 Colour = {141.0F / 255.0F, 65.0F / 255.0F, 184.0F / 255.0F, 1.0F};

    /// Makes it around a single pixel.
    void Create(Renderer::LineRenderer& renderer);

    /// Makes the dark line too, hidden. After `Create`.
    void CreateEdge(Renderer::LineRenderer& renderer);

    /// Puts it one pixel outside of the rectangle on each side.
    void ShowRectangle(const RectangleModeData& rectangle, Size window, Renderer::LineRenderer& renderer) const;

    /// Puts it through the vertices and, as a rubber band, to the cursor.
    void ShowPolygon(const std::vector<System::Math::Point>& vertices, System::Math::Point cursor, Size window,
                     Renderer::LineRenderer& renderer) const;

    /// Keeps the line and its points, but makes it invisible.
    void Hide(Renderer::LineRenderer& renderer) const;

    void Remove(Renderer::LineRenderer& renderer);

    [[nodiscard]] bool Exists(Renderer::LineRenderer& renderer) const { return renderer.Get(m_id) != nullptr; }
    [[nodiscard]] std::uint16_t GetId() const { return m_id; }

    [[nodiscard]] std::uint16_t GetEdgeId() const { return m_edgeId; }

private:
    std::uint16_t m_id = 0;
    std::uint16_t m_edgeId = 0;
};

} // namespace Orvik::Graphics::Tools
