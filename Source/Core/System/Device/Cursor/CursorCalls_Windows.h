#pragma once

// Private to the Windows half.

#include "Core/System/Platform/Headers/WindowsHeaders.h"

namespace Orvik::System::Device::Cursor
{

/// The system's functions that the pointer is read and moved with. A table, so that a test can refuse them and stand
/// for desktops that aren't there.
struct CursorCalls
{
    decltype(&::GetCursorPos) getCursorPos = &::GetCursorPos;
    decltype(&::GetSystemMetrics) getSystemMetrics = &::GetSystemMetrics;
    decltype(&::SendInput) sendInput = &::SendInput;
};

[[nodiscard]] inline CursorCalls& GetCursorCalls()
{
    static CursorCalls s_calls;
    return s_calls;
}

} // namespace Orvik::System::Device::Cursor
