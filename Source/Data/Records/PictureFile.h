#pragma once

#include "Core/System/Multimedia/Bitmap.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace Orvik::Data
{

/// What a picture's file says of it.
struct PictureHeader
{
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool isPng = false; ///< else it is a BMP
};

/// Reads the beginning of a PNG or BMP file, whatever its name. Nothing if it is neither, no regular file, or a BMP
/// file that `LoadPicture` refuses: it takes those of 24 and 32 bits without compression that have the header of 40
/// bytes (BITMAPINFOHEADER), the pixels directly after it, and all rows.
[[nodiscard]] std::optional<PictureHeader> ReadPictureHeader(const std::filesystem::path& path);

/// Reads a whole picture from a file whose name ends in ".png" or ".bmp": always 32 bits to the pixel, blue, green, red
/// and alpha. Nothing if it can't be read, is damaged or larger than a bitmap can be.
[[nodiscard]] std::optional<System::Multimedia::Bitmap> LoadPicture(const std::filesystem::path& path);

/// Where the picture of a JSON file lies: beside it under the same name, as PNG or else as BMP. Empty if there is none.
[[nodiscard]] std::filesystem::path FindPicture(const std::filesystem::path& json);

} // namespace Orvik::Data
