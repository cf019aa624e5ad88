#pragma once

#include "Core/Graphics/Renderer/LineRenderer.h"
#include "Core/Graphics/Tools/SnipGeometry.h"

#include <array>
#include <cstdint>

namespace Orvik::Graphics::Tools
{

/// The line around a picture that is smaller than the window. Owns it.
class PictureFrame
{
public:
    /// Makes the line one pixel outside of the picture, unless the picture fills the window.
    void Create(const SnipView& view, Renderer::LineRenderer& renderer);

    void Remove(Renderer::LineRenderer& renderer);

    [[nodiscard]] std::uint16_t GetId() const { return m_id; }

private:
    std::uint16_t m_id = 0;
};

/// The square around a polygon's first corner, with a dark one around it, while a click would close the polygon. Owns
/// both.
class ClosingMark
{
public:
    /// Makes the lines, hidden.
    void Create(Renderer::LineRenderer& renderer);

    /// Puts them around a corner in window pixels. Missing lines are skipped, here and below.
    void Show(System::Math::Point corner, Size window, Renderer::LineRenderer& renderer) const;

    void Hide(Renderer::LineRenderer& renderer) const;

    void Remove(Renderer::LineRenderer& renderer);

    /// The square, and the dark one.
    [[nodiscard]] const std::array<std::uint16_t, 2>& GetIds() const { return m_ids; }

private:
    std::array<std::uint16_t, 2> m_ids = {0, 0};
};

} // namespace Orvik::Graphics::Tools
