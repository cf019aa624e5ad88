#pragma once

#include "Core/Graphics/Renderer/Renderer.h"

#include <cstdint>

namespace Orvik::Graphics::Tools
{

/// A text that disappears by itself.
class TimedLabel
{
public:
    /// Shows `text` (zero-terminated) for `duration` nanoseconds, and replaces an earlier one. Returns the text object,
    /// which the caller places, or null.
    Renderer::Text* Show(const char* text, std::int64_t duration, Renderer::Renderer& renderer);

    /// Moves the time on by that many nanoseconds. True in the one call that removes the text.
    bool Tick(std::int64_t elapsed, Renderer::Renderer& renderer);

    /// How long the text stays, in nanoseconds; less than 0 if there is none.
    [[nodiscard]] std::int64_t GetRemaining() const { return m_remaining > 0 ? m_remaining : -1; }

private:
    std::uint16_t m_id = 0;
    std::int64_t m_remaining = 0; ///< nanoseconds
};

} // namespace Orvik::Graphics::Tools
