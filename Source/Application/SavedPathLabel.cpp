#include "Application/SavedPathLabel.h"

#include "Core/Graphics/Tools/DrawableText.h"

#include <algorithm>
#include <cstdint>

namespace Orvik::SnipBench
{
namespace
{

constexpr std::int64_t s_duration = 1'000'000'000; // nanoseconds
/// In pixels, on a screen of 1080 rows; never smaller.
constexpr float s_size = 24.0F;
/// The distance from the bottom, as a part of the screen's height.
constexpr float s_height = 0.15F;
constexpr float s_depth = 1.5F;

/// What is free at each end of a text that has been shortened, pixels.
constexpr float s_margin = 16.0F;

float GetTextScale(const Graphics::Renderer::Renderer& renderer)
{
    const auto size = static_cast<std::uint16_t>(std::max(renderer.GetUiScale() * s_size, s_size));
    return Graphics::Renderer::TextRenderer::GetScale(size);
}

/// The text with three dots in place of its middle: so many characters of it are left.
std::string Shorten(const std::string& text, std::size_t length)
{
    return text.substr(0, (length + 1) / 2) + "..." + text.substr(text.size() - length / 2);
}

} // namespace

void ShowSavedPath(const std::string& shown, Graphics::Tools::TimedLabel& label, Graphics::Renderer::Renderer& renderer)
{
    Graphics::Renderer::Text* const text = label.Show(shown.c_str(), s_duration, renderer);
    if (text == nullptr)
        return;
    const float scale = GetTextScale(renderer);
    const auto& screen = renderer.GetScreenSize();
    const float x = screen.width * 0.5F - static_cast<float>(text->width) * scale * 0.5F;
    text->model = System::Math::Matrix4::ScaleAndTranslation(scale, scale, 0.0F, x, screen.height * s_height, s_depth);
}

void ShowSavedPath(const std::string& path, Graphics::Tools::TimedLabel& label, Graphics::Tools::TextEdge& edge,
                   Graphics::Renderer::Renderer& renderer)
{
    edge.Create("", renderer);
    const float room = (renderer.GetScreenSize().width - 2.0F * s_margin) / GetTextScale(renderer);
    const std::string whole = Graphics::Tools::ToDrawable(path);
    std::string shown = whole;
    Graphics::Renderer::Text* text = label.Show(shown.c_str(), s_duration, renderer);
    for (std::size_t length = whole.size(); text != nullptr && static_cast<float>(text->width) > room && length > 0;)
    {
        shown = Shorten(whole, --length);
        text = label.Show(shown.c_str(), s_duration, renderer);
    }
    ShowSavedPath(shown, label, renderer);
    if (text == nullptr)
        return;
    edge.SetText(shown.c_str(), renderer);
    edge.Surround(*text, renderer.GetTextRenderer());
}

} // namespace Orvik::SnipBench
