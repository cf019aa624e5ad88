#pragma once

#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/Graphics/Tools/SnipGeometry.h"
#include "Core/System/Multimedia/Bitmap.h"

#include <cstdint>

namespace Orvik::Graphics::Tools
{

/// The whole capture, dimmed, below everything else. Owns its texture.
class ShownCapture
{
public:
    /// Shows the capture in the middle of the window. Its pixels are borrowed until `Remove` or the next capture. False
    /// if there is no texture afterwards.
    bool Update(const System::Multimedia::Bitmap& capture, const SnipView& view, Renderer::Renderer& renderer);

    void Remove(Renderer::TextureRenderer& renderer);

    [[nodiscard]] std::uint16_t GetId() const { return m_id; }

private:
    std::uint16_t m_id = 0;
};

} // namespace Orvik::Graphics::Tools
