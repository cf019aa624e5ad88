#include "Core/Graphics/Raster/VisibleArea.h"

#include <cstddef>

namespace Orvik::Graphics::Raster
{

void Subtract(std::vector<PixelArea>& areas, const PixelArea& hole)
{
    const std::size_t count = areas.size();
    for (std::size_t index = 0; index < count; ++index)
    {
        const PixelArea area = areas[index];
        const PixelArea common = Intersect(area, hole);
        if (common.IsEmpty())
            continue;
        areas[index] = {};
        // The parts above and below over the whole width, then the parts left and right.
        for (const PixelArea& rest : {PixelArea{area.left, area.top, area.right, common.top},
                                      PixelArea{area.left, common.bottom, area.right, area.bottom},
                                      PixelArea{area.left, common.top, common.left, common.bottom},
                                      PixelArea{common.right, common.top, area.right, common.bottom}})
        {
            if (!rest.IsEmpty())
                areas.push_back(rest);
        }
    }
    std::erase_if(areas, [](const PixelArea& area) { return area.IsEmpty(); });
}

} // namespace Orvik::Graphics::Raster
