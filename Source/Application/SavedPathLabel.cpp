#include "Application/SavedPathLabel.h"

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

} // namespace

void ShowSavedPath(const std::string& shown, Graphics::Tools::TimedLabel& label, Graphics::Renderer::Renderer& renderer)
{
    Graphics::Renderer::Text* const text = label.Show(shown.c_str(), s_duration, renderer);
    if (text == nullptr)
        return;
    const auto size = static_cast<std::uint16_t>(std::max(renderer.GetUiScale() * s_size, s_size));
    const float scale = Graphics::Renderer::TextRenderer::GetScale(size);
    const auto& screen = renderer.GetScreenSize();
    const float x = screen.width * 0.5F - static_cast<float>(text->width) * scale * 0.5F;
    text->model = System::Math::Matrix4::ScaleAndTranslation(scale, scale, 0.0F, x, screen.height * s_height, s_depth);
}

} // namespace Orvik::SnipBench
