#include "Core/Graphics/Tools/SelectionOutline.h"

#include "Core/Graphics/Tools/OutlineShape.h"
#include "Core/Graphics/Tools/ToolObjects.h"

#include <array>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Math::Matrix4;
using System::Math::Point;
using System::Math::Vector4;

constexpr float s_lineThickness = 1.0F;
constexpr float s_rectangleDepth = 2.0F;
constexpr float s_polygonDepth = 0.2F;
constexpr float s_rectangleEdgeDepth = 1.9F;
constexpr float s_polygonEdgeDepth = 0.19F;
/// A pixel on each side of a polygon's line.
constexpr float s_polygonEdgeThickness = 3.0F;

} // namespace

void SelectionOutline::Create(Renderer::LineRenderer& renderer)
{
    const std::array<Vector4, 5> outline = MakeRectangleOutline(1, 1, s_lineThickness);
    std::vector<Vector4> points(outline.begin(), outline.end());
    renderer.Create(m_id, points);
    if (Renderer::Line* const line = renderer.Get(m_id))
    {
        line->thickness = s_lineThickness;
        line->color = Colour;
    }
}

void SelectionOutline::CreateEdge(Renderer::LineRenderer& renderer)
{
    const std::array<Vector4, 5> outline = MakeRectangleOutline(1, 1, s_lineThickness);
    std::vector<Vector4> points(outline.begin(), outline.end());
    renderer.Create(m_edgeId, points);
    Place(renderer.Get(m_edgeId), Matrix4::Collapse(), s_black);
}

void SelectionOutline::ShowRectangle(const RectangleModeData& rectangle, Size window,
                                     Renderer::LineRenderer& renderer) const
{
    Renderer::Line* const line = renderer.Get(m_id);
    if (line == nullptr)
        return;

    const System::Math::Rectangle area = {rectangle.x, rectangle.y, rectangle.x + rectangle.width,
                                          rectangle.y + rectangle.height};
    OutlineShape shape = MakeRectangleShape(area, window);
    line->model = Matrix4::Translation(shape.left, shape.bottom, s_rectangleDepth);
    renderer.Update(m_id, shape.points);

    Renderer::Line* const edge = renderer.Get(m_edgeId);
    if (edge == nullptr)
        return;
    OutlineShape surrounding = MakeSurroundingShape(area, window);
    Place(edge, Matrix4::Translation(surrounding.left, surrounding.bottom, s_rectangleEdgeDepth), s_black);
    edge->thickness = s_lineThickness;
    renderer.Update(m_edgeId, surrounding.points);
}

void SelectionOutline::ShowPolygon(const std::vector<Point>& vertices, Point cursor, Size window,
                                   Renderer::LineRenderer& renderer) const
{
    Renderer::Line* const line = renderer.Get(m_id);
    if (line == nullptr)
        return;

    std::vector<Point> corners = vertices;
    corners.push_back(cursor);
    OutlineShape shape = MakePolygonShape(corners, window);
    line->model = Matrix4::Translation(0.0F, 0.0F, s_polygonDepth);
    line->color = Colour;
    std::vector<Vector4> edgePoints = shape.points;
    renderer.Update(m_id, shape.points);

    Renderer::Line* const edge = renderer.Get(m_edgeId);
    if (edge == nullptr)
        return;
    Place(edge, Matrix4::Translation(0.0F, 0.0F, s_polygonEdgeDepth), s_black);
    edge->thickness = s_polygonEdgeThickness;
    renderer.Update(m_edgeId, edgePoints);
}

void SelectionOutline::Hide(Renderer::LineRenderer& renderer) const
{
    for (const std::uint16_t id : {m_id, m_edgeId})
    {
        if (Renderer::Line* const line = renderer.Get(id))
            line->model = Matrix4::Collapse();
    }
}

void SelectionOutline::Remove(Renderer::LineRenderer& renderer)
{
    RemoveObject(renderer, m_id);
    RemoveObject(renderer, m_edgeId);
}

} // namespace Orvik::Graphics::Tools
