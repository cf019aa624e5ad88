#include "Tests/Support/NullPixels.h"

#include "Tests/Support/NullDesktop.h"

#include <algorithm>

namespace Orvik::Tests
{

bool NullPixels::Create(Desktops::NativeWindow window, std::uint32_t width, std::uint32_t height)
{
    Destroy();
    if (window == Desktops::NativeWindow::None || !NullDesktop::GetInstance().surfacesCreate)
        return false;
    m_width = width;
    m_pixels = std::vector<std::uint32_t>(std::size_t{width} * height);
    NullDesktop::GetInstance().shownPixels = m_pixels;
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
    NullDesktopValues& desktop = NullDesktop::GetInstance();
    desktop.presentations.emplace_back(areas.begin(), areas.end());
    if (desktop.shownPixels.size() != m_pixels.size())
        return; // another surface is shown
    for (const System::Math::Rectangle& area : areas)
    {
        for (std::int32_t y = area.top; y < area.bottom; ++y)
        {
            const std::size_t row = static_cast<std::size_t>(y) * m_width;
            std::copy(m_pixels.begin() + static_cast<std::ptrdiff_t>(row) + area.left,
                      m_pixels.begin() + static_cast<std::ptrdiff_t>(row) + area.right,
                      desktop.shownPixels.begin() + static_cast<std::ptrdiff_t>(row) + area.left);
        }
    }
}

void NullPixels::EndFrame()
{
    ++NullDesktop::GetInstance().finishedFrames;
}

} // namespace Orvik::Tests
