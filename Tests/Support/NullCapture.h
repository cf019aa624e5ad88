#pragma once

#include "Desktops/PlatformCaptureContext.h"

#include <vector>

namespace Orvik::Tests
{

/// Reads the picture that the null desktop has as its screen.
class NullCapture final : public Desktops::PlatformCaptureContext
{
public:
    [[nodiscard]] bool Initialize(const System::Math::Rectangle& region) override;
    void AwaitRepaint() override {}
    [[nodiscard]] Desktops::Failure CopyScreen() override;
    [[nodiscard]] System::Types::Buffer<const unsigned char> GetPixels() const override;

private:
    System::Math::Rectangle m_region;
    std::vector<unsigned char> m_pixels; ///< none until the resources are acquired
};

} // namespace Orvik::Tests
