#pragma once

#include "Desktops/PlatformCaptureContext.h"
#include "Desktops/Wayland/ScreenCapture.h"

#include <memory>
#include <vector>

namespace Orvik::Desktops::Wayland
{

struct Session;

/// The ways to get the picture of a display, in the order in which they are tried. The session outlives them.
[[nodiscard]] std::vector<std::unique_ptr<ScreenCapture>> MakeScreenCaptures(Session& session);

/// Reads the display that a region of the screen is, by the first way that the compositor offers.
class CaptureContext final : public PlatformCaptureContext
{
public:
    /// `session` is null where there is no compositor.
    explicit CaptureContext(std::shared_ptr<Session> session);
    ~CaptureContext() override;

    [[nodiscard]] bool Initialize(const System::Math::Rectangle& region) override;
    void AwaitRepaint() override;
    [[nodiscard]] Failure CopyScreen() override;
    [[nodiscard]] System::Types::Buffer<const unsigned char> GetPixels() const override;

private:
    [[nodiscard]] Failure ReadOutput(ScreenCapture& way);
    /// Puts the part of the region that the display has into the own pixels.
    void CutRegion(const SharedMemory& picture, const System::Math::Rectangle& display);

    std::shared_ptr<Session> m_session;
    std::vector<std::unique_ptr<ScreenCapture>> m_ways;
    System::Math::Rectangle m_region;
    SharedMemory m_picture;            ///< of the display, where no memory is lent
    std::vector<unsigned char> m_cut;  ///< of the region, where that isn't the display
    const void* m_delivered = nullptr; ///< the pixels of the last copy
};

} // namespace Orvik::Desktops::Wayland
