#pragma once

#include "Desktops/PixelMemory.h"

#include <memory>

namespace Orvik::Desktops::Wayland
{

struct Session;

/// Memory that the compositor shows. There are two of it once a frame is begun before the compositor has read the last.
class PixelSurface final : public PixelMemory
{
public:
    /// `session` is null where there is no compositor. The memory is lent until the first frame.
    explicit PixelSurface(std::shared_ptr<Session> session) noexcept;
    ~PixelSurface() override;

    [[nodiscard]] bool Create(NativeWindow window, std::uint32_t width, std::uint32_t height) override;
    void Destroy() noexcept override;
    [[nodiscard]] std::uint32_t* GetPixels() const noexcept override;
    [[nodiscard]] std::size_t GetStride() const noexcept override;
    [[nodiscard]] bool BeginFrame() override;
    void Present(std::span<const System::Math::Rectangle> areas) override;
    void EndFrame() override;

private:
    struct Native;

    std::shared_ptr<Session> m_session;
    std::unique_ptr<Native> m_native;
};

} // namespace Orvik::Desktops::Wayland
