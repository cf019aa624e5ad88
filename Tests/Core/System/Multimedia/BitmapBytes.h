#pragma once

#include "Core/System/Multimedia/Bitmap.h"

#include <cstdint>
#include <vector>

namespace Orvik::System::Multimedia
{

/// The pixels of a bitmap as it keeps them.
inline std::vector<std::uint8_t> GetBytes(const Bitmap& bitmap)
{
    return {bitmap.GetPixels(), bitmap.GetPixels() + bitmap.GetSize()};
}

} // namespace Orvik::System::Multimedia
