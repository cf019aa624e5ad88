#include "Core/Graphics/Tools/SnipBench.h"

#include "Core/Graphics/Tools/SnipBenchInput.h"
#include "Core/Graphics/Tools/Truncate.h"

#include <algorithm>
#include <cstdlib>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Desktop::KeyCode;
using System::Math::Matrix4;
using System::Math::Rectangle;
using System::Math::Vector4;
using System::Tools::ToolContext;

constexpr float s_outlineThickness = 1.0F;
constexpr float s_outlineDepth = 2.0F;
constexpr unsigned s_controlBit = 1;

// The line renderer keeps the memory of the points and adds one at each end.
std::vector<Vector4> MakeOutlinePoints(std::uint16_t width, std::uint16_t height)
{
    const std::array<Vector4, 5> outline = MakeRectangleOutline(width, height, s_outlineThickness);
    std::vector<Vector4> points;
    points.reserve(outline.size() + 2);
    points.assign(outline.begin(), outline.end());
    return points;
}

} // namespace

std::array<Vector4, 5> MakeRectangleOutline(std::uint16_t width, std::uint16_t height, float thickness)
{
    const float half = thickness * 0.5F;
    const float right = static_cast<float>(width) - half;
    const float top = static_cast<float>(height) - half;
    return {{{right, half, 0.0F, 1.0F},
             {half, half, 0.0F, 1.0F},
             {half, top, 0.0F, 1.0F},
             {right, top, 0.0F, 1.0F},
             {right, half, 0.0F, 1.0F}}};
}

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
        if (IsMove(context))
            GrowRectangle(context, renderer);
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
        StartRectangle();
    }
    else if (IsKey(context, KeyCode::LeftControl))
    {
        const unsigned flag = context.pressed ? m_controlFlag | s_controlBit : m_controlFlag ^ s_controlBit;
        m_controlFlag = static_cast<std::uint8_t>(flag);
    }
    else if (IsMove(context))
    {
        MoveCursor(ToWindowLocal(context));
        UpdateMagnifier(renderer);
    }
}

void SnipBench::StartRectangle()
{
    m_rectangleModeData = {};
    m_rectangleModeData.anchorX = static_cast<std::uint16_t>(m_cursorX);
    m_rectangleModeData.anchorY = static_cast<std::uint16_t>(m_cursorY);
    m_snipState = SnipState::Selecting;
}

void SnipBench::GrowRectangle(const ToolContext& context, Renderer::Renderer& renderer)
{
    MoveCursor(ToWindowLocal(context));
    if (Renderer::Line* const line = renderer.GetLineRenderer().Get(m_selectionLine))
    {
        RectangleModeData& data = m_rectangleModeData;
        const auto cursorX = static_cast<std::uint16_t>(m_cursorX);
        const auto cursorY = static_cast<std::uint16_t>(m_cursorY);
        data.x = std::min(data.anchorX, cursorX);
        data.y = std::min(data.anchorY, cursorY);
        data.width = static_cast<std::uint16_t>(std::abs(data.anchorX - cursorX));
        data.height = static_cast<std::uint16_t>(std::abs(data.anchorY - cursorY));

        // One pixel outside of the selection on each side. The line's y counts upward, so its origin is the lower edge.
        const float left = static_cast<float>(data.x) - 1.0F;
        const float bottom = static_cast<float>(m_windowHeight - std::max(data.anchorY, cursorY)) - 1.0F;
        line->model = Matrix4::Translation(std::max(left, 0.0F), std::max(bottom, 0.0F), s_outlineDepth);
        std::vector<Vector4> points =
            MakeOutlinePoints(static_cast<std::uint16_t>(data.width + 2), static_cast<std::uint16_t>(data.height + 2));
        renderer.GetLineRenderer().Update(m_selectionLine, points);
    }
    UpdateMagnifier(renderer);
}

void SnipBench::FinishRectangle(Renderer::Renderer& renderer)
{
    Rectangle bounds = GetRectangleBounds();
    if (!HasArea(bounds))
        return;
    if (onResult && Deliver(bounds, nullptr))
        ResetRectangleMode(renderer);
    else
        End(renderer);
}

void SnipBench::ResetRectangleMode(Renderer::Renderer& renderer)
{
    HideSelectionLine(renderer);
    m_rectangleModeData = {};
    m_snipState = SnipState::Ready;
}

Rectangle SnipBench::GetRectangleBounds() const
{
    const RectangleModeData& data = m_rectangleModeData;
    const std::int32_t left = ToCaptureX(data.x);
    const std::int32_t top = ToCaptureY(data.y);
    const float width = data.width;
    const float height = data.height;
    return {left, top, left + Truncate(width / m_displayScale), top + Truncate(height / m_displayScale)};
}

void SnipBench::CreateSelectionLine(Renderer::Renderer& renderer)
{
    std::vector<Vector4> points = MakeOutlinePoints(1, 1);
    renderer.GetLineRenderer().Create(m_selectionLine, points);
    if (Renderer::Line* const line = renderer.GetLineRenderer().Get(m_selectionLine))
    {
        line->thickness = s_outlineThickness;
        line->color = SelectionColour;
    }
}

void SnipBench::RemoveSelectionLine(Renderer::Renderer& renderer)
{
    if (m_selectionLine == 0)
        return;
    renderer.GetLineRenderer().Remove(m_selectionLine);
    m_selectionLine = 0;
}

void SnipBench::HideSelectionLine(Renderer::Renderer& renderer) const
{
    if (Renderer::Line* const line = renderer.GetLineRenderer().Get(m_selectionLine))
        line->model = Matrix4::Collapse();
}

} // namespace Orvik::Graphics::Tools
