#include "Core/Graphics/Raster/PictureShader.h"

#include <algorithm>
#include <cstddef>

namespace Orvik::Graphics::Raster
{
namespace
{

/// The source's column or row under the centre of the item's `index`th, if nothing is reduced.
std::int32_t FindNearest(std::int32_t index, float drawnSide, std::int32_t sourceSide)
{
    const float place = (static_cast<float>(index) + 0.5F) / drawnSide * static_cast<float>(sourceSide);
    return std::clamp(static_cast<std::int32_t>(place), 0, sourceSide - 1);
}

/// The same for all of the item's; empty if they are the same as the source's.
std::vector<std::int32_t> FindAllNearest(std::int32_t count, float drawnSide, std::int32_t sourceSide)
{
    std::vector<std::int32_t> all;
    if (count == sourceSide)
        return all;
    all.reserve(static_cast<std::size_t>(count));
    for (std::int32_t index = 0; index < count; ++index)
        all.push_back(FindNearest(index, drawnSide, sourceSide));
    return all;
}

} // namespace

PictureShader::PictureShader(const PictureItem& picture)
    : m_picture(picture),
      m_scale(picture.colour),
      m_source(
          picture.image->GetSized(picture.area.GetWidth(), picture.area.GetHeight(), picture.width, picture.height)),
      m_columns(FindAllNearest(picture.area.GetWidth(), picture.width, m_source->width)),
      m_rows(FindAllNearest(picture.area.GetHeight(), picture.height, m_source->height))
{
}

void PictureShader::ShadeRow(std::int32_t y, std::int32_t left, std::int32_t right, PackedColour* target)
{
    const PackedColour* const source = m_source->GetRow(FindSourceRow(y));
    const auto count = static_cast<std::size_t>(right - left);
    const std::int32_t first = left - m_picture.area.left;
    if (m_columns.empty())
    {
        m_scale.Apply(source + first, target, count);
        return;
    }
    // Each of the source's pixels once, even if it is on many of the surface's.
    const std::int32_t* const columns = m_columns.data() + first;
    const std::int32_t begin = columns[0];
    const auto used = static_cast<std::size_t>(columns[count - 1] - begin) + 1;
    if (m_shaded.size() < used)
        m_shaded.resize(used);
    m_scale.Apply(source + begin, m_shaded.data(), used);
    for (std::size_t index = 0; index < count; ++index)
        target[index] = m_shaded[static_cast<std::size_t>(columns[index] - begin)];
}

} // namespace Orvik::Graphics::Raster
