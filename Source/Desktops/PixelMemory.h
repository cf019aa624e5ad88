#pragma once

#include "Core/System/Types/Rectangle.h"
#include "Desktops/NativeWindow.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace Orvik::Desktops
{

/// A desktop's part of a `System::Desktop::PixelSurface`: memory that is shown on a window, aligned to its lower left
/// corner. The operations promise the same as those of that class.
class PixelMemory
{
public:
    PixelMemory() = default;
    PixelMemory(const PixelMemory&) = delete;
    PixelMemory& operator=(const PixelMemory&) = delete;
    virtual ~PixelMemory() = default; ///< gives the memory back

    [[nodiscard]] virtual bool Create(NativeWindow window, std::uint32_t width, std::uint32_t height) = 0;
    virtual void Destroy() noexcept = 0;
    [[nodiscard]] virtual std::uint32_t* GetPixels() const noexcept = 0;
    [[nodiscard]] virtual std::size_t GetStride() const noexcept = 0;
    [[nodiscard]] virtual bool BeginFrame() = 0;
    virtual void Present(std::span<const System::Math::Rectangle> areas) = 0;
    virtual void EndFrame() = 0;
};

} // namespace Orvik::Desktops
