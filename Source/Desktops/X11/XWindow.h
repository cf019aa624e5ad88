#pragma once

#include "Desktops/NativeWindow.h"
#include "Desktops/X11/X11Headers.h"

namespace Orvik::Desktops::X11
{

/// The X window of a handle that this desktop has given out.
[[nodiscard]] constexpr ::Window ToXWindow(NativeWindow window) noexcept
{
    return static_cast<::Window>(window);
}

} // namespace Orvik::Desktops::X11
