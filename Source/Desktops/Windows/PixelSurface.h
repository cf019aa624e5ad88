#pragma once

#include "Desktops/PixelMemory.h"

#include <memory>

namespace Orvik::Desktops::Windows
{

/// Memory that belongs to a bitmap of the system.
class PixelSurface final : public PixelMemory
{
public:
    PixelSurface() noexcept;
    ~PixelSurface() override;

    [[nodiscard]] bool Create(NativeWindow window, std::uint32_t width, std::uint32_t height) override;
    void Destroy() noexcept override;
    [[nodiscard]] std::uint32_t* GetPixels() const noexcept override;
    [[nodiscard]] std::size_t GetStride() const noexcept override;
    [[nodiscard]] bool BeginFrame() override;
    void Present(std::span<const System::Math::Rectangle> areas) override;
    void EndFrame() override {} // what is presented is shown

private:
    struct Native;

    std::unique_ptr<Native> m_native;
};

} // namespace Orvik::Desktops::Windows
