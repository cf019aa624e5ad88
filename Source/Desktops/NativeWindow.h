#pragma once

#include <cstdint>

namespace Orvik::Desktops
{

/// A desktop's handle of a window, opaque to all others: an HWND, or an X11 window id.
enum class NativeWindow : std::uintptr_t
{
    None = 0,
};

} // namespace Orvik::Desktops
