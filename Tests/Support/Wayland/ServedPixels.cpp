#include "Tests/Support/Wayland/ServedPixels.h"

#include <stdexcept>
#include <wayland-server-protocol.h>

namespace Orvik::Tests
{
namespace
{

Picture Mirror(const Picture& picture)
{
    Picture mirrored{picture.width, picture.height, {}};
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            mirrored.pixels.push_back(picture.At(picture.width - 1 - x, y));
    return mirrored;
}

struct Channels
{
    std::uint32_t red;
    std::uint32_t green;
    std::uint32_t blue;
};

/// A level of 8 bits in 10.
std::uint32_t Widen(std::uint32_t level)
{
    return level << 2U | level >> 6U;
}

/// A pixel as a little-endian number.
std::uint32_t Encode(const Channels& pixel, std::uint32_t format)
{
    const auto& [red, green, blue] = pixel;
    switch (format)
    {
    case WL_SHM_FORMAT_XRGB8888:
    case WL_SHM_FORMAT_ARGB8888:
    case WL_SHM_FORMAT_RGB888:
        return red << 16U | green << 8U | blue;
    case WL_SHM_FORMAT_XBGR8888:
    case WL_SHM_FORMAT_ABGR8888:
    case WL_SHM_FORMAT_BGR888:
        return blue << 16U | green << 8U | red;
    case WL_SHM_FORMAT_RGBX8888:
        return red << 24U | green << 16U | blue << 8U;
    case WL_SHM_FORMAT_BGRX8888:
        return blue << 24U | green << 16U | red << 8U;
    case WL_SHM_FORMAT_XRGB2101010:
    case WL_SHM_FORMAT_ARGB2101010:
        return Widen(red) << 20U | Widen(green) << 10U | Widen(blue);
    case WL_SHM_FORMAT_XBGR2101010:
    case WL_SHM_FORMAT_ABGR2101010:
        return Widen(blue) << 20U | Widen(green) << 10U | Widen(red);
    default:
        throw std::runtime_error("The server doesn't know this format.");
    }
}

int GetPixelBytes(std::uint32_t format)
{
    constexpr int packed = 3;
    constexpr int padded = 4;
    return format == WL_SHM_FORMAT_RGB888 || format == WL_SHM_FORMAT_BGR888 ? packed : padded;
}

} // namespace

// A mirrored transform mirrors first and turns then.
Picture ApplyTransform(const Picture& seen, std::uint32_t transform)
{
    constexpr std::uint32_t mirrored = 4;
    Picture scanned = (transform & mirrored) != 0 ? Mirror(seen) : seen;
    for (std::uint32_t turns = transform % mirrored; turns > 0; --turns)
        scanned = scanned.Turned();
    return scanned;
}

void WritePixels(const ServedMemory& memory, const Picture& picture, const std::vector<Area>& areas)
{
    const int pixelBytes = GetPixelBytes(memory.format);
    for (const Area& area : areas)
        for (int y = area.y; y < area.y + area.height; ++y)
            for (int x = area.x; x < area.x + area.width; ++x)
            {
                const std::uint32_t pixel = picture.At(x, y);
                const std::uint32_t value =
                    Encode({pixel >> 16U & 0xFFU, pixel >> 8U & 0xFFU, pixel & 0xFFU}, memory.format);
                unsigned char* const target = memory.bytes + y * memory.stride + x * pixelBytes;
                for (int byte = 0; byte < pixelBytes; ++byte)
                    target[byte] = static_cast<unsigned char>(value >> 8U * static_cast<unsigned>(byte));
            }
}

} // namespace Orvik::Tests
