#pragma once

#include "Desktops/PlatformCaptureContext.h"
#include "Desktops/X11/XSharedMemory.h"

#include <memory>

namespace Orvik::Desktops::X11
{

/// Reads a region of the X server's root window.
class ScreenCapture final : public PlatformCaptureContext
{
public:
    /// Pictures are read into lent memory if there is any. `lender` has to outlive the capture.
    explicit ScreenCapture(const LentMemory& lender);
    ~ScreenCapture() override;

    [[nodiscard]] bool Initialize(const System::Math::Rectangle& region) override;
    void AwaitRepaint() override;
    [[nodiscard]] Failure CopyScreen() override;
    [[nodiscard]] System::Types::Buffer<const unsigned char> GetPixels() const override;

private:
    struct Native;

    std::unique_ptr<Native> m_native; ///< never null
};

} // namespace Orvik::Desktops::X11
