#pragma once

// X11's own.

#include "Desktops/LentMemory.h"
#include "Desktops/X11/X11Headers.h"

#include <X11/extensions/XShm.h>
#include <cstddef>
#include <cstdint>

namespace Orvik::Desktops::X11
{

/// Memory that is shared with the X server: MIT-SHM 1.2, which passes the memory itself by a descriptor. The number of
/// a segment could mean another memory in a container. Main thread.
class XSharedMemory
{
public:
    enum class Writer : std::uint8_t
    {
        Server, ///< we can only read
        Us,
    };

    XSharedMemory() = default;
    ~XSharedMemory() { Release(); }
    XSharedMemory(const XSharedMemory&) = delete;
    XSharedMemory& operator=(const XSharedMemory&) = delete;

    /// Allocates that many bytes, all zero, and shares them. False if the server is remote or old, or there is not
    /// enough memory; nothing is shared then.
    [[nodiscard]] bool Create(::Display* display, std::size_t bytes, Writer writer);

    /// Gives the memory back after the server has done what it was asked to do before.
    void Release() noexcept;

    /// In bytes; 0 without memory.
    [[nodiscard]] std::size_t GetSize() const { return m_bytes; }
    [[nodiscard]] bool IsShared() const { return m_segment.shmaddr != nullptr; }
    /// For Xlib's calls: the address, null without memory, and the server's name of it. It stays in place.
    [[nodiscard]] XShmSegmentInfo& GetSegment() { return m_segment; }

private:
    [[nodiscard]] bool Attach(int memory);
    void Unmap() noexcept;

    ::Display* m_display = nullptr;
    XShmSegmentInfo m_segment = {}; ///< without an address if there is no memory
    std::size_t m_bytes = 0;
};

using LentMemory = Desktops::LentMemory<XSharedMemory>;

} // namespace Orvik::Desktops::X11
