#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace Orvik::System::Multimedia
{

class Bitmap;

/// Takes the next bytes of the data. False: they can't be had rid of, and no more are wanted.
using PngDataSink = std::function<bool(std::span<const std::uint8_t> data)>;

/// Gives the sink the compressed rows of a PNG file, part by part from the first on and on the calling thread: one zlib
/// stream of the rows that `PngRowFilter` makes. The picture has pixels, and `pixelBytes`, 3 or 4, are taken of each. A
/// large one is made in pieces on several threads at once, with memory for few of the pieces at a time. False if the
/// sink said so, or if the library has no memory; throws `std::bad_alloc` itself.
[[nodiscard]] bool MakePngData(const Bitmap& bitmap, std::size_t pixelBytes, const PngDataSink& sink);

} // namespace Orvik::System::Multimedia
