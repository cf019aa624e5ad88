#pragma once

// X11's own: Xlib, without those of its macros that other headers use as names. They become types
// and constants, so that X code looks as usual. Include further X headers after this one.

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XInput2.h>

#undef Bool
#undef Status
using Bool = int;
using Status = int;
#undef None
#undef Always
#undef Success
inline constexpr long None = 0L;
inline constexpr int Always = 2;
inline constexpr int Success = 0;
