#include "Core/System/Desktop/PixelSurface.h"

#include "Core/System/Platform/NullDesktop.h"

#include <vector>

namespace Orvik::System::Desktop
{

struct PixelSurface::Native
{
    std::size_t width = 0;
    std::vector<std::uint32_t> pixels;
};

void PixelSurface::NativeDeleter::operator()(Native* native) const noexcept
{
    delete native;
}

PixelSurface::PixelSurface() noexcept = default;
PixelSurface::~PixelSurface() = default;

bool PixelSurface::Create(NativeWindow window, std::uint32_t width, std::uint32_t height)
{
    Destroy();
    if (window == NativeWindow::None || !Platform::NullDesktop::GetInstance().surfacesCreate)
        return false;
    m_native.reset(new Native{width, std::vector<std::uint32_t>(std::size_t{width} * height)});
    return true;
}

void PixelSurface::Destroy() noexcept
{
    m_native.reset();
}

std::uint32_t* PixelSurface::GetPixels() const noexcept
{
    return m_native ? m_native->pixels.data() : nullptr;
}

std::size_t PixelSurface::GetStride() const noexcept
{
    return m_native ? m_native->width : 0;
}

bool PixelSurface::BeginFrame()
{
    return m_native != nullptr;
}

void PixelSurface::Present(std::span<const Math::Rectangle> areas)
{
    Platform::NullDesktop& desktop = Platform::NullDesktop::GetInstance();
    desktop.presentations.emplace_back(areas.begin(), areas.end());
}

} // namespace Orvik::System::Desktop
