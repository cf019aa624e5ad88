#include "Core/Graphics/Tools/TimedLabel.h"

namespace Orvik::Graphics::Tools
{

Renderer::Text* TimedLabel::Show(const char* text, std::int64_t duration, Renderer::Renderer& renderer)
{
    Renderer::TextRenderer& texts = renderer.GetTextRenderer();
    if (m_id == 0)
        texts.Create(m_id, text, renderer);
    else
        texts.SetText(m_id, text, renderer);
    m_remaining = duration;
    return texts.Get(m_id);
}

bool TimedLabel::Tick(std::int64_t elapsed, Renderer::Renderer& renderer)
{
    if (m_remaining < 1)
        return false;
    m_remaining -= elapsed;
    if (m_remaining > 0)
        return false;

    if (m_id != 0)
        renderer.GetTextRenderer().Remove(m_id);
    m_id = 0;
    m_remaining = 0;
    return true;
}

} // namespace Orvik::Graphics::Tools
