#include "Core/Graphics/Tools/ContrastLines.h"

#include "Core/Graphics/Tools/OutlineShape.h"
#include "Core/Graphics/Tools/ToolObjects.h"

#include <vector>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Math::Matrix4;
using System::Math::Point;
using System::Math::Vector4;

constexpr float s_frameDepth = 0.12F;
constexpr Vector4 s_frameColour = {0.5F, 0.5F, 0.5F, 1.0F};
constexpr float s_markDepth = 0.5F;
/// Pixels between the corner and each side of its square.
constexpr std::int32_t s_markDistance = 4;

System::Math::Rectangle GetSquare(Point corner)
{
    return {corner.x - s_markDistance, corner.y - s_markDistance, corner.x + s_markDistance + 1,
            corner.y + s_markDistance + 1};
}

} // namespace

void PictureFrame::Create(const SnipView& view, Renderer::LineRenderer& renderer)
{
    const Point corner = GetImageCorner(view);
    const System::Math::Rectangle area = {
        corner.x, corner.y, corner.x + static_cast<std::int32_t>(ScaleSide(view.capture.width, view.scale)),
        corner.y + static_cast<std::int32_t>(ScaleSide(view.capture.height, view.scale))};
    if (area.GetWidth() >= view.window.width && area.GetHeight() >= view.window.height)
        return;
    OutlineShape shape = MakeOutlineShape(area, view.window, 1);
    renderer.Create(m_id, shape.points);
    Place(renderer.Get(m_id), Matrix4::Translation(shape.left, shape.bottom, s_frameDepth), s_frameColour);
}

void PictureFrame::Remove(Renderer::LineRenderer& renderer)
{
    RemoveObject(renderer, m_id);
}

void ClosingMark::Create(Renderer::LineRenderer& renderer)
{
    OutlineShape square = MakeOutlineShape(GetSquare({0, 0}), {1, 1}, 1);
    OutlineShape edge = MakeOutlineShape(GetSquare({0, 0}), {1, 1}, 2);
    renderer.Create(m_ids[0], square.points);
    renderer.Create(m_ids[1], edge.points);
    Hide(renderer);
}

void ClosingMark::Show(Point corner, Size window, Renderer::LineRenderer& renderer) const
{
    const OutlineShape square = MakeOutlineShape(GetSquare(corner), window, 1);
    const OutlineShape edge = MakeOutlineShape(GetSquare(corner), window, 2);
    Place(renderer.Get(m_ids[0]), Matrix4::Translation(square.left, square.bottom, s_markDepth), s_white);
    Place(renderer.Get(m_ids[1]), Matrix4::Translation(edge.left, edge.bottom, s_markDepth), s_black);
}

void ClosingMark::Hide(Renderer::LineRenderer& renderer) const
{
    for (const std::uint16_t id : m_ids)
        Place(renderer.Get(id), Matrix4::Collapse(), s_black);
}

void ClosingMark::Remove(Renderer::LineRenderer& renderer)
{
    for (std::uint16_t& id : m_ids)
        RemoveObject(renderer, id);
}

} // namespace Orvik::Graphics::Tools
