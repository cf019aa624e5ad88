#pragma once

#include "Core/Graphics/Tools/Magnifier.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvik::Graphics::Tools
{

/// The colour of a label by its place in the list: 36 hues, all bright.
[[nodiscard]] System::Math::Vector4 GetLabelColour(std::size_t place);

/// Which label the next selection gets, shown beside the magnifier. Owns its text object.
class LabelChoice
{
public:
    /// Gives the text a dark edge. Before `Begin`.
    void CreateEdge(Renderer::Renderer& renderer) { m_text.CreateEdge(renderer); }

    /// Begins with the first of the names, UTF-8. Without names there is no label and nothing is shown. `keepsF1` means
    /// that the function keys begin with F2.
    void Begin(std::vector<std::string> names, bool keepsF1, Renderer::Renderer& renderer);

    /// Chooses by a key: 1 to 9, 0, then the function keys, one after the other; Page Up and Page Down choose the one
    /// before and the one after. Other keys do nothing.
    void Choose(std::uint8_t key, Renderer::Renderer& renderer);

    /// Moves the text's lower left corner to a place; y counts upward. It stays within a window of that width, if it is
    /// shorter.
    void Place(float left, float y, float scale, Size window, Renderer::TextRenderer& renderer) const;

    void Remove(Renderer::TextRenderer& renderer) { m_text.Remove(renderer); }

    /// The chosen name; null if there are none. Valid until the next `Begin`.
    [[nodiscard]] const std::string* GetName() const { return m_names.empty() ? nullptr : &m_names[m_current]; }
    [[nodiscard]] System::Math::Vector4 GetColour() const { return GetLabelColour(m_current); }
    [[nodiscard]] std::uint16_t GetId() const { return m_text.GetId(); }

private:
    void ShowName(Renderer::Renderer& renderer) const;

    std::vector<std::string> m_names;
    std::size_t m_current = 0;
    bool m_keepsF1 = false;
    MagnifierLabel m_text;
};

} // namespace Orvik::Graphics::Tools
