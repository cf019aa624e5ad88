#pragma once

#include "Desktops/Wayland/ScreenCapture.h"

namespace Orvik::Desktops::Wayland
{

struct Session;

/// The picture of a display by ext-image-copy-capture, the way that compositors of all families are to have.
class ImageCopyCapture final : public ScreenCapture
{
public:
    /// The session outlives the object.
    explicit ImageCopyCapture(Session& session) : m_session(session) {}

    [[nodiscard]] const char* GetName() const override { return "ext-image-copy-capture"; }
    [[nodiscard]] bool IsOffered() override;
    [[nodiscard]] Failure Read(const Output& output, CaptureTarget& target) override;

private:
    Session& m_session;
};

} // namespace Orvik::Desktops::Wayland
