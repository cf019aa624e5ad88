#include "Desktops/X11/XScreenReader.h"

#include "Desktops/X11/XConnection.h"

namespace Orvik::Desktops::X11
{
namespace
{

std::size_t GetImageBytes(const XImage& image)
{
    return static_cast<std::size_t>(image.bytes_per_line) * static_cast<std::size_t>(image.height);
}

} // namespace

XScreenReader::XScreenReader(::Display* display, unsigned int width, unsigned int height, const LentMemory* lender)
    : m_display(display), m_root(DefaultRootWindow(display)), m_lender(lender)
{
    const XImagePointer largest = MakeSharedImage(m_memory, width, height);
    if (largest == nullptr)
        return;
    m_bytes = GetImageBytes(*largest);
    if (FindMemory() == nullptr)
        m_bytes = 0;
}

XImagePointer XScreenReader::Read(int x, int y, unsigned int width, unsigned int height)
{
    const XErrorScope errors(m_display);
    if (XImagePointer image = ReadShared(x, y, width, height))
        return image;
    return XImagePointer(XGetImage(m_display, m_root, x, y, width, height, AllPlanes, ZPixmap));
}

XImagePointer XScreenReader::MakeSharedImage(XSharedMemory& memory, unsigned int width, unsigned int height)
{
    const int screen = DefaultScreen(m_display);
    return XImagePointer(XShmCreateImage(m_display, DefaultVisual(m_display, screen),
                                         static_cast<unsigned int>(DefaultDepth(m_display, screen)), ZPixmap,
                                         memory.GetSegment().shmaddr, &memory.GetSegment(), width, height));
}

XImagePointer XScreenReader::ReadShared(int x, int y, unsigned int width, unsigned int height)
{
    XSharedMemory* const memory = FindMemory();
    if (memory == nullptr)
        return nullptr;
    XImagePointer image = MakeSharedImage(*memory, width, height);
    // The screen may have grown since.
    if (image == nullptr || GetImageBytes(*image) > m_bytes)
        return nullptr;
    if (XShmGetImage(m_display, m_root, image.get(), x, y, AllPlanes) == 0)
        return nullptr;
    return image;
}

XSharedMemory* XScreenReader::FindMemory()
{
    if (m_bytes == 0)
        return nullptr;
    if (XSharedMemory* const lent = m_lender != nullptr ? m_lender->Borrow(m_bytes) : nullptr)
        return lent;
    if (m_memory.IsShared() || m_memory.Create(m_display, m_bytes, XSharedMemory::Writer::Server))
        return &m_memory;
    return nullptr;
}

} // namespace Orvik::Desktops::X11
