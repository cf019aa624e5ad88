#pragma once

#include "Core/System/Types/Point.h"
#include "Desktops/Failure.h"

namespace Orvik::Desktops
{

/// The pointer of a desktop. Main thread.
class DesktopPointer
{
public:
    /// Writes where the pointer is now, in screen pixels. After a failure `position` is unchanged.
    [[nodiscard]] virtual Failure ReadPosition(System::Math::Point& position) = 0;

    /// Moves the pointer to a position in screen pixels, so that the window under it gets a motion event.
    [[nodiscard]] virtual Failure Move(const System::Math::Point& position) = 0;

    /// Shows or hides the pointer's picture. A second call with the same value changes nothing.
    virtual void Show(bool visible) = 0;

protected:
    DesktopPointer() = default;
    ~DesktopPointer() = default;
};

} // namespace Orvik::Desktops
