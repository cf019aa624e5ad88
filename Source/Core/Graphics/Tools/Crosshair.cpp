#include "Core/Graphics/Tools/Crosshair.h"

#include "Core/Graphics/Tools/ToolObjects.h"

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Math::Matrix4;

constexpr float s_depth = 0.4F;
constexpr float s_edgeDepth = 0.39F;
/// The opacity at the far end.
constexpr float s_end = 0.4F;

} // namespace

void Crosshair::Fit(Size window, Renderer::LineRenderer& renderer)
{
    const float width = window.width;
    const float height = window.height;
    SetLinePoints(renderer, m_ids[0], {0.0F, -1.0F, 0.0F, 1.0F}, {width, -1.0F, 0.0F, s_end});
    SetLinePoints(renderer, m_ids[1], {1.0F, 0.0F, 0.0F, 1.0F}, {1.0F, height, 0.0F, s_end});
}

// On the far side, so that the cursor's own row and column stay visible.
void Crosshair::FitEdges(Size window, Renderer::LineRenderer& renderer)
{
    const float width = window.width;
    const float height = window.height;
    SetLinePoints(renderer, m_edgeIds[0], {0.0F, -2.0F, 0.0F, 1.0F}, {width, -2.0F, 0.0F, s_end});
    SetLinePoints(renderer, m_edgeIds[1], {2.0F, 0.0F, 0.0F, 1.0F}, {2.0F, height, 0.0F, s_end});
}

void Crosshair::Move(System::Math::Point cursor, Size window, Renderer::LineRenderer& renderer) const
{
    const auto x = static_cast<float>(static_cast<std::uint16_t>(cursor.x));
    const auto y = static_cast<float>(window.height - static_cast<std::uint16_t>(cursor.y));
    Place(renderer.Get(m_ids[0]), Matrix4::Translation(0.0F, y, s_depth), s_white);
    Place(renderer.Get(m_ids[1]), Matrix4::Translation(x, 0.0F, s_depth), s_white);
    Place(renderer.Get(m_edgeIds[0]), Matrix4::Translation(0.0F, y, s_edgeDepth), s_black);
    Place(renderer.Get(m_edgeIds[1]), Matrix4::Translation(x, 0.0F, s_edgeDepth), s_black);
}

void Crosshair::Remove(Renderer::LineRenderer& renderer)
{
    for (std::uint16_t& id : m_ids)
        RemoveObject(renderer, id);
    for (std::uint16_t& id : m_edgeIds)
        RemoveObject(renderer, id);
}

} // namespace Orvik::Graphics::Tools
