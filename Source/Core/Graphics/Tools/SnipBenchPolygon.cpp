#include "Core/Graphics/Tools/SnipBench.h"

#include "Core/Graphics/Tools/SnipBenchInput.h"
#include "Core/System/Error/Assertion.h"

#include <algorithm>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Math::Matrix4;
using System::Math::Point;
using System::Math::Rectangle;
using System::Math::Vector4;
using System::Tools::ToolContext;

constexpr float s_outlineDepth = 0.2F;
constexpr std::size_t s_minVertices = 3;
/// Squared window pixels around the first vertex within which a click closes: 16 pixels straight.
constexpr std::int64_t s_closingLimit = 257;

} // namespace

void SnipBench::UpdatePolygonMode(ToolContext& context, Renderer::Renderer& renderer)
{
    const bool isSelectRelease = IsSelectInput(context) && !context.pressed;
    switch (m_snipState)
    {
    case SnipState::Inactive:
        break;
    case SnipState::Ready:
        if (isSelectRelease)
        {
            m_polygonModeData.points.push_back({m_cursorX, m_cursorY});
            m_snipState = SnipState::Selecting;
        }
        else if (IsMove(context))
        {
            MoveCursor(ToWindowLocal(context));
            UpdateMagnifier(renderer);
        }
        break;
    case SnipState::Selecting:
        if (isSelectRelease)
        {
            PlaceVertex(renderer);
        }
        else if (IsRightRelease(context))
        {
            RemoveVertex(renderer);
        }
        else if (IsMove(context))
        {
            MoveCursor(ToWindowLocal(context));
            UpdatePolygonOutline(renderer);
            UpdateMagnifier(renderer);
        }
        break;
    }
}

// Ends the polygon or makes it grow. The click that closes is no vertex itself.
void SnipBench::PlaceVertex(Renderer::Renderer& renderer)
{
    if (ClosesPolygon())
    {
        Rectangle bounds = GetPolygonBounds();
        if (HasArea(bounds))
        {
            FinishPolygon(bounds, renderer);
            return;
        }
    }
    m_polygonModeData.points.push_back({m_cursorX, m_cursorY});
}

void SnipBench::RemoveVertex(Renderer::Renderer& renderer)
{
    std::vector<Point>& points = m_polygonModeData.points;
    if (!points.empty())
        points.pop_back();
    if (points.empty())
    {
        ResetPolygonMode(renderer);
        return;
    }
    UpdatePolygonOutline(renderer);
    UpdateMagnifier(renderer);
}

void SnipBench::FinishPolygon(Rectangle& bounds, Renderer::Renderer& renderer)
{
    bool goesOn = false;
    if (onResult)
    {
        std::vector<Point> ring = CloseRing(bounds);
        goesOn = Deliver(bounds, &ring);
    }
    if (goesOn)
        ResetPolygonMode(renderer);
    else
        End(renderer);
}

void SnipBench::ResetPolygonMode(Renderer::Renderer& renderer)
{
    HideSelectionLine(renderer);
    m_polygonModeData.points.clear();
    m_snipState = SnipState::Ready;
}

// The vertices and, as a rubber band, the cursor.
void SnipBench::UpdatePolygonOutline(Renderer::Renderer& renderer)
{
    Renderer::Line* const line = renderer.GetLineRenderer().Get(m_selectionLine);
    if (line == nullptr)
        return;

    const auto toLine = [this](const Point& point) {
        return Vector4{static_cast<float>(point.x), static_cast<float>(m_windowHeight - point.y), 0.0F, 1.0F};
    };
    std::vector<Vector4> points;
    points.reserve(m_polygonModeData.points.size() + 3); // the cursor, and what the line renderer adds at both ends
    std::transform(m_polygonModeData.points.begin(), m_polygonModeData.points.end(), std::back_inserter(points),
                   toLine);
    points.push_back(toLine({m_cursorX, m_cursorY}));

    line->model = Matrix4::Translation(0.0F, 0.0F, s_outlineDepth);
    line->color = SelectionColour;
    renderer.GetLineRenderer().Update(m_selectionLine, points);
}

bool SnipBench::ClosesPolygon() const
{
    const std::vector<Point>& points = m_polygonModeData.points;
    if (points.size() < s_minVertices)
        return false;
    const std::int64_t distanceX = m_cursorX - points.front().x;
    const std::int64_t distanceY = m_cursorY - points.front().y;
    return distanceX * distanceX + distanceY * distanceY < s_closingLimit;
}

Rectangle SnipBench::GetPolygonBounds() const
{
    const std::vector<Point>& points = m_polygonModeData.points;
    const auto [left, right] =
        std::minmax_element(points.begin(), points.end(), [](const Point& a, const Point& b) { return a.x < b.x; });
    const auto [top, bottom] =
        std::minmax_element(points.begin(), points.end(), [](const Point& a, const Point& b) { return a.y < b.y; });
    return {ToCaptureX(left->x), ToCaptureY(top->y), ToCaptureX(right->x), ToCaptureY(bottom->y)};
}

std::vector<Point> SnipBench::CloseRing(const Rectangle& bounds)
{
    ORVIK_ASSERT(!m_polygonModeData.points.empty(), "Points should not be empty");
    if (m_polygonModeData.points.empty())
        return {};

    m_polygonModeData.points.push_back(Point(m_polygonModeData.points.front()));
    std::vector<Point> ring;
    ring.reserve(m_polygonModeData.points.size());
    for (const Point& point : m_polygonModeData.points)
        ring.push_back({ToCaptureX(point.x) - bounds.left, ToCaptureY(point.y) - bounds.top});
    return ring;
}

} // namespace Orvik::Graphics::Tools
