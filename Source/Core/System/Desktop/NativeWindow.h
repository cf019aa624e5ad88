#pragma once

#include <cstdint>

namespace Orvik::System::Desktop
{

/// The system's handle of a window, opaque outside the halves: an HWND, or an X11 window id.
enum class NativeWindow : std::uintptr_t
{
    None = 0,
};

} // namespace Orvik::System::Desktop
