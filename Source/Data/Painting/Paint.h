#pragma once

#include "Core/System/Multimedia/Bitmap.h"
#include "Core/System/Types/Rectangle.h"
#include "Data/Records/Record.h"

#include <cstdint>
#include <string_view>

namespace Orvik::Data
{

/// Red, green and blue.
struct Colour
{
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool operator==(const Colour&) const = default;
};

/// The colour of a label: always the same one for the same name.
[[nodiscard]] Colour GetLabelColour(std::string_view label);

/// Black or white, whichever is read better on this colour.
[[nodiscard]] Colour GetTextColour(const Colour& background);

// All paint opaque on pictures of 32 bits to the pixel. What lies beyond the picture is left out.

void FillArea(System::Multimedia::Bitmap& picture, const System::Math::Rectangle& area, const Colour& colour);

/// `cover` of 255 gives the colour, 0 leaves what is there.
void MixPixel(System::Multimedia::Bitmap& picture, std::int32_t x, std::int32_t y, const Colour& colour,
              std::uint32_t cover);

/// The outermost `thickness` pixels within the box.
void DrawBox(System::Multimedia::Bitmap& picture, const System::Math::Rectangle& box, const Colour& colour,
             std::int32_t thickness);

/// Lines between the corners, `thickness` pixels wide.
void DrawRing(System::Multimedia::Bitmap& picture, const Ring& ring, const Colour& colour, std::int32_t thickness);

/// Puts a picture of the same kind on another one.
void PutPicture(System::Multimedia::Bitmap& target, const System::Multimedia::Bitmap& source, std::int32_t x,
                std::int32_t y);

} // namespace Orvik::Data
