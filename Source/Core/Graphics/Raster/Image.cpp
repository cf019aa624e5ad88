#include "Core/Graphics/Raster/Image.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace Orvik::Graphics::Raster
{
namespace
{

constexpr std::size_t s_packedBytes = 4;

PackedColour ReadPixel(const std::uint8_t* bytes)
{
    return std::uint32_t{s_channelMask} << s_alphaShift | std::uint32_t{bytes[2]} << s_redShift |
           std::uint32_t{bytes[1]} << s_greenShift | bytes[0];
}

/// Where a reduced pixel's centre is in the larger picture: the two pixels around it, and how near it is to the second.
struct Neighbours
{
    std::size_t first = 0;
    std::size_t second = 0;
    std::uint32_t share = 0; ///< of the second, in 256ths
};

/// `index` is a pixel of a picture that has `size` pixels, whole and partial, instead of `largerSize`.
Neighbours FindNeighbours(std::int32_t index, float size, std::int32_t largerSize)
{
    const float larger = static_cast<float>(largerSize);
    // The last, partial pixel shows only what exists.
    const float centre = std::min(static_cast<float>(index) + 0.5F, size - 0.5F);
    const float position = std::max(centre, 0.0F) * larger / size - 0.5F;
    const float whole = std::floor(position);
    const auto first = static_cast<std::int32_t>(whole);
    // Repeats the picture beyond its edge, like OpenGL.
    const auto wrap = [largerSize](std::int32_t value)
    { return static_cast<std::size_t>((value % largerSize + largerSize) % largerSize); };
    return {wrap(first), wrap(first + 1), static_cast<std::uint32_t>(std::lrint((position - whole) * 256.0F))};
}

std::vector<Neighbours> FindAllNeighbours(std::int32_t count, float size, std::int32_t largerSize)
{
    std::vector<Neighbours> all;
    all.reserve(static_cast<std::size_t>(count));
    for (std::int32_t index = 0; index < count; ++index)
        all.push_back(FindNeighbours(index, size, largerSize));
    return all;
}

PackedColour MixFour(const PackedColour* upper, const PackedColour* lower, const Neighbours& column,
                     std::uint32_t lowerShare)
{
    constexpr std::uint32_t whole = 256;
    constexpr std::uint32_t half = whole * whole / 2;
    PackedColour mixed = 0;
    for (unsigned shift = 0; shift < 32; shift += 8)
    {
        const auto channel = [shift](PackedColour colour) { return colour >> shift & s_channelMask; };
        const std::uint32_t above =
            channel(upper[column.first]) * (whole - column.share) + channel(upper[column.second]) * column.share;
        const std::uint32_t below =
            channel(lower[column.first]) * (whole - column.share) + channel(lower[column.second]) * column.share;
        mixed |= (above * (whole - lowerShare) + below * lowerShare + half) / (whole * whole) << shift;
    }
    return mixed;
}

/// Reduces a larger picture, spread evenly over `width` by `height`, to `columns` by `rows` pixels.
std::shared_ptr<Image::Level> Reduce(const Image::Level& larger, std::int32_t columns, std::int32_t rows, float width,
                                     float height)
{
    auto level = std::make_shared<Image::Level>(Image::Level{columns, rows, {}, nullptr});
    level->pixels.reserve(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
    const std::vector<Neighbours> allColumns = FindAllNeighbours(columns, width, larger.width);
    for (const Neighbours& row : FindAllNeighbours(rows, height, larger.height))
    {
        const PackedColour* const upper = larger.GetRow(static_cast<std::int32_t>(row.first));
        const PackedColour* const lower = larger.GetRow(static_cast<std::int32_t>(row.second));
        for (const Neighbours& column : allColumns)
            level->pixels.push_back(MixFour(upper, lower, column, row.share));
    }
    level->first = level->pixels.data();
    return level;
}

std::shared_ptr<Image::Level> Halve(const Image::Level& larger)
{
    const std::int32_t width = std::max(larger.width / 2, 1);
    const std::int32_t height = std::max(larger.height / 2, 1);
    return Reduce(larger, width, height, static_cast<float>(width), static_cast<float>(height));
}

/// Mixes two pictures of the same size; `share` is the second one's, in 256ths.
void MixInto(Image::Level& first, const Image::Level& second, std::uint32_t share)
{
    constexpr Neighbours onlyFirst{0, 0, 0};
    for (std::size_t index = 0; index < first.pixels.size(); ++index)
        first.pixels[index] = MixFour(&first.pixels[index], &second.pixels[index], onlyFirst, share);
}

} // namespace

void Image::Set(std::int32_t width, std::int32_t height, std::size_t bytesPerPixel, const void* pixels)
{
    const std::shared_ptr<Level> level = Restart();
    const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    level->width = width;
    level->height = height;
    level->pixels.resize(count);
    if (bytesPerPixel == s_packedBytes)
    {
        std::memcpy(level->pixels.data(), pixels, count * s_packedBytes);
    }
    else
    {
        const auto* bytes = static_cast<const std::uint8_t*>(pixels);
        for (PackedColour& pixel : level->pixels)
        {
            pixel = ReadPixel(bytes);
            bytes += bytesPerPixel;
        }
    }
    level->first = level->pixels.data();
    m_levels.push_back(level);
}

void Image::Borrow(std::int32_t width, std::int32_t height, const void* pixels)
{
    const std::shared_ptr<Level> level = Restart();
    *level = {width, height, {}, static_cast<const PackedColour*>(pixels)};
    m_levels.push_back(level);
}

std::shared_ptr<Image::Level> Image::Restart()
{
    ++m_version;
    m_sized = {};
    std::shared_ptr<Level> first = m_levels.empty() ? nullptr : m_levels.front();
    m_levels.clear();
    return first != nullptr && first.use_count() == 1 ? first : std::make_shared<Level>();
}

std::shared_ptr<const Image::Level> Image::GetLevel(std::size_t number)
{
    while (m_levels.size() <= number && (m_levels.back()->width > 1 || m_levels.back()->height > 1))
        m_levels.push_back(Halve(*m_levels.back()));
    return m_levels[std::min(number, m_levels.size() - 1)];
}

std::shared_ptr<const Image::Level> Image::GetSized(std::int32_t columns, std::int32_t rows, float width, float height)
{
    const float reduction = std::max(static_cast<float>(GetWidth()) / width, static_cast<float>(GetHeight()) / height);
    if (!(reduction > 1.0F))
        return m_levels.front();
    if (m_sized.level != nullptr && m_sized.width == width && m_sized.height == height &&
        m_sized.level->width == columns && m_sized.level->height == rows)
        return m_sized.level;

    // Filtered like OpenGL's GL_LINEAR_MIPMAP_LINEAR: from the two levels nearest to the reduction.
    const float level = std::log2(reduction);
    const auto number = static_cast<std::size_t>(level);
    const auto share = static_cast<std::uint32_t>(std::lrint((level - std::floor(level)) * 256.0F));
    const std::shared_ptr<const Level> nearer = GetLevel(number);
    if (share == 0 && nearer->width == columns && nearer->height == rows && static_cast<float>(columns) == width &&
        static_cast<float>(rows) == height)
        return nearer;
    const std::shared_ptr<Level> sized = Reduce(*nearer, columns, rows, width, height);
    if (share != 0)
        MixInto(*sized, *Reduce(*GetLevel(number + 1), columns, rows, width, height), share);
    m_sized = {width, height, sized};
    return m_sized.level;
}

PackedColour Image::Sample(float x, float y) const
{
    const Level& level = *m_levels.front();
    const auto find = [](float place, std::int32_t side)
    {
        // Not a number gives 0.
        const float inside = place > 0.0F ? std::min(place, 1.0F) : 0.0F;
        return std::min(static_cast<std::int32_t>(inside * static_cast<float>(side)), side - 1);
    };
    return level.GetRow(find(y, level.height))[find(x, level.width)];
}

} // namespace Orvik::Graphics::Raster
