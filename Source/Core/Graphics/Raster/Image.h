#pragma once

#include "Core/Graphics/Raster/Colour.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace Orvik::Graphics::Raster
{

/// An opaque picture and its reduced sizes. The caller of a size holds it as long as it needs it: another size may be
/// requested meanwhile.
class Image
{
public:
    struct Level
    {
        std::int32_t width = 0;
        std::int32_t height = 0;
        std::vector<PackedColour> pixels; ///< rows from the top; empty at level 0 of an image that borrows its pixels
        const PackedColour* first = nullptr;

        [[nodiscard]] const PackedColour* GetRow(std::int32_t y) const
        {
            return first + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
        }
    };

    /// Replaces size and pixels: `height` rows from the top, without padding, in the order blue, green, red and, with 4
    /// bytes per pixel, one that is ignored. Copies them.
    void Set(std::int32_t width, std::int32_t height, std::size_t bytesPerPixel, const void* pixels);

    /// The same for 4 bytes per pixel, without a copy: the pixels must not change until the next `Set` or `Borrow` or
    /// the end of the image.
    void Borrow(std::int32_t width, std::int32_t height, const void* pixels);

    /// Counts the replacements, so that a changed picture can be recognised.
    [[nodiscard]] std::uint32_t GetVersion() const { return m_version; }
    [[nodiscard]] std::int32_t GetWidth() const { return m_levels.empty() ? 0 : m_levels.front()->width; }
    [[nodiscard]] std::int32_t GetHeight() const { return m_levels.empty() ? 0 : m_levels.front()->height; }

    /// The picture with its sides halved `number` times, made at the first call. The last one is a single pixel; higher
    /// numbers return that. There must be a picture.
    [[nodiscard]] std::shared_ptr<const Level> GetLevel(std::size_t number);

    /// The picture as it is shown evenly on `width` by `height` pixels, of which `columns` and `rows` are whole ones or
    /// the last partial one: filtered to exactly that many pixels if it is reduced, else level 0. There must be a
    /// picture, and at least one pixel.
    [[nodiscard]] std::shared_ptr<const Level> GetSized(std::int32_t columns, std::int32_t rows, float width,
                                                        float height);

    /// The pixel at a place from 0 to 1 in both directions, from the left and from the top; beyond, the nearest one.
    /// There must be a picture.
    [[nodiscard]] PackedColour Sample(float x, float y) const;

private:
    struct Sized
    {
        float width = 0.0F;
        float height = 0.0F;
        std::shared_ptr<const Level> level;
    };

    /// Removes all levels and returns one to fill, with the memory of the first if nothing else holds it.
    [[nodiscard]] std::shared_ptr<Level> Restart();

    std::vector<std::shared_ptr<Level>> m_levels; ///< level 0 alone at first
    Sized m_sized;
    std::uint32_t m_version = 0;
};

} // namespace Orvik::Graphics::Raster
