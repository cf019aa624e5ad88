#pragma once

// Private to the X11 halves.

#include "Core/System/Platform/Headers/X11Headers.h"
#include "Core/System/Platform/XHandle.h"

#include <X11/extensions/XShm.h>
#include <cstddef>

namespace Orvik::System::Platform
{

struct XImageDeleter
{
    void operator()(XImage* image) const noexcept { XDestroyImage(image); }
};
using XImagePointer = std::unique_ptr<XImage, XImageDeleter>;

/// Reads pictures of the root window, in the server's own pixel format. It goes through memory shared with the server
/// (MIT-SHM) where the server can reach ours, and through the connection where it can't: a remote one, another user's,
/// one outside our container. Main thread.
class XScreenReader
{
public:
    /// Makes the shared memory ready for pictures of up to that size in pixels, both at least 1. That it can't be had
    /// is no failure.
    XScreenReader(::Display* display, unsigned int width, unsigned int height);
    ~XScreenReader();
    XScreenReader(const XScreenReader&) = delete;
    XScreenReader& operator=(const XScreenReader&) = delete;

    /// The picture of that part of the root, which has to lie within it. Null if the server refuses. The pixels may be
    /// the shared ones: the next `Read` changes them, and they go with the reader.
    [[nodiscard]] XImagePointer Read(int x, int y, unsigned int width, unsigned int height);

    [[nodiscard]] bool UsesSharedMemory() const { return m_segment.shmaddr != nullptr; }

private:
    [[nodiscard]] XImagePointer MakeSharedImage(unsigned int width, unsigned int height);
    [[nodiscard]] XImagePointer ReadShared(int x, int y, unsigned int width, unsigned int height);
    [[nodiscard]] bool AllocateSegment(std::size_t bytes);
    [[nodiscard]] bool AttachServer();
    [[nodiscard]] bool ReachesOurMemory();
    void ReleaseSegment();

    ::Display* m_display;
    ::Window m_root;
    XShmSegmentInfo m_segment = {}; ///< without an address if the memory isn't shared
    std::size_t m_segmentBytes = 0;
};

} // namespace Orvik::System::Platform
