#pragma once

#include "Core/Graphics/Raster/Colour.h"
#include "Core/Graphics/Raster/PixelArea.h"

#include <cstddef>
#include <cstdint>

namespace Orvik::Graphics::Raster
{

/// The memory of a surface: rows from the top.
struct SurfaceMemory
{
    PackedColour* pixels = nullptr;
    std::size_t stride = 0; ///< pixels from one row to the next
    std::int32_t width = 0;
    std::int32_t height = 0;

    [[nodiscard]] PackedColour* GetPixel(std::int32_t x, std::int32_t y) const
    {
        return pixels + static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(x);
    }
};

} // namespace Orvik::Graphics::Raster
