#include "Desktops/Wayland/ShownMemory.h"

#include "Desktops/Wayland/OutputTransform.h"

#include <algorithm>
#include <cstring>

namespace Orvik::Desktops::Wayland
{
bool ShownMemory::Create(wl_shm* shm, std::uint32_t width, std::uint32_t height)
{
    static constexpr wl_buffer_listener s_listener = {.release = [](void* data, wl_buffer*)
                                                      { static_cast<ShownMemory*>(data)->m_isHeld = false; }};
    const std::size_t bytes = std::size_t{width} * height * s_pixelBytes;
    if (shm == nullptr || !m_memory.Create(bytes))
        return false;
    m_width = width;
    m_height = height;
    wl_shm_pool* const pool = wl_shm_create_pool(shm, m_memory.GetDescriptor(), static_cast<std::int32_t>(bytes));
    m_buffer.reset(wl_shm_pool_create_buffer(pool, 0, static_cast<std::int32_t>(width),
                                             static_cast<std::int32_t>(height),
                                             static_cast<std::int32_t>(width * s_pixelBytes), WL_SHM_FORMAT_ARGB8888));
    wl_shm_pool_destroy(pool); // the buffer keeps it
    wl_buffer_add_listener(m_buffer.get(), &s_listener, this);
    m_outdated.clear();
    return true;
}

void ShownMemory::MakeOpaque(const System::Math::Rectangle& area)
{
    constexpr std::uint32_t opaque = 0xFF000000U;
    const auto width = static_cast<std::size_t>(area.right - area.left);
    for (std::int32_t row = area.top; row < area.bottom; ++row)
    {
        std::uint32_t* const first =
            GetPixels() + static_cast<std::size_t>(row) * m_width + static_cast<std::size_t>(area.left);
        std::transform(first, first + width, first,
                       [](std::uint32_t pixel) { return pixel | ((pixel & opaque) != 0 ? opaque : 0U); });
    }
}

void ShownMemory::Outdate(const System::Math::Rectangle& area)
{
    // Many small areas are as long in copying as all is.
    constexpr std::size_t mostAreas = 64;
    if (m_outdated.size() < mostAreas)
        m_outdated.push_back(area);
    else
        m_outdated = {{0, 0, static_cast<std::int32_t>(m_width), static_cast<std::int32_t>(m_height)}};
}

void ShownMemory::Update(const ShownMemory& newer)
{
    for (const System::Math::Rectangle& area : m_outdated)
    {
        const std::size_t bytes = static_cast<std::size_t>(area.right - area.left) * s_pixelBytes;
        for (std::int32_t row = area.top; row < area.bottom; ++row)
        {
            const std::size_t first = static_cast<std::size_t>(row) * m_width + static_cast<std::size_t>(area.left);
            std::memcpy(GetPixels() + first, newer.GetPixels() + first, bytes);
        }
    }
    m_outdated.clear();
}

} // namespace Orvik::Desktops::Wayland
