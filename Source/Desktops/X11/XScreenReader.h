#pragma once

// X11's own.

#include "Desktops/X11/LentMemory.h"
#include "Desktops/X11/X11Headers.h"
#include "Desktops/X11/XHandle.h"
#include "Desktops/X11/XSharedMemory.h"

#include <X11/extensions/XShm.h>
#include <cstddef>

namespace Orvik::Desktops::X11
{

struct XImageDeleter
{
    void operator()(XImage* image) const noexcept { XDestroyImage(image); }
};
using XImagePointer = std::unique_ptr<XImage, XImageDeleter>;

/// Reads pictures of the root window, in the server's own pixel format. It goes through memory shared with the server
/// where the server takes a descriptor of it from us (MIT-SHM 1.2 over a local socket), and through the connection
/// otherwise: from a remote server, an old one, one behind a relay. What the server is handed is the memory itself, and
/// no number that could mean another's. Main thread.
class XScreenReader
{
public:
    /// Makes the shared memory ready for pictures of up to that size in pixels, both at least 1. That it can't be had
    /// is no failure. Where `lender` has memory that is large enough, pictures are read into that; null for never. It
    /// has to outlive the reader.
    XScreenReader(::Display* display, unsigned int width, unsigned int height, const LentMemory* lender = nullptr);
    ~XScreenReader() = default;
    XScreenReader(const XScreenReader&) = delete;
    XScreenReader& operator=(const XScreenReader&) = delete;

    /// The picture of that part of the root, which has to lie within it. Null if the server refuses. Its rows are to be
    /// copied from where they lie, which may be the shared memory: it can't be written to, the next `Read` changes it,
    /// and it goes with `Release` and with the reader. Lent memory is good until its lender draws in it.
    [[nodiscard]] XImagePointer Read(int x, int y, unsigned int width, unsigned int height);

    /// Gives the shared memory back. The pictures that were read have to be gone. The next `Read` shares memory anew.
    void Release() { m_memory.Release(); }

    [[nodiscard]] bool UsesSharedMemory() const { return m_memory.IsShared(); }

private:
    [[nodiscard]] XImagePointer MakeSharedImage(XSharedMemory& memory, unsigned int width, unsigned int height);
    [[nodiscard]] XImagePointer ReadShared(int x, int y, unsigned int width, unsigned int height);
    /// What to read into; null if there is none, and none can be had.
    [[nodiscard]] XSharedMemory* FindMemory();

    ::Display* m_display;
    ::Window m_root;
    const LentMemory* m_lender;
    XSharedMemory m_memory;  ///< our own
    std::size_t m_bytes = 0; ///< how much memory to share; 0 if none can be
};

} // namespace Orvik::Desktops::X11
