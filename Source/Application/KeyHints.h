#pragma once

#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/Graphics/Tools/TextEdge.h"
#include "Core/Graphics/Tools/ToolSwitches.h"

#include <cstdint>
#include <string>

namespace Orvik::SnipBench
{

/// The keys that have an effect, in one line.
[[nodiscard]] std::string MakeKeyHints(const Graphics::Tools::ToolSwitches& switches);

/// The line with the keys at the screen's lower edge: for a time at first, and while a key is held. Its text isn't
/// removed before the renderer ends, only hidden: removing would change the order in which later texts are drawn.
class KeyHints
{
public:
    /// Shows `text` for `duration` nanoseconds. A text wider than the screen is drawn smaller.
    void Begin(const std::string& text, std::int64_t duration, bool hasEdge, Graphics::Renderer::Renderer& renderer);

    /// Shows the text while the key is held. Does nothing before `Begin`.
    void SetHeld(bool isHeld, Graphics::Renderer::Renderer& renderer);

    /// Moves the time on by that many nanoseconds.
    void Tick(std::int64_t elapsed, Graphics::Renderer::Renderer& renderer);

    /// How long the first time still lasts, in nanoseconds; less than 0 if it is over.
    [[nodiscard]] std::int64_t GetRemaining() const { return m_remaining > 0 ? m_remaining : -1; }

    [[nodiscard]] std::uint16_t GetId() const { return m_id; }

private:
    void UpdateVisibility(Graphics::Renderer::TextRenderer& renderer) const;

    std::uint16_t m_id = 0;
    Graphics::Tools::TextEdge m_edge;
    std::int64_t m_remaining = 0; ///< nanoseconds
    bool m_isHeld = false;
};

} // namespace Orvik::SnipBench
