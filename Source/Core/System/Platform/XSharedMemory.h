#pragma once

// Private to the X11 halves.

#include "Core/System/Platform/Headers/X11Headers.h"

#include <cstddef>
#include <cstdint>

namespace Orvik::System::Platform
{

/// Memory that the X server has in common with us: MIT-SHM 1.2, which passes the memory itself by a descriptor. It
/// can be no other's, as a number of a segment could in another container. Main thread.
class XSharedMemory
{
public:
    XSharedMemory() = default;
    ~XSharedMemory() { Release(); }
    XSharedMemory(const XSharedMemory&) = delete;
    XSharedMemory& operator=(const XSharedMemory&) = delete;

    /// Gets memory of that many bytes, all zero, and shares it. False if the server is a remote one or refuses, or the
    /// memory can't be had; there is none then.
    [[nodiscard]] bool Create(::Display* display, std::size_t bytes);

    /// Gives the memory back. What the server has been asked to do with it before is still done.
    void Release() noexcept;

    /// Null without memory.
    [[nodiscard]] std::byte* GetAddress() const { return m_address; }
    [[nodiscard]] std::size_t GetSize() const { return m_size; }
    /// The server's name of it.
    [[nodiscard]] std::uint32_t GetSegment() const { return m_segment; }

private:
    [[nodiscard]] bool Share(::Display* display, int descriptor);

    ::Display* m_display = nullptr;
    std::byte* m_address = nullptr;
    std::size_t m_size = 0;
    std::uint32_t m_segment = 0;
};

} // namespace Orvik::System::Platform
