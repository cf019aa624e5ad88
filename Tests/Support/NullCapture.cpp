#include "Tests/Support/NullCapture.h"

#include "Core/System/Error/SystemError.h"
#include "Tests/Support/NullDesktop.h"

#include <cstddef>

namespace Orvik::Tests
{
namespace
{

/// Some error of the system.
constexpr std::uint32_t s_refusedCapture = 5;

} // namespace

bool NullCapture::Initialize(const System::Math::Rectangle& region)
{
    if (!NullDesktop::GetInstance().captureInitializes)
        return false;
    m_region = region;
    m_pixels.resize(std::size_t{region.GetWidth()} * region.GetHeight() * 4);
    return true;
}

Desktops::Failure NullCapture::CopyScreen()
{
    NullDesktop& desktop = NullDesktop::GetInstance();
    if (desktop.onCapture)
        desktop.onCapture();
    if (!desktop.captureSucceeds || m_pixels.empty())
        return System::Error::FormatError(s_refusedCapture);
    desktop.captures.push_back(m_region);
    std::size_t offset = 0;
    const auto width = static_cast<std::int32_t>(m_region.GetWidth());
    const auto height = static_cast<std::int32_t>(m_region.GetHeight());
    for (std::int32_t row = 0; row < height; ++row)
    {
        for (std::int32_t column = 0; column < width; ++column)
        {
            const std::uint32_t pixel =
                desktop.screenPixel ? desktop.screenPixel(m_region.left + column, m_region.top + row) : 0;
            for (unsigned int shift = 0; shift < 32; shift += 8)
                m_pixels[offset++] = static_cast<unsigned char>(pixel >> shift);
        }
    }
    return std::nullopt;
}

System::Types::Buffer<const unsigned char> NullCapture::GetPixels() const
{
    return {m_pixels.data(), m_pixels.size()};
}

} // namespace Orvik::Tests
