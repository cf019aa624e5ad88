#include "Core/System/Platform/XScreenReader.h"

#include "Core/System/Platform/FileDescriptor.h"
#include "Core/System/Platform/XConnection.h"

#include <X11/Xlib-xcb.h>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>
#include <xcb/shm.h>

namespace Orvik::System::Platform
{
namespace
{

std::size_t GetImageBytes(const XImage& image)
{
    return static_cast<std::size_t>(image.bytes_per_line) * static_cast<std::size_t>(image.height);
}

/// Taking descriptors came with version 1.2 of the extension.
bool TakesDescriptors(::Display* display)
{
    int major = 0;
    int minor = 0;
    Bool ignored = False;
    return XShmQueryVersion(display, &major, &minor, &ignored) != False && std::pair(major, minor) >= std::pair(1, 2);
}

/// Memory without a name, which goes with its last user. The server can't make it smaller: reading what it had cut off
/// would end this process.
FileDescriptor MakeMemory(std::size_t bytes)
{
    FileDescriptor memory(memfd_create("screen", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!memory.IsOpen() || ftruncate(memory.Get(), static_cast<off_t>(bytes)) != 0 ||
        fcntl(memory.Get(), F_ADD_SEALS, F_SEAL_SHRINK) != 0)
        return FileDescriptor();
    return memory;
}

} // namespace

XScreenReader::XScreenReader(::Display* display, unsigned int width, unsigned int height)
    : m_display(display), m_root(DefaultRootWindow(display))
{
    if (!TakesDescriptors(display))
        return;
    const XImagePointer largest = MakeSharedImage(width, height);
    if (largest == nullptr)
        return;
    m_bytes = GetImageBytes(*largest);
    if (!Share())
        m_bytes = 0;
}

XScreenReader::~XScreenReader()
{
    Release();
}

XImagePointer XScreenReader::Read(int x, int y, unsigned int width, unsigned int height)
{
    const XErrorScope errors(m_display);
    if (XImagePointer image = ReadShared(x, y, width, height))
        return image;
    return XImagePointer(XGetImage(m_display, m_root, x, y, width, height, AllPlanes, ZPixmap));
}

void XScreenReader::Release()
{
    if (!UsesSharedMemory())
        return;
    if (m_display == GetXDisplay())
    {
        XShmDetach(m_display, &m_segment);
        XSync(m_display, False);
    }
    Unmap();
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
    if (m_bytes == 0 || (!UsesSharedMemory() && !Share()))
        return nullptr;
    XImagePointer image = MakeSharedImage(width, height);
    // The screen may have grown since.
    if (image == nullptr || GetImageBytes(*image) > m_bytes)
        return nullptr;
    if (XShmGetImage(m_display, m_root, image.get(), x, y, AllPlanes) == 0)
        return nullptr;
    return image;
}

bool XScreenReader::Share()
{
    FileDescriptor memory = MakeMemory(m_bytes);
    if (!memory.IsOpen())
        return false;
    // Only the server writes.
    void* const address = mmap(nullptr, m_bytes, PROT_READ, MAP_SHARED, memory.Get(), 0);
    if (reinterpret_cast<std::intptr_t>(address) == -1)
        return false;
    m_segment.shmaddr = static_cast<char*>(address);
    m_segment.readOnly = False;
    if (AttachServer(memory.Release()))
        return true;
    Unmap();
    return false;
}

// Xlib has no call for it. XCB closes the descriptor. Over a network it gets lost, and the server refuses.
bool XScreenReader::AttachServer(int memory)
{
    xcb_connection_t* const connection = XGetXCBConnection(m_display);
    const std::uint32_t segment = xcb_generate_id(connection);
    m_segment.shmseg = segment;
    const XHandle<xcb_generic_error_t, std::free> error(
        xcb_request_check(connection, xcb_shm_attach_fd_checked(connection, segment, memory, 0)));
    return error == nullptr && xcb_connection_has_error(connection) == 0;
}

void XScreenReader::Unmap()
{
    munmap(m_segment.shmaddr, m_bytes);
    m_segment = {};
}

} // namespace Orvik::System::Platform
