#include "Desktops/Windows/PixelSurface.h"

#include "Systems/Windows/WindowsHeaders.h"

namespace Orvik::Desktops::Windows
{

/// A system bitmap in memory of ours, and the device context from which it is copied.
struct PixelSurface::Native
{
    Native(HWND owner, std::uint32_t w, std::uint32_t h);
    ~Native();
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;

    [[nodiscard]] bool IsUsable() const { return previous != nullptr; }
    /// The number of the window's rows above the memory's first row.
    [[nodiscard]] int GetTop() const;

    HWND window;
    std::uint32_t width;
    std::uint32_t height;
    void* pixels = nullptr;
    HBITMAP bitmap = nullptr;
    HDC context = nullptr;
    HGDIOBJ previous = nullptr; ///< what the context had before the bitmap
};

PixelSurface::Native::Native(HWND owner, std::uint32_t w, std::uint32_t h) : window(owner), width(w), height(h)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = static_cast<LONG>(width);
    info.bmiHeader.biHeight = -static_cast<LONG>(height); // rows from the top
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    HDC const screen = GetDC(window);
    bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    context = CreateCompatibleDC(screen);
    ReleaseDC(window, screen);
    if (bitmap != nullptr && context != nullptr)
        previous = SelectObject(context, bitmap);
}

PixelSurface::Native::~Native()
{
    if (previous != nullptr)
        SelectObject(context, previous);
    if (context != nullptr)
        DeleteDC(context);
    if (bitmap != nullptr)
        DeleteObject(bitmap);
}

int PixelSurface::Native::GetTop() const
{
    RECT client = {};
    GetClientRect(window, &client);
    return static_cast<int>(client.bottom) - static_cast<int>(height);
}

PixelSurface::PixelSurface() noexcept = default;
PixelSurface::~PixelSurface() = default;

bool PixelSurface::Create(NativeWindow window, std::uint32_t width, std::uint32_t height)
{
    Destroy();
    auto* const owner = reinterpret_cast<HWND>(window);
    if (IsWindow(owner) == FALSE)
        return false;
    m_native.reset(new Native(owner, width, height));
    if (!m_native->IsUsable())
        m_native.reset();
    return m_native != nullptr;
}

void PixelSurface::Destroy() noexcept
{
    m_native.reset();
}

std::uint32_t* PixelSurface::GetPixels() const noexcept
{
    return m_native ? static_cast<std::uint32_t*>(m_native->pixels) : nullptr;
}

std::size_t PixelSurface::GetStride() const noexcept
{
    return m_native ? m_native->width : 0;
}

// The system collects drawing calls: changing the memory before it has read it would change what it shows.
bool PixelSurface::BeginFrame()
{
    GdiFlush();
    return m_native != nullptr;
}

void PixelSurface::Present(std::span<const System::Math::Rectangle> areas)
{
    if (!m_native)
        return;
    HDC const target = GetDC(m_native->window);
    const int top = m_native->GetTop();
    for (const System::Math::Rectangle& area : areas)
    {
        BitBlt(target, area.left, area.top + top, area.right - area.left, area.bottom - area.top, m_native->context,
               area.left, area.top, SRCCOPY);
    }
    ReleaseDC(m_native->window, target);
    GdiFlush();
}

} // namespace Orvik::Desktops::Windows
