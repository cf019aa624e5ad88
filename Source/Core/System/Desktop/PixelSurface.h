#pragma once

#include "Core/System/Types/Rectangle.h"
#include "Desktops/NativeWindow.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace Orvik::Desktops
{
class PixelMemory;
} // namespace Orvik::Desktops

namespace Orvik::System::Desktop
{

using Desktops::NativeWindow;

/// Memory that is shown on a window, aligned to the window's lower left corner. If the window is larger, the rest above
/// and to the right is left alone. The desktop's simplest way to show pixels, without a driver. Thread of the window.
class PixelSurface
{
public:
    PixelSurface() noexcept;
    ~PixelSurface();
    PixelSurface(const PixelSurface&) = delete;
    PixelSurface& operator=(const PixelSurface&) = delete;

    /// Makes the memory for a window, both sides at least 1, in pixels. Its contents are undefined. False if the memory
    /// isn't available, if the window is gone, or if our colours can't be converted to its own; there is no memory
    /// then.
    [[nodiscard]] bool Create(NativeWindow window, std::uint32_t width, std::uint32_t height);

    /// Gives the memory back. The window keeps what it shows.
    void Destroy() noexcept;

    /// Blue, green, red and alpha of each pixel, rows from the top, `GetStride` pixels from one to the next. Null
    /// without memory. To be written between `BeginFrame` and `EndFrame` alone,
    /// and before it is presented.
    [[nodiscard]] std::uint32_t* GetPixels() const noexcept;
    [[nodiscard]] std::size_t GetStride() const noexcept;

    /// Waits until the desktop has read the last frame from the memory. False if the desktop is gone.
    [[nodiscard]] bool BeginFrame();

    /// Shows parts of the memory, in pixels from its top left corner; they lie within it. Some desktops show them when
    /// the frame ends.
    void Present(std::span<const Math::Rectangle> areas);

    /// All parts of the frame have been presented. After it the memory may be another, with the same contents.
    void EndFrame();

private:
    std::unique_ptr<Desktops::PixelMemory> m_memory; ///< null before the first `Create`
};

} // namespace Orvik::System::Desktop
