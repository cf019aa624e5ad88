#pragma once

#include "Core/Graphics/Raster/ColourScale.h"
#include "Core/Graphics/Raster/Image.h"
#include "Core/Graphics/Raster/Items.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace Orvik::Graphics::Raster
{

/// Gives the colours of a picture's rows.
class PictureShader
{
public:
    /// The item must live as long as the shader.
    explicit PictureShader(const PictureItem& picture);

    [[nodiscard]] bool IsOpaque() const { return m_scale.IsOpaque(); }

    /// Whether two rows of the surface within the picture have the same colours.
    [[nodiscard]] bool AreRowsAlike(std::int32_t first, std::int32_t second) const
    {
        return FindSourceRow(first) == FindSourceRow(second);
    }

    /// Writes the colours from the column `left` to before `right` of the surface's row `y`; all within the picture.
    void ShadeRow(std::int32_t y, std::int32_t left, std::int32_t right, PackedColour* target);

private:
    [[nodiscard]] std::int32_t FindSourceRow(std::int32_t y) const
    {
        const std::int32_t row = y - m_picture.area.top;
        return m_rows.empty() ? row : m_rows[static_cast<std::size_t>(row)];
    }

    const PictureItem& m_picture;
    ColourScale m_scale;
    std::shared_ptr<const Image::Level> m_source;
    std::vector<std::int32_t> m_columns; ///< of the source, for each of the item's; empty if they are the same
    std::vector<std::int32_t> m_rows;
    std::vector<PackedColour> m_shaded; ///< a part of a source's row
};

} // namespace Orvik::Graphics::Raster
