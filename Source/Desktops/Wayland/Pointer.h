#pragma once

#include "Desktops/DesktopPointer.h"

#include <memory>

namespace Orvik::Desktops::Wayland
{

struct Session;

/// The program's own pointer on its overlay. The compositor's is reported only over our surfaces, and stays where it is
/// when the own one is moved.
class Pointer final : public DesktopPointer
{
public:
    /// Null where there is no compositor.
    void SetSession(std::shared_ptr<Session> session);

    [[nodiscard]] Failure ReadPosition(System::Math::Point& position) override;
    [[nodiscard]] Failure Move(const System::Math::Point& position) override;
    void Show(bool visible) override;

private:
    std::shared_ptr<Session> m_session;
};

} // namespace Orvik::Desktops::Wayland
