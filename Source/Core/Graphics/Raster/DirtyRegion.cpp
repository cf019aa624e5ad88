#include "Core/Graphics/Raster/DirtyRegion.h"

#include <cstddef>

namespace Orvik::Graphics::Raster
{
namespace
{

/// The cost of a separate area, as the number of pixels that could be painted in the same time.
constexpr std::int64_t s_areaCost = 2048;
/// With more areas than this, keeping them apart costs more than painting what is between them.
constexpr std::size_t s_maxAreas = 128;

/// Whether two areas are painted faster as one.
bool IsCheaperAsOne(const PixelArea& first, const PixelArea& second)
{
    return Unite(first, second).CountPixels() <= first.CountPixels() + second.CountPixels() + s_areaCost;
}

} // namespace

void DirtyRegion::Add(const PixelArea& area)
{
    if (area.IsEmpty())
        return;
    PixelArea grown = area;
    for (std::size_t index = 0; index < m_areas.size();)
    {
        if (m_areas.size() < s_maxAreas && !IsCheaperAsOne(m_areas[index], grown))
        {
            ++index;
            continue;
        }
        // The united area may now be near an area that was far from it before.
        grown = Unite(grown, m_areas[index]);
        m_areas[index] = m_areas.back();
        m_areas.pop_back();
        index = 0;
    }
    m_areas.push_back(grown);
}

} // namespace Orvik::Graphics::Raster
