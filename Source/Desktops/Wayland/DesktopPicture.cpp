#include "Desktops/Wayland/DesktopPicture.h"
#include "Desktops/Wayland/OutputTransform.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// Far above all desktops, and far below where products of two overflow.
constexpr std::int64_t s_longestSide = 1 << 20;

/// To the nearest, halves up.
std::int64_t Scale(std::int64_t value, std::int64_t numerator, std::int64_t denominator)
{
    return (2 * value * numerator + denominator) / (2 * denominator);
}

bool IsUsable(const System::Math::Rectangle& area)
{
    return area.left < area.right && area.top < area.bottom && std::int64_t{area.right} - area.left <= s_longestSide &&
           std::int64_t{area.bottom} - area.top <= s_longestSide;
}

/// The same length, as nearly as the picture has it: one that is a pixel off is rounded.
void SetSide(std::int32_t& from, std::int32_t& to, std::uint32_t wanted, std::uint32_t limit)
{
    const auto length = static_cast<std::int64_t>(wanted);
    if (std::abs(std::int64_t{to} - from - length) > 1 || length > std::int64_t{limit})
        return;
    from = static_cast<std::int32_t>(std::min<std::int64_t>(from, limit - length));
    to = static_cast<std::int32_t>(from + length);
}

/// Of `sourceCount` pixels the one below the middle of a target pixel.
std::size_t FindNearest(std::size_t target, std::size_t sourceCount, std::size_t targetCount)
{
    return (2 * target + 1) * sourceCount / (2 * targetCount);
}

} // namespace

std::optional<System::Math::Rectangle> FindOutput(const CapturedOutput& output, std::uint32_t width,
                                                  std::uint32_t height)
{
    const System::Math::Rectangle& desktop = output.desktop;
    if (!IsUsable(desktop) || !IsUsable(output.logical) ||
        System::Math::Intersect(desktop, output.logical) != output.logical || width == 0 || height == 0 ||
        width > s_longestSide || height > s_longestSide)
        return std::nullopt;
    const std::int64_t desktopWidth = std::int64_t{desktop.right} - desktop.left;
    const std::int64_t desktopHeight = std::int64_t{desktop.bottom} - desktop.top;
    // Each side of the picture may be a pixel off.
    if (std::abs(width * desktopHeight - height * desktopWidth) > desktopWidth + desktopHeight)
        return std::nullopt;
    const auto toColumn = [&](std::int64_t x)
    { return static_cast<std::int32_t>(Scale(x - desktop.left, width, desktopWidth)); };
    const auto toRow = [&](std::int64_t y)
    { return static_cast<std::int32_t>(Scale(y - desktop.top, height, desktopHeight)); };
    System::Math::Rectangle area = {toColumn(output.logical.left), toRow(output.logical.top),
                                    toColumn(output.logical.right), toRow(output.logical.bottom)};
    SetSide(area.left, area.right, output.width, width);
    SetSide(area.top, area.bottom, output.height, height);
    return IsUsable(area) ? std::optional(area) : std::nullopt;
}

bool CutOutput(const PixelRows& picture, const CapturedOutput& output, unsigned char* target)
{
    const std::optional<System::Math::Rectangle> area = FindOutput(output, picture.width, picture.height);
    if (!area || output.width == 0 || output.height == 0)
        return false;
    const auto areaWidth = static_cast<std::size_t>(area->right - area->left);
    const auto areaHeight = static_cast<std::size_t>(area->bottom - area->top);
    for (std::size_t y = 0; y < output.height; ++y)
    {
        const std::size_t sourceRow = static_cast<std::size_t>(area->top) + FindNearest(y, areaHeight, output.height);
        const unsigned char* const from = picture.data + static_cast<std::ptrdiff_t>(sourceRow) * picture.stride +
                                          static_cast<std::size_t>(area->left) * s_pixelBytes;
        unsigned char* const to = target + y * output.width * s_pixelBytes;
        if (areaWidth == output.width)
            std::memcpy(to, from, areaWidth * s_pixelBytes);
        else
            for (std::size_t x = 0; x < output.width; ++x)
                std::memcpy(to + x * s_pixelBytes, from + FindNearest(x, areaWidth, output.width) * s_pixelBytes,
                            s_pixelBytes);
    }
    return true;
}

} // namespace Orvik::Desktops::Wayland
