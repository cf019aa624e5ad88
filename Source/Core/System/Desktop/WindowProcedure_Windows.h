#pragma once

// Private to the Windows half.

#include "Core/System/Platform/WindowsHeaders.h"

namespace Orvik::System::Desktop
{

/// Turns the messages of a `Window`, which comes with the native window's creation, into its events. What nobody
/// dealt with goes to the system's own procedure.
LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

} // namespace Orvik::System::Desktop
