#pragma once

#include "Core/Graphics/Raster/Items.h"
#include "Core/Graphics/Raster/PictureShader.h"

#include <optional>

namespace Orvik::Graphics::Raster
{

/// An item to be painted, with what is prepared once for all its areas.
struct Prepared
{
    const Item* item;
    std::optional<PictureShader> picture; ///< if it is one
};

/// The picture, if the item is one and hides everything behind it.
[[nodiscard]] inline const PictureItem* FindOpaquePicture(const Item& item)
{
    const auto* const picture = std::get_if<PictureItem>(&item);
    return picture != nullptr && ToByte(picture->colour.w) == s_channelMask ? picture : nullptr;
}

} // namespace Orvik::Graphics::Raster
