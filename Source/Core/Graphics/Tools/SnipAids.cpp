#include "Core/Graphics/Tools/SnipAids.h"

#include <algorithm>
#include <utility>

namespace Orvik::Graphics::Tools
{

using System::Math::Vector4;

void SnipAids::Begin(ToolSwitches switches, const SnipView& view, Renderer::Renderer& renderer)
{
    End(renderer);
    m_switches = std::move(switches);
    if (m_switches.contrast)
    {
        m_frame.Create(view, renderer.GetLineRenderer());
        m_closingMark.Create(renderer.GetLineRenderer());
        m_sizeLabel.CreateEdge(renderer);
        m_labels.CreateEdge(renderer);
    }
    if (m_switches.size)
    {
        m_sizeLabel.Create("", renderer);
        m_sizeLabel.Hide(renderer.GetTextRenderer());
    }
    m_labels.Begin(m_switches.labels, m_switches.hints, renderer);
}

void SnipAids::FollowMagnifier(const MagnifierPlace& place, Size magnifier, Size window, Renderer::Renderer& renderer)
{
    Renderer::TextRenderer& texts = renderer.GetTextRenderer();
    m_letterHeight = GetLabelHeight(place.margin);
    const float scale = Renderer::TextRenderer::GetScale(static_cast<std::uint16_t>(m_letterHeight));
    const auto bottom = static_cast<float>(window.height - place.top - magnifier.height);
    m_sizeLabel.Place(place.left, bottom - m_letterHeight, scale, texts);
    const float line = std::max(bottom - m_letterHeight, GetDescent(m_letterHeight));
    m_labels.Place(place.left, line, scale, window, texts);
}

void SnipAids::ShowSelection(const ShownSelection& selection, const System::Multimedia::Bitmap& capture,
                             const SnipView& view, Renderer::Renderer& renderer)
{
    if (m_switches.size)
        m_sizeLabel.ShowBeside(selection, view.window, m_letterHeight, renderer);
    if (m_switches.bright)
        m_brightArea.Show(selection, capture, view, renderer);
}

void SnipAids::FollowPolygon(const std::vector<System::Math::Point>& vertices, System::Math::Point cursor,
                             const SnipView& view, Renderer::Renderer& renderer)
{
    if (!m_switches.contrast)
        return;
    if (ClosesPolygon(view, vertices, cursor))
        m_closingMark.Show(vertices.front(), view.window, renderer.GetLineRenderer());
    else
        m_closingMark.Hide(renderer.GetLineRenderer());
}

void SnipAids::HideSelection(Renderer::Renderer& renderer)
{
    if (m_switches.size)
        m_sizeLabel.Hide(renderer.GetTextRenderer());
    m_brightArea.Hide(renderer.GetTextureRenderer());
}

void SnipAids::Keep(const ShownSelection& selection, Size window, const Vector4& plainColour,
                    Renderer::Renderer& renderer)
{
    if (!m_switches.marks)
        return;
    const Vector4 colour = m_labels.GetName() != nullptr ? m_labels.GetColour() : plainColour;
    m_marks.Add(selection, colour, window, renderer.GetLineRenderer());
}

void SnipAids::TakeBack(Renderer::Renderer& renderer)
{
    m_marks.RemoveLast(renderer.GetLineRenderer());
}

void SnipAids::End(Renderer::Renderer& renderer)
{
    m_brightArea.Hide(renderer.GetTextureRenderer());
    m_marks.Clear(renderer.GetLineRenderer());
    m_frame.Remove(renderer.GetLineRenderer());
    m_closingMark.Remove(renderer.GetLineRenderer());
    m_sizeLabel.Remove(renderer.GetTextRenderer());
    m_labels.Remove(renderer.GetTextRenderer());
}

} // namespace Orvik::Graphics::Tools
