#include "Core/Graphics/Tools/SizeLabel.h"

#include <algorithm>
#include <string>

namespace Orvik::Graphics::Tools
{
namespace
{

/// Between the selection and the text; the outline is in it.
constexpr float s_gap = 4.0F;

/// The line of the text, y downward.
float ChooseBaseline(const ShownSelection& selection, Size window, float letterHeight)
{
    const float descent = GetDescent(letterHeight);
    const auto top = static_cast<float>(selection.area.top);
    if (top - s_gap - descent >= letterHeight)
        return top - s_gap - descent;
    const float below = static_cast<float>(selection.area.bottom) + s_gap + letterHeight;
    if (below + descent <= static_cast<float>(window.height))
        return below;
    return std::min(std::max(top, 0.0F) + s_gap + letterHeight, static_cast<float>(window.height) - descent);
}

} // namespace

void SizeLabel::ShowBeside(const ShownSelection& selection, Size window, float letterHeight,
                           Renderer::Renderer& renderer) const
{
    const std::string size =
        std::to_string(selection.bounds.GetWidth()) + " x " + std::to_string(selection.bounds.GetHeight());
    SetText(size.c_str(), renderer);
    Renderer::TextRenderer& texts = renderer.GetTextRenderer();
    Renderer::Text* const text = texts.Get(GetId());
    if (text == nullptr)
        return;

    const float scale = Renderer::TextRenderer::GetScale(static_cast<std::uint16_t>(letterHeight));
    const float rightmost = static_cast<float>(window.width) - static_cast<float>(text->width) * scale;
    const float left = std::max(std::min(static_cast<float>(selection.area.left), rightmost), 0.0F);
    const float baseline = ChooseBaseline(selection, window, letterHeight);
    Place(left, static_cast<float>(window.height) - baseline, scale, texts);
    SetVisible(true, texts);
}

} // namespace Orvik::Graphics::Tools
