#pragma once

// X11's own.

#include "Core/System/Desktop/KeyCode.h"
#include "Desktops/X11/X11Headers.h"

namespace Orvik::Desktops::X11
{

using System::Desktop::KeyCode;

/// The key of a key event, as Windows gives it in the layout that was in force at the event.
[[nodiscard]] KeyCode TranslateKey(const XKeyEvent& event);

/// The keysym of a key event at the unshifted level of the event's layout.
[[nodiscard]] KeySym GetUnshiftedSymbol(const XKeyEvent& event);

/// Whether `release` and the next event are an auto-repeat, as a server without detectable auto-repeat sends it.
[[nodiscard]] bool IsRepeatPair(const XKeyEvent& release, const XEvent& next);

} // namespace Orvik::Desktops::X11
