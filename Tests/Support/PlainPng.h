#pragma once

#include "Core/System/Multimedia/Bitmap.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvik::Tests
{

/// The file that libpng makes of a picture with 24 or 32 bits per pixel, with its default settings.
[[nodiscard]] std::vector<std::uint8_t> MakePlainPng(const System::Multimedia::Bitmap& bitmap);

/// A file without its data: signature and all chunks except "IDAT", unchanged.
[[nodiscard]] std::vector<std::uint8_t> GetPngFrame(const std::vector<std::uint8_t>& file);

/// The data of a file, from all its chunks.
[[nodiscard]] std::vector<std::uint8_t> GetPngData(const std::vector<std::uint8_t>& file);

/// The filtered rows in the data: `bytes` if the stream is whole and its checksum right, else none.
[[nodiscard]] std::vector<std::uint8_t> Uncompress(const std::vector<std::uint8_t>& data, std::size_t bytes);

} // namespace Orvik::Tests
