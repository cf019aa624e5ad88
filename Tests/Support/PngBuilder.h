#pragma once

#include "Tests/Support/BinaryFile.h"

#include <cstdint>
#include <string_view>

namespace Orvik::Tests
{

/// The fields of a PNG's header chunk that tests vary. Colour types: 0 grey, 2 RGB, 3 palette, 4 grey with alpha, 6 RGB
/// with alpha.
struct PngHeader
{
    std::uint32_t width = 1;
    std::uint32_t height = 1;
    std::uint8_t bitDepth = 8;
    std::uint8_t colourType = 6;
    bool isInterlaced = false;
};

/// The eight bytes that every PNG begins with.
[[nodiscard]] Bytes MakePngSignature();

/// One chunk: length, type of four letters, data and checksum.
[[nodiscard]] Bytes MakePngChunk(std::string_view type, const Bytes& data);

/// The header chunk.
[[nodiscard]] Bytes MakePngHeaderChunk(const PngHeader& header);

/// The chunk of the picture's data, stored uncompressed. `rows` has the filter's byte before each row.
[[nodiscard]] Bytes MakePngDataChunk(const Bytes& rows);

/// A whole file: signature, header, `chunks` (palette and transparency, already as chunks), data and end.
[[nodiscard]] Bytes MakePng(const PngHeader& header, const Bytes& rows, const Bytes& chunks = {});

} // namespace Orvik::Tests
