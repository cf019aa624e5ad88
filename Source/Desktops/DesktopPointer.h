#pragma once

#include "Core/System/Types/Point.h"
#include "Desktops/Failure.h"

namespace Orvik::Desktops
{

/// The pointer of a desktop. The main thread.
class DesktopPointer
{
public:
    /// Writes where the pointer is now, in screen pixels. On failure `position` stays as it was.
    [[nodiscard]] virtual Failure ReadPosition(System::Math::Point& position) = 0;

    /// Moves the pointer to a position in screen pixels, so that the window under it gets a motion.
    [[nodiscard]] virtual Failure Move(const System::Math::Point& position) = 0;

    /// Shows or hides the pointer's picture. Saying the same twice means it once.
    virtual void Show(bool visible) = 0;

protected:
    DesktopPointer() = default;
    ~DesktopPointer() = default;
};

} // namespace Orvik::Desktops
