#include "Core/System/Desktop/PixelSurface.h"

#include "Desktops/Desktop.h"

namespace Orvik::System::Desktop
{

PixelSurface::PixelSurface() noexcept = default;
PixelSurface::~PixelSurface() = default;

bool PixelSurface::Create(NativeWindow window, std::uint32_t width, std::uint32_t height)
{
    if (!m_memory)
        m_memory = Desktops::GetDesktop().MakePixelMemory();
    return m_memory->Create(window, width, height);
}

void PixelSurface::Destroy() noexcept
{
    if (m_memory)
        m_memory->Destroy();
}

std::uint32_t* PixelSurface::GetPixels() const noexcept
{
    return m_memory ? m_memory->GetPixels() : nullptr;
}

std::size_t PixelSurface::GetStride() const noexcept
{
    return m_memory ? m_memory->GetStride() : 0;
}

bool PixelSurface::BeginFrame()
{
    return m_memory && m_memory->BeginFrame();
}

void PixelSurface::Present(std::span<const Math::Rectangle> areas)
{
    if (m_memory)
        m_memory->Present(areas);
}

void PixelSurface::EndFrame()
{
    if (m_memory)
        m_memory->EndFrame();
}

} // namespace Orvik::System::Desktop
