#include "Core/Graphics/Tools/SnipBench.h"

#include "Core/Graphics/Tools/SnipBenchInput.h"

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Desktop::KeyCode;
using System::Math::Point;
using System::Math::Rectangle;
using System::Tools::ToolContext;

constexpr unsigned s_controlBit = 1;

} // namespace

void SnipBench::UpdateRectangleMode(ToolContext& context, Renderer::Renderer& renderer)
{
    switch (m_snipState)
    {
    case SnipState::Inactive:
        break;
    case SnipState::Ready:
        UpdateReadyRectangle(context, renderer);
        break;
    case SnipState::Selecting:
        if (const std::optional<Point> position = FindMove(context))
            DragRectangle(*position, renderer);
        else if (IsSelectInput(context) && !context.pressed)
            FinishRectangle(renderer);
        else if (IsRightRelease(context))
            ResetRectangleMode(renderer);
        break;
    }
}

void SnipBench::UpdateReadyRectangle(const ToolContext& context, Renderer::Renderer& renderer)
{
    if (IsSelectInput(context) && context.pressed)
    {
        m_rectangleModeData = {};
        m_rectangleModeData.anchorX = static_cast<std::uint16_t>(m_cursorX);
        m_rectangleModeData.anchorY = static_cast<std::uint16_t>(m_cursorY);
        m_snipState = SnipState::Selecting;
    }
    else if (IsKey(context, KeyCode::LeftControl))
    {
        const unsigned flag = context.pressed ? m_controlFlag | s_controlBit : m_controlFlag ^ s_controlBit;
        m_controlFlag = static_cast<std::uint8_t>(flag);
    }
    else if (const std::optional<Point> position = FindMove(context))
    {
        MoveCursor(*position);
        UpdateMagnifier(renderer);
    }
}

void SnipBench::DragRectangle(Point position, Renderer::Renderer& renderer)
{
    MoveCursor(position);
    if (m_selectionLine.Exists(renderer.GetLineRenderer()))
    {
        GrowRectangle(m_rectangleModeData, GetCursor());
        m_selectionLine.ShowRectangle(m_rectangleModeData, GetWindowSize(), renderer.GetLineRenderer());
    }
    UpdateMagnifier(renderer);
    ShowSelectionAids(renderer);
}

void SnipBench::FinishRectangle(Renderer::Renderer& renderer)
{
    Rectangle bounds = GetRectangleBounds(GetView(), m_rectangleModeData);
    if (!HasArea(bounds))
        return;
    if (onResult && Deliver(bounds, nullptr, renderer))
        ResetRectangleMode(renderer);
    else
        End(renderer);
}

void SnipBench::ResetRectangleMode(Renderer::Renderer& renderer)
{
    m_selectionLine.Hide(renderer.GetLineRenderer());
    m_aids.HideSelection(renderer);
    m_rectangleModeData = {};
    m_snipState = SnipState::Ready;
}

} // namespace Orvik::Graphics::Tools
