#pragma once

#include "Core/System/Multimedia/Bitmap.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// A picture of the kind that is cut out of a screen.
struct SamplePicture
{
    std::string name;
    System::Multimedia::Bitmap bitmap;
};

/// Opaque pictures of that size with 32 bits to the pixel, always the same: "photo", "text", "interface", "noise" and
/// "gradient".
[[nodiscard]] std::vector<SamplePicture> MakeSamplePictures(std::uint16_t width, std::uint16_t height);

/// One of them.
[[nodiscard]] System::Multimedia::Bitmap MakeSamplePicture(const std::string& name, std::uint16_t width,
                                                           std::uint16_t height);

} // namespace Orvik::Tests
