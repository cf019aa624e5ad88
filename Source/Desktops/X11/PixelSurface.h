#pragma once

#include "Desktops/PixelMemory.h"
#include "Desktops/X11/XSharedMemory.h"

#include <memory>

namespace Orvik::Desktops::X11
{

/// Memory that the X server shows; shared with the server if it supports that.
class PixelSurface final : public PixelMemory
{
public:
    /// The memory is lent until the first frame. `lender` has to outlive the surface.
    explicit PixelSurface(LentMemory& lender) noexcept;
    ~PixelSurface() override;

    [[nodiscard]] bool Create(NativeWindow window, std::uint32_t width, std::uint32_t height) override;
    void Destroy() noexcept override;
    [[nodiscard]] std::uint32_t* GetPixels() const noexcept override;
    [[nodiscard]] std::size_t GetStride() const noexcept override;
    [[nodiscard]] bool BeginFrame() override;
    void Present(std::span<const System::Math::Rectangle> areas) override;
    void EndFrame() override {} // what is presented is on its way

private:
    struct Native;

    LentMemory& m_lender;
    std::unique_ptr<Native> m_native;
};

} // namespace Orvik::Desktops::X11
