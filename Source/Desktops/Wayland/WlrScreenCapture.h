#pragma once

#include "Desktops/Wayland/ScreenCapture.h"

namespace Orvik::Desktops::Wayland
{

struct Session;

/// The picture of a display by wlr-screencopy, which compositors of that family have.
class WlrScreenCapture final : public ScreenCapture
{
public:
    /// The session outlives the object.
    explicit WlrScreenCapture(Session& session) : m_session(session) {}

    [[nodiscard]] const char* GetName() const override { return "wlr-screencopy"; }
    [[nodiscard]] bool IsOffered() override;
    [[nodiscard]] Failure Read(const Output& output, CaptureTarget& target) override;

private:
    Session& m_session;
};

} // namespace Orvik::Desktops::Wayland
