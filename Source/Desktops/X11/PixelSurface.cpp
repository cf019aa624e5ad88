#include "Desktops/X11/PixelSurface.h"

#include "Desktops/X11/PixelPacking.h"
#include "Desktops/X11/XConnection.h"
#include "Desktops/X11/XHandle.h"
#include "Desktops/X11/XSharedMemory.h"
#include "Desktops/X11/XWindow.h"

#include <X11/extensions/XShm.h>
#include <cstdlib>
#include <optional>
#include <vector>

namespace Orvik::Desktops::X11
{
namespace
{

struct ImageDeleter
{
    void operator()(XImage* image) const noexcept
    {
        image->data = nullptr; // the image owns neither
        image->obdata = nullptr;
        XDestroyImage(image);
    }
};
using ImagePointer = std::unique_ptr<XImage, ImageDeleter>;

constexpr int s_scanlinePad = 32;

} // namespace

/// The memory, and how the server gets it: directly if the window's pixels have our format; else through a second
/// memory in the window's format.
struct PixelSurface::Native
{
    Native(::Display* connection, ::Window target, const XWindowAttributes& attributes, std::uint32_t w,
           std::uint32_t h);
    ~Native();
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;

    [[nodiscard]] bool IsUsable() const { return GetXDisplay() == display; }
    [[nodiscard]] std::size_t GetImageBytes() const
    {
        return static_cast<std::size_t>(image->bytes_per_line) * static_cast<std::size_t>(image->height);
    }
    [[nodiscard]] bool Prepare();
    void Pack(const System::Math::Rectangle& area);
    void Put(const System::Math::Rectangle& area);

    ::Display* display;
    ::Window window;
    std::uint32_t width;
    std::uint32_t height;
    int top; ///< the rows of the window above the memory's first
    GC context;
    PixelPacking packing;
    ImagePointer image;
    XSharedMemory shared;                ///< the memory of the image's pixels, if the server can read ours
    std::vector<std::byte> own;          ///< the memory of the image's pixels otherwise
    std::vector<std::uint32_t> unpacked; ///< our pixels, if the image's have another format
};

PixelSurface::Native::Native(::Display* connection, ::Window target, const XWindowAttributes& attributes,
                             std::uint32_t w, std::uint32_t h)
    : display(connection),
      window(target),
      width(w),
      height(h),
      top(attributes.height - static_cast<int>(h)),
      context(XCreateGC(connection, target, 0, nullptr)),
      packing(*attributes.visual)
{
    image.reset(XCreateImage(display, attributes.visual, static_cast<unsigned int>(attributes.depth), ZPixmap, 0,
                             nullptr, width, height, s_scanlinePad, 0));
}

PixelSurface::Native::~Native()
{
    if (IsUsable())
        XFreeGC(display, context);
}

bool PixelSurface::Native::Prepare()
{
    if (image == nullptr || !packing.SetImage(*image))
        return false;
    if (shared.Create(display, GetImageBytes(), XSharedMemory::Writer::Us))
    {
        image->data = shared.GetSegment().shmaddr;
        image->obdata = reinterpret_cast<char*>(&shared.GetSegment()); // XShmPutImage reads it from here
    }
    else
    {
        own.resize(GetImageBytes());
        image->data = reinterpret_cast<char*>(own.data());
    }
    if (!packing.IsCopy())
        unpacked.resize(std::size_t{width} * height);
    return true;
}

void PixelSurface::Native::Pack(const System::Math::Rectangle& area)
{
    if (packing.IsCopy())
        return;
    const auto left = static_cast<std::size_t>(area.left);
    const auto count = static_cast<std::size_t>(area.right - area.left);
    for (std::int32_t y = area.top; y < area.bottom; ++y)
    {
        char* const row = image->data + std::ptrdiff_t{y} * image->bytes_per_line;
        packing.PackRow(&unpacked[static_cast<std::size_t>(y) * width + left], count, left, row);
    }
}

void PixelSurface::Native::Put(const System::Math::Rectangle& area)
{
    const auto areaWidth = static_cast<unsigned int>(area.right - area.left);
    const auto areaHeight = static_cast<unsigned int>(area.bottom - area.top);
    if (shared.IsShared())
        XShmPutImage(display, window, context, image.get(), area.left, area.top, area.left, area.top + top, areaWidth,
                     areaHeight, False);
    else
        XPutImage(display, window, context, image.get(), area.left, area.top, area.left, area.top + top, areaWidth,
                  areaHeight);
}

PixelSurface::PixelSurface(LentMemory& lender) noexcept : m_lender(lender)
{
}

PixelSurface::~PixelSurface()
{
    Destroy();
}

bool PixelSurface::Create(NativeWindow window, std::uint32_t width, std::uint32_t height)
{
    Destroy();
    ::Display* const display = GetXDisplay();
    if (display == nullptr)
        return false;
    XErrorScope errors(display);
    XWindowAttributes attributes = {};
    if (XGetWindowAttributes(display, ToXWindow(window), &attributes) == 0 || attributes.c_class != InputOutput ||
        attributes.visual == nullptr)
        return false;
    m_native.reset(new Native(display, ToXWindow(window), attributes, width, height));
    if (!m_native->Prepare() || errors.HasFailed())
        m_native.reset();
    else if (m_native->shared.IsShared())
        m_lender.Offer(m_native->shared);
    return m_native != nullptr;
}

void PixelSurface::Destroy() noexcept
{
    if (m_native)
        m_lender.Withdraw(m_native->shared);
    m_native.reset();
}

std::uint32_t* PixelSurface::GetPixels() const noexcept
{
    if (!m_native)
        return nullptr;
    return m_native->packing.IsCopy() ? reinterpret_cast<std::uint32_t*>(m_native->image->data)
                                      : m_native->unpacked.data();
}

std::size_t PixelSurface::GetStride() const noexcept
{
    return m_native ? m_native->width : 0;
}

bool PixelSurface::BeginFrame()
{
    if (!m_native || !m_native->IsUsable())
        return false;
    m_lender.Withdraw(m_native->shared);
    XSync(m_native->display, False);
    return m_native->IsUsable();
}

void PixelSurface::Present(std::span<const System::Math::Rectangle> areas)
{
    if (!m_native || !m_native->IsUsable())
        return;
    for (const System::Math::Rectangle& area : areas)
    {
        m_native->Pack(area);
        m_native->Put(area);
    }
    XFlush(m_native->display);
}

} // namespace Orvik::Desktops::X11
