#pragma once

#include "Tests/Support/Desktop/Picture.h"

#include <cstdint>
#include <vector>

namespace Orvik::Tests
{

/// The memory of a buffer.
struct ServedMemory
{
    unsigned char* bytes;
    int stride;           ///< bytes from a row to the next
    std::uint32_t format; ///< one of `wl_shm_format`
};

/// What a display of that transform, one of `wl_output_transform`, scans so that its user sees the picture.
[[nodiscard]] Picture ApplyTransform(const Picture& seen, std::uint32_t transform);

/// Writes those areas of a picture into a buffer of its size. Throws `std::runtime_error` for a format that isn't known
/// here.
void WritePixels(const ServedMemory& memory, const Picture& picture, const std::vector<Area>& areas);

} // namespace Orvik::Tests
