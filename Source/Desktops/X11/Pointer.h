#pragma once

#include "Desktops/DesktopPointer.h"

namespace Orvik::Desktops::X11
{

/// The pointer of the X server. It is moved by XTEST, so that the windows below get the motion.
class Pointer final : public DesktopPointer
{
public:
    [[nodiscard]] Failure ReadPosition(System::Math::Point& position) override;
    [[nodiscard]] Failure Move(const System::Math::Point& position) override;
    void Show(bool visible) override;

private:
    bool m_isVisible = true; ///< the server counts
};

} // namespace Orvik::Desktops::X11
