#pragma once

// Windows' own: the system's header. The build leaves out what is rarely needed of it, and the macros
// that hide functions of the standard library.
#include <windows.h>
