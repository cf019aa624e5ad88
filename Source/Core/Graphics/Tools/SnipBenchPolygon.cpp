#include "Core/Graphics/Tools/SnipBench.h"

#include "Core/Graphics/Tools/SnipBenchInput.h"
#include "Core/System/Error/Assertion.h"

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Math::Point;
using System::Math::Rectangle;
using System::Tools::ToolContext;

} // namespace

void SnipBench::UpdatePolygonMode(ToolContext& context, Renderer::Renderer& renderer)
{
    AdvancePolygon(context, renderer);
    m_aids.FollowPolygon(m_polygonModeData.points, GetCursor(), GetView(), renderer);
}

void SnipBench::AdvancePolygon(const ToolContext& context, Renderer::Renderer& renderer)
{
    const bool isSelectRelease = IsSelectInput(context) && !context.pressed;
    switch (m_snipState)
    {
    case SnipState::Inactive:
        break;
    case SnipState::Ready:
        if (isSelectRelease)
        {
            m_polygonModeData.points.push_back(GetCursor());
            m_snipState = SnipState::Selecting;
        }
        else if (const std::optional<Point> position = FindMove(context))
        {
            MoveCursor(*position);
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
        else if (const std::optional<Point> position = FindMove(context))
        {
            MoveCursor(*position);
            m_selectionLine.ShowPolygon(m_polygonModeData.points, GetCursor(), GetWindowSize(),
                                        renderer.GetLineRenderer());
            UpdateMagnifier(renderer);
            ShowSelectionAids(renderer);
        }
        break;
    }
}

// Closes the polygon or adds a vertex. The click that closes it adds none.
void SnipBench::PlaceVertex(Renderer::Renderer& renderer)
{
    if (!ClosesPolygon(GetView(), m_polygonModeData.points, GetCursor()))
    {
        m_polygonModeData.points.push_back(GetCursor());
        return;
    }
    Rectangle bounds = GetPolygonBounds(GetView(), m_polygonModeData.points);
    FinishPolygon(bounds, renderer);
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
    m_selectionLine.ShowPolygon(points, GetCursor(), GetWindowSize(), renderer.GetLineRenderer());
    UpdateMagnifier(renderer);
    ShowSelectionAids(renderer);
}

void SnipBench::FinishPolygon(Rectangle& bounds, Renderer::Renderer& renderer)
{
    bool goesOn = false;
    if (onResult)
    {
        std::vector<Point> ring = CloseRing(bounds);
        goesOn = Deliver(bounds, &ring, renderer);
    }
    if (goesOn)
        ResetPolygonMode(renderer);
    else
        End(renderer);
}

void SnipBench::ResetPolygonMode(Renderer::Renderer& renderer)
{
    m_selectionLine.Hide(renderer.GetLineRenderer());
    m_aids.HideSelection(renderer);
    m_polygonModeData.points.clear();
    m_snipState = SnipState::Ready;
}

std::vector<Point> SnipBench::CloseRing(const Rectangle& bounds)
{
    ORVIK_ASSERT(!m_polygonModeData.points.empty(), "Points should not be empty");
    if (m_polygonModeData.points.empty())
        return {};

    m_polygonModeData.points.push_back(Point(m_polygonModeData.points.front()));
    return ToRing(GetView(), m_polygonModeData.points, bounds);
}

} // namespace Orvik::Graphics::Tools
