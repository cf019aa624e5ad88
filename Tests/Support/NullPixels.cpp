#include "Tests/Support/NullPixels.h"

#include "Tests/Support/NullDesktop.h"

namespace Orvik::Tests
{

bool NullPixels::Create(Desktops::NativeWindow window, std::uint32_t width, std::uint32_t height)
{
    Destroy();
    if (window == Desktops::NativeWindow::None || !NullDesktop::GetInstance().surfacesCreate)
        return false;
    m_width = width;
    m_pixels = std::vector<std::uint32_t>(std::size_t{width} * height);
    return true;
}

std::uint32_t* NullPixels::GetPixels() const noexcept
{
    return m_pixels.empty() ? nullptr : m_pixels.data();
}

bool NullPixels::BeginFrame()
{
    ++NullDesktop::GetInstance().frames;
    return !m_pixels.empty();
}

void NullPixels::Present(std::span<const System::Math::Rectangle> areas)
{
    NullDesktop::GetInstance().presentations.emplace_back(areas.begin(), areas.end());
}

void NullPixels::EndFrame()
{
    ++NullDesktop::GetInstance().finishedFrames;
}

} // namespace Orvik::Tests
