#include "Core/Graphics/Tools/LabelChoice.h"

#include "Core/Graphics/Tools/DrawableText.h"
#include "Core/System/Desktop/KeyCode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Desktop::KeyCode;
using System::Math::Vector4;

constexpr std::array<KeyCode, 10> s_digits = {KeyCode::Digit1, KeyCode::Digit2, KeyCode::Digit3, KeyCode::Digit4,
                                              KeyCode::Digit5, KeyCode::Digit6, KeyCode::Digit7, KeyCode::Digit8,
                                              KeyCode::Digit9, KeyCode::Digit0};
constexpr std::array<KeyCode, 24> s_functionKeys = {
    KeyCode::F1,  KeyCode::F2,  KeyCode::F3,  KeyCode::F4,  KeyCode::F5,  KeyCode::F6,  KeyCode::F7,  KeyCode::F8,
    KeyCode::F9,  KeyCode::F10, KeyCode::F11, KeyCode::F12, KeyCode::F13, KeyCode::F14, KeyCode::F15, KeyCode::F16,
    KeyCode::F17, KeyCode::F18, KeyCode::F19, KeyCode::F20, KeyCode::F21, KeyCode::F22, KeyCode::F23, KeyCode::F24};

template <std::size_t Count>
std::optional<std::size_t> FindKey(const std::array<KeyCode, Count>& keys, std::uint8_t key)
{
    const auto found = std::find(keys.begin(), keys.end(), static_cast<KeyCode>(key));
    return found != keys.end() ? std::optional(static_cast<std::size_t>(found - keys.begin())) : std::nullopt;
}

/// The place in the list that a key stands for.
std::optional<std::size_t> FindPlace(std::uint8_t key, bool keepsF1)
{
    if (const std::optional<std::size_t> digit = FindKey(s_digits, key))
        return digit;
    const std::optional<std::size_t> function = FindKey(s_functionKeys, key);
    const std::size_t first = keepsF1 ? 1 : 0;
    if (!function || *function < first)
        return std::nullopt;
    return s_digits.size() + *function - first;
}

} // namespace

// Neighbours in the list are far from each other on the circle of hues, of which no two are the same.
Vector4 GetLabelColour(std::size_t place)
{
    constexpr std::size_t circle = 360; // degrees
    constexpr std::size_t firstHue = 40;
    constexpr std::size_t hueStep = 137;
    constexpr float saturation = 0.75F;
    const auto hue = static_cast<float>((firstHue + place * hueStep) % circle);
    const auto getChannel = [hue](float shift)
    {
        const float position = std::fmod(shift + hue / 60.0F, 6.0F);
        return 1.0F - saturation * std::clamp(std::min(position, 4.0F - position), 0.0F, 1.0F);
    };
    return {getChannel(5.0F), getChannel(3.0F), getChannel(1.0F), 1.0F};
}

void LabelChoice::Begin(std::vector<std::string> names, bool keepsF1, Renderer::Renderer& renderer)
{
    m_names = std::move(names);
    m_current = 0;
    m_keepsF1 = keepsF1;
    if (m_names.empty())
        return;
    m_text.Create("", renderer);
    ShowName(renderer);
}

void LabelChoice::Choose(std::uint8_t key, Renderer::Renderer& renderer)
{
    std::size_t place = m_current;
    if (key == static_cast<std::uint8_t>(KeyCode::PageDown))
        place = m_current + 1;
    else if (key == static_cast<std::uint8_t>(KeyCode::PageUp))
        place = m_current - 1; // beyond the list if there is none before
    else
        place = FindPlace(key, m_keepsF1).value_or(m_current);
    if (place >= m_names.size() || place == m_current)
        return;
    m_current = place;
    ShowName(renderer);
}

void LabelChoice::Place(float left, float y, float scale, Size window, Renderer::TextRenderer& renderer) const
{
    Renderer::Text* const text = renderer.Get(m_text.GetId());
    if (text == nullptr)
        return;
    const float rightmost = static_cast<float>(window.width) - static_cast<float>(text->width) * scale;
    m_text.Place(std::max(std::min(left, rightmost), 0.0F), y, scale, renderer);
    text->color = GetColour();
}

void LabelChoice::ShowName(Renderer::Renderer& renderer) const
{
    m_text.SetText(ToDrawable(m_names[m_current]).c_str(), renderer);
    if (Renderer::Text* const text = renderer.GetTextRenderer().Get(m_text.GetId()))
        text->color = GetColour();
}

} // namespace Orvik::Graphics::Tools
