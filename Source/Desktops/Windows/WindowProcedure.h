#pragma once

// Windows' own.

#include "Systems/Windows/WindowsHeaders.h"

namespace Orvik::Desktops::Windows
{

/// Turns the messages of a `Window`, which comes with the native window's creation, into its events. What nobody
/// dealt with goes to the system's own procedure.
LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/// Gives the pointer back that the window has from a press to the release; does nothing if another has it.
void ReleasePointer(HWND window);

} // namespace Orvik::Desktops::Windows
