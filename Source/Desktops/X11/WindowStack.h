#pragma once

// X11's own.

#include "Desktops/X11/X11Headers.h"

namespace Orvik::Desktops::X11
{

/// Whether a shown window is above `window` and shares pixels with it. Both are children of the root, like override-
/// redirect windows and the frames of managed ones. Waits for the server four times at most, however many windows there
/// are; they may come and go meanwhile.
[[nodiscard]] bool IsCovered(::Display* display, ::Window window);

} // namespace Orvik::Desktops::X11
