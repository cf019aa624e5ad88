#pragma once

// Private to the Windows half.

#include "Core/System/Platform/Headers/WindowsHeaders.h"

namespace Orvik::System::Desktop
{

/// The system's functions that keys are told apart with. A table, so that a test can stand for any keyboard.
struct KeyboardCalls
{
    decltype(&::MapVirtualKeyW) mapVirtualKey = &::MapVirtualKeyW;
};

[[nodiscard]] inline KeyboardCalls& GetKeyboardCalls()
{
    static KeyboardCalls s_calls;
    return s_calls;
}

/// Turns the messages of a `Window`, which comes with the native window's creation, into its events. What nobody
/// dealt with goes to the system's own procedure.
LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/// Gives the pointer back that the window has from a press to the release; does nothing if another has it.
void ReleasePointer(HWND window);

} // namespace Orvik::System::Desktop
