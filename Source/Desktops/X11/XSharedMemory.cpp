#include "Desktops/X11/XSharedMemory.h"

#include "Desktops/X11/XConnection.h"
#include "Desktops/X11/XHandle.h"
#include "Systems/Linux/FileDescriptor.h"

#include <X11/Xlib-xcb.h>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>
#include <xcb/shm.h>

namespace Orvik::Desktops::X11
{
namespace
{

/// Descriptors came with version 1.2 of the extension.
bool TakesDescriptors(::Display* display)
{
    int major = 0;
    int minor = 0;
    Bool ignored = False;
    return XShmQueryVersion(display, &major, &minor, &ignored) != False && std::pair(major, minor) >= std::pair(1, 2);
}

/// Memory without a name, which goes with its last user. The server can't shrink it: reading the lost part would end
/// this process.
Systems::FileDescriptor MakeMemory(std::size_t bytes)
{
    Systems::FileDescriptor memory(memfd_create("screen", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!memory.IsOpen() || ftruncate(memory.Get(), static_cast<off_t>(bytes)) != 0 ||
        fcntl(memory.Get(), F_ADD_SEALS, F_SEAL_SHRINK) != 0)
        return Systems::FileDescriptor();
    return memory;
}

} // namespace

bool XSharedMemory::Create(::Display* display, std::size_t bytes, Writer writer)
{
    Release();
    if (!TakesDescriptors(display))
        return false;
    Systems::FileDescriptor memory = MakeMemory(bytes);
    if (!memory.IsOpen())
        return false;
    const int protection = writer == Writer::Us ? PROT_READ | PROT_WRITE : PROT_READ;
    void* const address = mmap(nullptr, bytes, protection, MAP_SHARED, memory.Get(), 0);
    if (address == MAP_FAILED)
        return false;
    m_display = display;
    m_bytes = bytes;
    m_segment.shmaddr = static_cast<char*>(address);
    m_segment.readOnly = False;
    if (Attach(memory.Release()))
        return true;
    Unmap();
    return false;
}

void XSharedMemory::Release() noexcept
{
    if (!IsShared())
        return;
    if (m_display == GetXDisplay())
    {
        XShmDetach(m_display, &m_segment);
        XSync(m_display, False);
    }
    Unmap();
}

// Xlib has no call for this. XCB closes the descriptor. Over a network it gets lost, and the server refuses.
bool XSharedMemory::Attach(int memory)
{
    xcb_connection_t* const connection = XGetXCBConnection(m_display);
    const std::uint32_t segment = xcb_generate_id(connection);
    m_segment.shmseg = segment;
    const XHandle<xcb_generic_error_t, std::free> error(
        xcb_request_check(connection, xcb_shm_attach_fd_checked(connection, segment, memory, 0)));
    return error == nullptr && xcb_connection_has_error(connection) == 0;
}

void XSharedMemory::Unmap() noexcept
{
    munmap(m_segment.shmaddr, m_bytes);
    m_segment = {};
    m_bytes = 0;
}

} // namespace Orvik::Desktops::X11
