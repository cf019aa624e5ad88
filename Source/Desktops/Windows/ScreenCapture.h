#pragma once

#include "Desktops/PlatformCaptureContext.h"

#include <memory>

namespace Orvik::Desktops::Windows
{

/// Copies a region of the screen into a bitmap.
class ScreenCapture final : public PlatformCaptureContext
{
public:
    ScreenCapture();
    ~ScreenCapture() override;

    [[nodiscard]] bool Initialize(const System::Math::Rectangle& region) override;
    void AwaitRepaint() override;
    [[nodiscard]] Failure CopyScreen() override;
    [[nodiscard]] System::Types::Buffer<const unsigned char> GetPixels() const override;

private:
    struct Native;

    std::unique_ptr<Native> m_native; ///< never null
};

} // namespace Orvik::Desktops::Windows
