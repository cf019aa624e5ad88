#include "Application/KeyHints.h"

#include <algorithm>

namespace Orvik::SnipBench
{
namespace
{

/// In pixels, on a screen of 1080 rows; never larger than that part of the screen's width allows.
constexpr float s_hintSize = 20.0F;
constexpr float s_greatestWidth = 0.98F;
/// The distance of the letters from the lower edge, as a part of their height.
constexpr float s_distance = 0.5F;
constexpr float s_hintDepth = 1.5F;

} // namespace

std::string MakeKeyHints(const Graphics::Tools::ToolSwitches& switches)
{
    std::string text = "Left button, Space: select    Right button: back    Arrows: move    + -: zoom";
    if (switches.toggle)
        text += "    Tab: rectangle, polygon";
    if (!switches.labels.empty())
        text += "    1 to 9, 0, F2 on: label";
    if (switches.undo)
        text += "    Backspace: take back";
    return text + "    Esc: end    F1: this line";
}

void KeyHints::Begin(const std::string& text, std::int64_t duration, bool hasEdge,
                     Graphics::Renderer::Renderer& renderer)
{
    Graphics::Renderer::TextRenderer& texts = renderer.GetTextRenderer();
    if (hasEdge)
        m_edge.Create(text.c_str(), renderer);
    if (m_id == 0)
        texts.Create(m_id, text.c_str(), renderer);
    m_remaining = duration;
    Graphics::Renderer::Text* const object = texts.Get(m_id);
    if (object == nullptr)
        return;
    const auto& screen = renderer.GetScreenSize();
    const auto width = static_cast<float>(std::max<std::int64_t>(object->width, 1));
    const float size = renderer.GetUiScale() * s_hintSize;
    const float scale = std::min(Graphics::Renderer::TextRenderer::GetScale(static_cast<std::uint16_t>(size)),
                                 screen.width * s_greatestWidth / width);
    const float left = (screen.width - width * scale) * 0.5F;
    object->model =
        System::Math::Matrix4::ScaleAndTranslation(scale, scale, 0.0F, left, size * s_distance, s_hintDepth);
    UpdateVisibility(texts);
}

void KeyHints::SetHeld(bool isHeld, Graphics::Renderer::Renderer& renderer)
{
    m_isHeld = isHeld;
    UpdateVisibility(renderer.GetTextRenderer());
}

void KeyHints::Tick(std::int64_t elapsed, Graphics::Renderer::Renderer& renderer)
{
    if (m_remaining <= 0)
        return;
    m_remaining -= elapsed;
    UpdateVisibility(renderer.GetTextRenderer());
}

void KeyHints::UpdateVisibility(Graphics::Renderer::TextRenderer& renderer) const
{
    Graphics::Renderer::Text* const text = renderer.Get(m_id);
    if (text == nullptr)
        return;
    text->visible = m_isHeld || m_remaining > 0;
    m_edge.Surround(*text, renderer);
}

} // namespace Orvik::SnipBench
