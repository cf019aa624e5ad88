#include "Core/Graphics/Tools/SnipBench.h"

#include "Core/Graphics/Tools/Truncate.h"
#include "Core/System/Device/Display/DisplayCache.h"
#include "Core/System/Runtime/Application.h"

#include <algorithm>
#include <limits>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Device::Display::DisplayDescriptor;
using System::Math::Point;
using System::Tools::ToolContext;

constexpr std::uint16_t s_minMagnifierSize = 32;

/// Half the size at which the image is drawn.
std::int32_t GetHalfDrawnSize(float captureSize, float scale)
{
    return Truncate(captureSize * scale * 0.5F);
}

std::int32_t ClampToImage(std::int32_t position, std::uint16_t windowSize, std::int32_t halfSize)
{
    const std::int32_t centre = windowSize >> 1;
    return std::clamp(position, centre - halfSize, centre + halfSize);
}

std::int32_t GetImageOffset(std::uint16_t windowSize, std::int32_t halfSize)
{
    return std::max((windowSize >> 1) - static_cast<std::uint16_t>(halfSize), 0);
}

std::int32_t ToCapture(std::int32_t position, std::int32_t imageOffset, float scale)
{
    return Truncate(static_cast<float>(static_cast<std::uint16_t>(position - imageOffset)) / scale);
}

/// A position far outside of every screen must not come back in on the other side.
std::int32_t Subtract(std::int32_t value, std::int32_t amount)
{
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(std::int64_t{value} - amount, Limits::min(), Limits::max()));
}

} // namespace

// A picture from a file can be shown where there is no display system.
const DisplayDescriptor* SnipBench::FindDisplay(std::uint16_t id)
{
    using System::Device::Display::DisplayCache;
    using System::Runtime::Application;
    const DisplayCache* const cache =
        Application::FindInstance() != nullptr ? Application::TryGetSystem<DisplayCache>() : nullptr;
    return cache != nullptr ? cache->GetDisplay(id) : nullptr;
}

Point SnipBench::GetDisplayOrigin(const ToolContext& context)
{
    const DisplayDescriptor* const display = FindDisplay(context.displayIds[1]);
    if (display == nullptr)
        return {0, 0};

    const DisplayDescriptor* const host = display->hostDisplayId != System::Device::Display::InvalidDisplayId
                                              ? FindDisplay(display->hostDisplayId)
                                              : nullptr;
    if (host == nullptr)
        return {display->x, display->y};
    return {display->x + host->x, display->y + host->y};
}

Point SnipBench::ToWindowLocal(const ToolContext& context)
{
    const Point origin = GetDisplayOrigin(context);
    return {Subtract(context.x, origin.x), Subtract(context.y, origin.y)};
}

bool SnipBench::IsMove(const ToolContext& context) const
{
    return context.type == System::Tools::ToolEventType::MouseMove &&
           ToWindowLocal(context) != Point{m_cursorX, m_cursorY};
}

void SnipBench::MoveCursor(const Point& position)
{
    m_cursorX = ClampToImage(position.x, m_windowWidth, GetHalfDrawnSize(m_capture.GetWidth(), m_displayScale));
    m_cursorY = ClampToImage(position.y, m_windowHeight, GetHalfDrawnSize(m_capture.GetHeight(), m_displayScale));
}

Point SnipBench::GetImageCorner() const
{
    return {GetImageOffset(m_windowWidth, GetHalfDrawnSize(m_capture.GetWidth(), m_displayScale)),
            GetImageOffset(m_windowHeight, GetHalfDrawnSize(m_capture.GetHeight(), m_displayScale))};
}

Point SnipBench::GetImagePosition() const
{
    const Point corner = GetImageCorner();
    return {static_cast<std::uint16_t>(static_cast<std::uint16_t>(m_cursorX) - corner.x),
            static_cast<std::uint16_t>(static_cast<std::uint16_t>(m_cursorY) - corner.y)};
}

std::int32_t SnipBench::ToCaptureX(std::int32_t windowX) const
{
    return ToCapture(windowX, GetImageCorner().x, m_displayScale);
}

std::int32_t SnipBench::ToCaptureY(std::int32_t windowY) const
{
    return ToCapture(windowY, GetImageCorner().y, m_displayScale);
}

// By the height alone, so that the magnifier is square.
void SnipBench::ChooseMagnifierSize()
{
    std::uint16_t size = s_minMagnifierSize;
    while (size < m_windowHeight >> 3)
        size = static_cast<std::uint16_t>(size << 1);
    m_magnifierWidth = size;
    m_magnifierHeight = size;
}

// Powers of one half, so that a window pixel always stands for whole capture pixels.
void SnipBench::ChooseDisplayScale()
{
    const float width = m_capture.GetWidth();
    const float height = m_capture.GetHeight();
    const float fit = std::min(static_cast<float>(m_windowWidth) / width, static_cast<float>(m_windowHeight) / height);
    m_displayScale = 1.0F;
    while (m_displayScale > fit)
        m_displayScale *= 0.5F;
}

} // namespace Orvik::Graphics::Tools
