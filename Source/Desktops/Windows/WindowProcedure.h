#pragma once

// Windows' own.

#include "Systems/Windows/WindowsHeaders.h"

namespace Orvik::Desktops::Windows
{

/// Turns the messages of a `Window`, which is a parameter of the native window's creation, into its events. Messages
/// that aren't handled go to the system's own procedure.
LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/// Releases the pointer, which the window captures from a press to the release; does nothing if another window has it.
void ReleasePointer(HWND window);

} // namespace Orvik::Desktops::Windows
