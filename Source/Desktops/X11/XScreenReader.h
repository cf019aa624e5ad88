#pragma once

// X11's own.

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

/// Reads pictures of the root window, in the server's own pixel format. It uses memory shared with the server if the
/// server accepts a descriptor of it (MIT-SHM 1.2 over a local socket), and otherwise the connection: for a remote
/// server, an old one, or one behind a relay. The descriptor stands for the memory itself; a number could mean another
/// memory. Main thread.
class XScreenReader
{
public:
    /// Prepares shared memory for pictures of up to that size in pixels, both at least 1. It is no failure if there is
    /// none. If `lender` has memory that is large enough, pictures are read into that; null for never. The lender has
    /// to outlive the reader.
    XScreenReader(::Display* display, unsigned int width, unsigned int height, const LentMemory* lender = nullptr);
    ~XScreenReader() = default;
    XScreenReader(const XScreenReader&) = delete;
    XScreenReader& operator=(const XScreenReader&) = delete;

    /// The picture of that part of the root, which has to be inside of it. Null if the server refuses. Its rows may be
    /// the shared memory, so they can only be read: the next `Read` changes them, and `Release` and the reader's end
    /// free them. Lent memory is valid until its lender draws in it.
    [[nodiscard]] XImagePointer Read(int x, int y, unsigned int width, unsigned int height);

    /// Gives the shared memory back. The pictures that were read have to be gone. The next `Read` shares memory again.
    void Release() { m_memory.Release(); }

private:
    [[nodiscard]] XImagePointer MakeSharedImage(XSharedMemory& memory, unsigned int width, unsigned int height);
    [[nodiscard]] XImagePointer ReadShared(int x, int y, unsigned int width, unsigned int height);
    /// The memory to read into; null if there is none and none can be made.
    [[nodiscard]] XSharedMemory* FindMemory();

    ::Display* m_display;
    ::Window m_root;
    const LentMemory* m_lender;
    XSharedMemory m_memory;  ///< our own
    std::size_t m_bytes = 0; ///< how much memory to share; 0 if none can be shared
};

} // namespace Orvik::Desktops::X11
