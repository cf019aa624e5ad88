#pragma once

#include "Desktops/DesktopPointer.h"

namespace Orvik::Desktops::Windows
{

/// The pointer of the system. It is moved through the input queue.
class Pointer final : public DesktopPointer
{
public:
    [[nodiscard]] Failure ReadPosition(System::Math::Point& position) override;
    [[nodiscard]] Failure Move(const System::Math::Point& position) override;
    void Show(bool visible) override;

private:
    bool m_isVisible = true; ///< the system counts
};

} // namespace Orvik::Desktops::Windows
