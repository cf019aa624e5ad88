#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace Orvik::System::Multimedia
{

class Bitmap;

/// Takes the next bytes of the data. Returns false if they can't be written; then no more are wanted.
using PngDataSink = std::function<bool(std::span<const std::uint8_t> data)>;

/// Gives the sink the compressed rows of a PNG file, part by part in their order and on the calling thread: one zlib
/// stream of the rows that `PngRowFilter` makes. The picture must have pixels; `pixelBytes`, 3 or 4, are taken of each.
/// A large picture is made in pieces on several threads at once, with memory for a few pieces at a time. False if the
/// sink returned false or the library has no memory; throws `std::bad_alloc` for memory of its own.
[[nodiscard]] bool MakePngData(const Bitmap& bitmap, std::size_t pixelBytes, const PngDataSink& sink);

} // namespace Orvik::System::Multimedia
