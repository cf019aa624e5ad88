#include "Desktops/Wayland/CaptureBuffer.h"

#include "Desktops/PixelConverter.h"
#include "Desktops/Wayland/OutputTransform.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <optional>
#include <vector>

namespace Orvik::Desktops::Wayland
{
namespace
{

struct KnownFormat
{
    std::uint32_t format;
    PixelLayout layout;
};

/// The names say the channels from the highest bit of a little-endian value downward.
constexpr std::array<KnownFormat, 12> s_formats = {{
    {WL_SHM_FORMAT_XRGB8888, {0xFF0000, 0xFF00, 0xFF, 32, false}},
    {WL_SHM_FORMAT_ARGB8888, {0xFF0000, 0xFF00, 0xFF, 32, false}},
    {WL_SHM_FORMAT_XBGR8888, {0xFF, 0xFF00, 0xFF0000, 32, false}},
    {WL_SHM_FORMAT_ABGR8888, {0xFF, 0xFF00, 0xFF0000, 32, false}},
    {WL_SHM_FORMAT_RGBX8888, {0xFF000000, 0xFF0000, 0xFF00, 32, false}},
    {WL_SHM_FORMAT_BGRX8888, {0xFF00, 0xFF0000, 0xFF000000, 32, false}},
    {WL_SHM_FORMAT_XRGB2101010, {0x3FF00000, 0xFFC00, 0x3FF, 32, false}},
    {WL_SHM_FORMAT_XBGR2101010, {0x3FF, 0xFFC00, 0x3FF00000, 32, false}},
    {WL_SHM_FORMAT_ARGB2101010, {0x3FF00000, 0xFFC00, 0x3FF, 32, false}},
    {WL_SHM_FORMAT_ABGR2101010, {0x3FF, 0xFFC00, 0x3FF00000, 32, false}},
    {WL_SHM_FORMAT_RGB888, {0xFF0000, 0xFF00, 0xFF, 24, false}},
    {WL_SHM_FORMAT_BGR888, {0xFF, 0xFF00, 0xFF0000, 24, false}},
}};

const KnownFormat* FindFormat(std::uint32_t format)
{
    const auto* const found = std::find_if(s_formats.begin(), s_formats.end(),
                                           [format](const KnownFormat& known) { return known.format == format; });
    return found != s_formats.end() ? found : nullptr;
}

/// The rows of a picture with its lowest row first, from the top.
PixelRows TurnOver(const PixelRows& rows)
{
    const std::ptrdiff_t last = rows.stride * static_cast<std::ptrdiff_t>(rows.height - 1);
    return {rows.data + last, rows.width, rows.height, -rows.stride};
}

} // namespace

bool IsReadable(std::uint32_t format)
{
    return FindFormat(format) != nullptr;
}

std::uint32_t GetPixelBytes(std::uint32_t format)
{
    return FindFormat(format)->layout.bitsPerPixel / 8;
}

bool CaptureBuffer::IsAsWanted(std::int32_t transform) const
{
    const bool isPlain = m_format.format == WL_SHM_FORMAT_XRGB8888 || m_format.format == WL_SHM_FORMAT_ARGB8888;
    return isPlain && transform == WL_OUTPUT_TRANSFORM_NORMAL && m_format.stride == m_target.GetStride() &&
           m_format.width == m_target.width && m_format.height == m_target.height;
}

Failure CaptureBuffer::Create(wl_shm* shm, const CaptureFormat& format, std::int32_t transform)
{
    m_format = format;
    if (shm == nullptr || !IsReadable(format.format))
        return fmt::format("the compositor makes pictures of a kind that can't be read ({:X})", format.format);
    const bool isTooNarrow = format.stride < std::uint64_t{format.width} * GetPixelBytes(format.format);
    if (format.width == 0 || format.height == 0 || isTooNarrow)
        return "the compositor makes pictures without pixels";
    const std::size_t bytes = std::size_t{format.stride} * format.height;
    m_memory = IsAsWanted(transform) ? &m_target.memory : &m_own;
    if (m_memory == &m_own && !m_own.Create(bytes))
        return "there is no memory for the picture";
    // The pool may be smaller than the memory, which is that of something larger where it is lent.
    wl_shm_pool* const pool = wl_shm_create_pool(shm, m_memory->GetDescriptor(), static_cast<std::int32_t>(bytes));
    m_buffer.reset(wl_shm_pool_create_buffer(pool, 0, static_cast<std::int32_t>(format.width),
                                             static_cast<std::int32_t>(format.height),
                                             static_cast<std::int32_t>(format.stride), format.format));
    wl_shm_pool_destroy(pool);
    return std::nullopt;
}

Failure CaptureBuffer::Deliver(const CaptureTurn& turn)
{
    const auto transform = static_cast<OutputTransform>(turn.transform & 7);
    const bool isTurned = SwapsSides(transform);
    const std::uint32_t width = isTurned ? m_format.height : m_format.width;
    const std::uint32_t height = isTurned ? m_format.width : m_format.height;
    if (width != m_target.width || height != m_target.height)
        return fmt::format("the picture has {} x {} pixels, the display {} x {}", width, height, m_target.width,
                           m_target.height);
    const bool isInPlace = m_memory == &m_target.memory;
    if (isInPlace && turn.transform == WL_OUTPUT_TRANSFORM_NORMAL && !turn.isUpsideDown)
        return std::nullopt;
    const std::optional<PixelConverter> converter = PixelConverter::Create(FindFormat(m_format.format)->layout);
    if (!converter)
        return "the picture can't be read";
    const std::size_t rowBytes = std::size_t{m_format.width} * 4;
    std::vector<unsigned char> pixels(rowBytes * m_format.height);
    for (std::uint32_t row = 0; row < m_format.height; ++row)
        converter->ConvertRow(m_memory->GetBytes() + std::size_t{m_format.stride} * row, m_format.width,
                              pixels.data() + rowBytes * row);
    const PixelRows rows{pixels.data(), m_format.width, m_format.height, static_cast<std::ptrdiff_t>(rowBytes)};
    UndoTransform(turn.isUpsideDown ? TurnOver(rows) : rows, transform, m_target.memory.GetBytes());
    return std::nullopt;
}

} // namespace Orvik::Desktops::Wayland
