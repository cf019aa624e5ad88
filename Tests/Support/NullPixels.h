#pragma once

#include "Desktops/PixelMemory.h"

#include <vector>

namespace Orvik::Tests
{

/// Memory that the null desktop shows: it records which parts.
class NullPixels final : public Desktops::PixelMemory
{
public:
    [[nodiscard]] bool Create(Desktops::NativeWindow window, std::uint32_t width, std::uint32_t height) override;
    void Destroy() noexcept override { m_pixels.clear(); }
    [[nodiscard]] std::uint32_t* GetPixels() const noexcept override;
    [[nodiscard]] std::size_t GetStride() const noexcept override { return m_pixels.empty() ? 0 : m_width; }
    [[nodiscard]] bool BeginFrame() override;
    void Present(std::span<const System::Math::Rectangle> areas) override;
    void EndFrame() override;

private:
    std::size_t m_width = 0;
    mutable std::vector<std::uint32_t> m_pixels; ///< none before `Create`
};

} // namespace Orvik::Tests
