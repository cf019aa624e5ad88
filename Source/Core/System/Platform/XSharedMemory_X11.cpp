#include "Core/System/Platform/XSharedMemory.h"

#include "Core/System/Platform/FileDescriptor.h"
#include "Core/System/Platform/XConnection.h"

#include <X11/Xlib-xcb.h>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/mman.h>
#include <unistd.h>
#include <xcb/shm.h>

namespace Orvik::System::Platform
{
namespace
{

struct FreeDeleter
{
    void operator()(void* reply) const noexcept { std::free(reply); }
};

template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, FreeDeleter>;

/// Whether the server takes descriptors, which came with version 1.2.
bool TakesDescriptors(xcb_connection_t* connection)
{
    const xcb_query_extension_reply_t* const extension = xcb_get_extension_data(connection, &xcb_shm_id);
    if (extension == nullptr || extension->present == 0)
        return false;
    const ReplyPointer<xcb_shm_query_version_reply_t> version(
        xcb_shm_query_version_reply(connection, xcb_shm_query_version(connection), nullptr));
    return version != nullptr &&
           (version->major_version > 1 || (version->major_version == 1 && version->minor_version >= 2));
}

} // namespace

bool XSharedMemory::Create(::Display* display, std::size_t bytes)
{
    Release();
    if (!TakesDescriptors(XGetXCBConnection(display)))
        return false;
    const FileDescriptor file(memfd_create("screen", MFD_CLOEXEC));
    if (!file.IsOpen() || ftruncate(file.Get(), static_cast<off_t>(bytes)) != 0)
        return false;
    void* const address = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file.Get(), 0);
    if (address == MAP_FAILED)
        return false;
    m_display = display;
    m_address = static_cast<std::byte*>(address);
    m_size = bytes;
    if (Share(display, file.Get()))
        return true;
    munmap(m_address, m_size);
    m_address = nullptr;
    m_size = 0;
    return false;
}

bool XSharedMemory::Share(::Display* display, int descriptor)
{
    xcb_connection_t* const connection = XGetXCBConnection(display);
    const int passed = fcntl(descriptor, F_DUPFD_CLOEXEC, 0); // the connection closes what it passes
    if (passed < 0)
        return false;
    m_segment = xcb_generate_id(connection);
    const ReplyPointer<xcb_generic_error_t> error(
        xcb_request_check(connection, xcb_shm_attach_fd_checked(connection, m_segment, passed, 0)));
    return error == nullptr;
}

void XSharedMemory::Release() noexcept
{
    if (m_address == nullptr)
        return;
    if (m_display == GetXDisplay())
    {
        xcb_shm_detach(XGetXCBConnection(m_display), m_segment);
        XFlush(m_display);
    }
    munmap(m_address, m_size);
    m_address = nullptr;
    m_size = 0;
}

} // namespace Orvik::System::Platform
