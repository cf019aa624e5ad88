#include "Desktops/Wayland/SharedMemory.h"

#include <cstdint>
#include <fcntl.h>
#include <limits>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace Orvik::Desktops::Wayland
{

SharedMemory::~SharedMemory()
{
    Destroy();
}

bool SharedMemory::Create(std::size_t bytes)
{
    Destroy();
    // The protocol counts bytes in 32 bits with a sign.
    if (bytes == 0 || bytes > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
        return false;
    Systems::FileDescriptor descriptor(memfd_create("SnipBench", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!descriptor.IsOpen() || ftruncate(descriptor.Get(), static_cast<off_t>(bytes)) != 0)
        return false;
    // A compositor may trust memory that can't become shorter. One that has no seals has to be trusted itself.
    fcntl(descriptor.Get(), F_ADD_SEALS, F_SEAL_SHRINK);
    void* const mapped = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor.Get(), 0);
    if (mapped == MAP_FAILED)
        return false;
    m_descriptor = std::move(descriptor);
    m_bytes = static_cast<unsigned char*>(mapped);
    m_size = bytes;
    return true;
}

void SharedMemory::Destroy() noexcept
{
    if (m_bytes != nullptr)
        munmap(m_bytes, m_size);
    m_bytes = nullptr;
    m_size = 0;
    m_descriptor = Systems::FileDescriptor();
}

} // namespace Orvik::Desktops::Wayland
