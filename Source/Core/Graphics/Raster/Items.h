#pragma once

#include "Core/Graphics/Raster/Colour.h"
#include "Core/Graphics/Raster/Glyph.h"
#include "Core/Graphics/Raster/Image.h"
#include "Core/Graphics/Raster/PixelArea.h"
#include "Core/System/Types/Matrix4.h"

#include <array>
#include <cstdint>
#include <memory>
#include <variant>
#include <vector>

namespace Orvik::Graphics::Raster
{

/// The distance from the viewer, in the 24 bits of a depth buffer. A pixel is painted if it is nearer than the old one.
using Depth = std::uint32_t;
inline constexpr Depth s_farthest = 0xFFFFFF;

/// What changes along a line: the opacity, and whether there is a dash or a gap.
struct LineLook
{
    System::Math::Vector4 colour;
    float dashLength = 1.0F; ///< pixels
    float gapLength = 0.0F;  ///< 0 makes a solid line

    bool operator==(const LineLook&) const = default;
};

/// A value that changes linearly over the surface: `atOrigin` plus `perColumn` and `perRow` for each pixel, taken at
/// the centres of the pixels.
struct Slope
{
    float atOrigin = 0.0F;
    float perColumn = 0.0F;
    float perRow = 0.0F;

    bool operator==(const Slope&) const = default;

    /// The value in the centre of a pixel.
    [[nodiscard]] float At(std::int32_t x, std::int32_t y) const
    {
        return atOrigin + (static_cast<float>(x) + 0.5F) * perColumn + (static_cast<float>(y) + 0.5F) * perRow;
    }
};

/// An upright segment of a line: whole pixels.
struct BarItem
{
    PixelArea area;
    Depth depth = 0;
    LineLook look;
    Slope opacity;
    Slope distance; ///< from the line's beginning, in pixels

    bool operator==(const BarItem&) const = default;
};

/// An upright picture on whole pixels. Its columns and rows are spread evenly over a width and height that may end
/// within a pixel.
struct PictureItem
{
    PixelArea area;
    Depth depth = 0;
    System::Math::Vector4 colour; ///< multiplies the picture's
    float width = 0.0F;           ///< pixels of the surface, from the area's left edge
    float height = 0.0F;
    std::shared_ptr<Image> image;
    std::uint32_t version = 0; ///< of the image, when the item was made

    bool operator==(const PictureItem&) const = default;
};

/// Any triangle, painted with four samples per pixel.
struct TriangleItem
{
    struct Corner
    {
        float x = 0.0F; ///< pixels of the surface, y downward
        float y = 0.0F;
        Depth depth = 0;
        System::Math::Vector4 values; ///< a colour; or opacity and distance; or the place in a picture, from 0 to 1

        bool operator==(const Corner&) const = default;
    };

    enum class Look : std::uint8_t
    {
        Colour,  ///< `values` are the colour
        Line,    ///< `values` are opacity and distance from the line's beginning
        Picture, ///< `values` are the place in `image`
    };

    PixelArea area;
    std::array<Corner, 3> corners;
    Look kind = Look::Colour;
    LineLook look; ///< of a line; its colour also multiplies a picture's
    std::shared_ptr<Image> image;
    std::uint32_t version = 0;

    bool operator==(const TriangleItem&) const = default;
};

/// A glyph on the surface. `column` and `row` give the place in its bitmap for each pixel of the surface.
struct GlyphPlace
{
    const Glyph* glyph = nullptr;
    PixelArea area;
    Slope column;
    Slope row;

    bool operator==(const GlyphPlace&) const = default;
};

/// A string, painted over everything that has a depth.
struct TextItem
{
    PixelArea area;
    System::Math::Vector4 colour;
    std::vector<GlyphPlace> glyphs;

    bool operator==(const TextItem&) const = default;
};

using Item = std::variant<BarItem, PictureItem, TriangleItem, TextItem>;

[[nodiscard]] inline const PixelArea& GetArea(const Item& item)
{
    return std::visit([](const auto& kind) -> const PixelArea& { return kind.area; }, item);
}

/// The depth of an item that has only one; farther than the farthest for items with none or several.
[[nodiscard]] inline Depth GetDepth(const Item& item)
{
    if (const auto* const bar = std::get_if<BarItem>(&item))
        return bar->depth;
    const auto* const picture = std::get_if<PictureItem>(&item);
    return picture != nullptr ? picture->depth : s_farthest + 1;
}

} // namespace Orvik::Graphics::Raster
