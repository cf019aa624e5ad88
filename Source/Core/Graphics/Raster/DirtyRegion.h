#pragma once

#include "Core/Graphics/Raster/PixelArea.h"

#include <vector>

namespace Orvik::Graphics::Raster
{

/// The part of a surface that has to be painted again, as a few areas. They may overlap: painting a pixel twice does no
/// harm, and keeping them apart would cost more.
class DirtyRegion
{
public:
    /// Adds an area's pixels. Areas that are cheaper to paint as one are united.
    void Add(const PixelArea& area);

    [[nodiscard]] const std::vector<PixelArea>& GetAreas() const { return m_areas; }
    [[nodiscard]] bool IsEmpty() const { return m_areas.empty(); }
    void Clear() { m_areas.clear(); }

private:
    std::vector<PixelArea> m_areas;
};

} // namespace Orvik::Graphics::Raster
