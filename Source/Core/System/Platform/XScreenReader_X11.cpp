#include "Core/System/Platform/XScreenReader.h"

#include "Core/System/Platform/XConnection.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <sys/ipc.h>
#include <sys/shm.h>

namespace Orvik::System::Platform
{
namespace
{

std::size_t GetImageBytes(const XImage& image)
{
    return static_cast<std::size_t>(image.bytes_per_line) * static_cast<std::size_t>(image.height);
}

} // namespace

XScreenReader::XScreenReader(::Display* display, unsigned int width, unsigned int height)
    : m_display(display), m_root(DefaultRootWindow(display))
{
    if (XShmQueryExtension(display) == 0)
        return;
    const XImagePointer largest = MakeSharedImage(width, height);
    if (largest == nullptr || !AllocateSegment(GetImageBytes(*largest)))
        return;
    if (!AttachServer())
        ReleaseSegment();
}

XScreenReader::~XScreenReader()
{
    if (!UsesSharedMemory())
        return;
    if (m_display == GetXDisplay())
    {
        XShmDetach(m_display, &m_segment);
        XSync(m_display, False);
    }
    ReleaseSegment();
}

XImagePointer XScreenReader::Read(int x, int y, unsigned int width, unsigned int height)
{
    const XErrorScope errors(m_display);
    if (XImagePointer image = ReadShared(x, y, width, height))
        return image;
    return XImagePointer(XGetImage(m_display, m_root, x, y, width, height, AllPlanes, ZPixmap));
}

XImagePointer XScreenReader::MakeSharedImage(unsigned int width, unsigned int height)
{
    const int screen = DefaultScreen(m_display);
    return XImagePointer(XShmCreateImage(m_display, DefaultVisual(m_display, screen),
                                         static_cast<unsigned int>(DefaultDepth(m_display, screen)), ZPixmap,
                                         m_segment.shmaddr, &m_segment, width, height));
}

XImagePointer XScreenReader::ReadShared(int x, int y, unsigned int width, unsigned int height)
{
    if (!UsesSharedMemory())
        return nullptr;
    XImagePointer image = MakeSharedImage(width, height);
    // The screen may have grown since.
    if (image == nullptr || GetImageBytes(*image) > m_segmentBytes)
        return nullptr;
    if (XShmGetImage(m_display, m_root, image.get(), x, y, AllPlanes) == 0)
        return nullptr;
    return image;
}

bool XScreenReader::AllocateSegment(std::size_t bytes)
{
    const int id = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    if (id == -1)
        return false;
    void* const address = shmat(id, nullptr, 0);
    // Linux lets others attach a segment that is marked for removal, so that it goes with the last user from here on,
    // even if this process is killed at its next step.
    shmctl(id, IPC_RMID, nullptr);
    if (reinterpret_cast<std::intptr_t>(address) == -1)
        return false;
    m_segment.shmid = id;
    m_segment.shmaddr = static_cast<char*>(address);
    m_segment.readOnly = False;
    m_segmentBytes = bytes;
    return true;
}

bool XScreenReader::AttachServer()
{
    XErrorScope errors(m_display);
    if (XShmAttach(m_display, &m_segment) == 0 || errors.HasFailed())
        return false;
    if (ReachesOurMemory())
        return true;
    XShmDetach(m_display, &m_segment);
    return false;
}

bool XScreenReader::ReachesOurMemory()
{
    // A server outside our container attaches whatever segment has this number on its side, and is content with it.
    // One pixel tells: a server that writes here can't leave two different values both unchanged.
    constexpr std::array<unsigned char, 2> fillings = {0x5A, 0xA5};
    for (const unsigned char filling : fillings)
    {
        const XImagePointer pixel = MakeSharedImage(1, 1);
        if (pixel == nullptr || GetImageBytes(*pixel) > m_segmentBytes)
            return false;
        std::array<unsigned char, 16> before = {};
        const std::size_t bytes = std::min(GetImageBytes(*pixel), before.size());
        before.fill(filling);
        std::memcpy(m_segment.shmaddr, before.data(), bytes);
        if (XShmGetImage(m_display, m_root, pixel.get(), 0, 0, AllPlanes) == 0)
            return false;
        if (std::memcmp(m_segment.shmaddr, before.data(), bytes) != 0)
            return true;
    }
    return false;
}

void XScreenReader::ReleaseSegment()
{
    if (m_segment.shmaddr != nullptr)
        shmdt(m_segment.shmaddr);
    m_segment = {};
    m_segmentBytes = 0;
}

} // namespace Orvik::System::Platform
