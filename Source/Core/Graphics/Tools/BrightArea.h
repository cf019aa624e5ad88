#pragma once

#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/Graphics/Tools/ShownSelection.h"
#include "Core/System/Multimedia/Bitmap.h"

#include <cstdint>

namespace Orvik::Graphics::Tools
{

/// The inside of the selection that grows, as bright as the capture is. Owns its texture.
class BrightArea
{
public:
    /// Shows the selection's part of the capture; of a polygon what is outside of it stays dimmed. Hides it if the
    /// selection has no area.
    void Show(const ShownSelection& selection, const System::Multimedia::Bitmap& capture, const SnipView& view,
              Renderer::Renderer& renderer);

    /// Removes the texture: the next selection's is of another size.
    void Hide(Renderer::TextureRenderer& renderer);

    [[nodiscard]] std::uint16_t GetId() const { return m_id; }

private:
    std::uint16_t m_id = 0;
    Size m_size = {0, 0}; ///< of the texture
};

} // namespace Orvik::Graphics::Tools
