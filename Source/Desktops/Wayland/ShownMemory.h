#pragma once

// Wayland's own.

#include "Core/System/Types/Rectangle.h"
#include "Desktops/Wayland/ProxyHandle.h"
#include "Desktops/Wayland/SharedMemory.h"

#include <cstdint>
#include <span>
#include <vector>
#include <wayland-client.h>

namespace Orvik::Desktops::Wayland
{

/// Memory with a picture, and the compositor's hold on it: blue, green, red and alpha of each pixel, tightly packed.
class ShownMemory
{
public:
    /// Both sides at least 1. False if it can't be had.
    [[nodiscard]] bool Create(wl_shm* shm, std::uint32_t width, std::uint32_t height);

    [[nodiscard]] SharedMemory& GetMemory() { return m_memory; }
    [[nodiscard]] std::uint32_t* GetPixels() const { return reinterpret_cast<std::uint32_t*>(m_memory.GetBytes()); }
    [[nodiscard]] wl_buffer* GetBuffer() const { return m_buffer.get(); }

    /// Makes the pixels of the area opaque, except those that show nothing at all. What was blended over an opaque
    /// picture has its final colour, but an alpha by which the compositor would mix in what is below the surface.
    void MakeOpaque(const System::Math::Rectangle& area);

    /// Whether the compositor may be reading it.
    [[nodiscard]] bool IsHeld() const { return m_isHeld; }
    /// The compositor is about to get it.
    void Hand() { m_isHeld = true; }

    /// What another memory shows there is newer than what this one has. `area` lies within it.
    void Outdate(const System::Math::Rectangle& area);
    /// Takes all that is newer from the other memory, which is of the same size.
    void Update(const ShownMemory& newer);

private:
    SharedMemory m_memory;
    ProxyHandle<wl_buffer> m_buffer;
    std::uint32_t m_width = 0;
    std::uint32_t m_height = 0;
    bool m_isHeld = false;
    std::vector<System::Math::Rectangle> m_outdated;
};

} // namespace Orvik::Desktops::Wayland
