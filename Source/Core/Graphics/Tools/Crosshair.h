#pragma once

#include "Core/Graphics/Renderer/LineRenderer.h"
#include "Core/Graphics/Tools/SnipGeometry.h"

#include <array>
#include <cstdint>

namespace Orvik::Graphics::Tools
{

/// Two lines as long as the window, right of the cursor's pixel and below it; with contrast, each has a dark one on its
/// far side. Owns them.
class Crosshair
{
public:
    /// Makes the dark lines too. Between `Fit` and the first `Move`.
    void FitEdges(Size window, Renderer::LineRenderer& renderer);

    /// Makes the lines, or gives existing ones the window's size.
    void Fit(Size window, Renderer::LineRenderer& renderer);

    /// Moves them to the cursor, in window pixels. A missing line is skipped.
    void Move(System::Math::Point cursor, Size window, Renderer::LineRenderer& renderer) const;

    void Remove(Renderer::LineRenderer& renderer);

    /// The horizontal line and the vertical one.
    [[nodiscard]] const std::array<std::uint16_t, 2>& GetIds() const { return m_ids; }

    /// The same of the dark lines.
    [[nodiscard]] const std::array<std::uint16_t, 2>& GetEdgeIds() const { return m_edgeIds; }

private:
    std::array<std::uint16_t, 2> m_ids = {0, 0};
    std::array<std::uint16_t, 2> m_edgeIds = {0, 0};
};

} // namespace Orvik::Graphics::Tools
