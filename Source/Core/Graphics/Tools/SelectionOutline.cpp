#include "Core/Graphics/Tools/SelectionOutline.h"

#include "Core/Graphics/Tools/ToolObjects.h"

#include <algorithm>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Math::Matrix4;
using System::Math::Point;
using System::Math::Vector4;

constexpr float s_thickness = 1.0F;
constexpr float s_rectangleDepth = 2.0F;
constexpr float s_polygonDepth = 0.2F;
/// The line renderer keeps the memory of the points and adds a point at each end.
constexpr std::size_t s_addedPoints = 2;

std::vector<Vector4> MakePoints(std::uint16_t width, std::uint16_t height)
{
    const std::array<Vector4, 5> outline = MakeRectangleOutline(width, height, s_thickness);
    std::vector<Vector4> points;
    points.reserve(outline.size() + s_addedPoints);
    points.assign(outline.begin(), outline.end());
    return points;
}

} // namespace

void SelectionOutline::Create(Renderer::LineRenderer& renderer)
{
    std::vector<Vector4> points = MakePoints(1, 1);
    renderer.Create(m_id, points);
    if (Renderer::Line* const line = renderer.Get(m_id))
    {
        line->thickness = s_thickness;
        line->color = Colour;
    }
}

// The line's y counts upward, so its origin is at the lower edge.
void SelectionOutline::ShowRectangle(const RectangleModeData& rectangle, Size window,
                                     Renderer::LineRenderer& renderer) const
{
    Renderer::Line* const line = renderer.Get(m_id);
    if (line == nullptr)
        return;

    const float left = static_cast<float>(rectangle.x) - 1.0F;
    const float bottom = static_cast<float>(window.height - (rectangle.y + rectangle.height)) - 1.0F;
    line->model = Matrix4::Translation(std::max(left, 0.0F), std::max(bottom, 0.0F), s_rectangleDepth);
    std::vector<Vector4> points =
        MakePoints(static_cast<std::uint16_t>(rectangle.width + 2), static_cast<std::uint16_t>(rectangle.height + 2));
    renderer.Update(m_id, points);
}

void SelectionOutline::ShowPolygon(const std::vector<Point>& vertices, Point cursor, Size window,
                                   Renderer::LineRenderer& renderer) const
{
    Renderer::Line* const line = renderer.Get(m_id);
    if (line == nullptr)
        return;

    const auto toLine = [window](const Point& point) {
        return Vector4{static_cast<float>(point.x), static_cast<float>(window.height - point.y), 0.0F, 1.0F};
    };
    std::vector<Vector4> points;
    points.reserve(vertices.size() + 1 + s_addedPoints);
    std::transform(vertices.begin(), vertices.end(), std::back_inserter(points), toLine);
    points.push_back(toLine(cursor));

    line->model = Matrix4::Translation(0.0F, 0.0F, s_polygonDepth);
    line->color = Colour;
    renderer.Update(m_id, points);
}

void SelectionOutline::Hide(Renderer::LineRenderer& renderer) const
{
    if (Renderer::Line* const line = renderer.Get(m_id))
        line->model = Matrix4::Collapse();
}

void SelectionOutline::Remove(Renderer::LineRenderer& renderer)
{
    RemoveObject(renderer, m_id);
}

} // namespace Orvik::Graphics::Tools
