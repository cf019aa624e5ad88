#pragma once

#include "Core/System/Types/Point.h"
#include "Desktops/SurfaceKind.h"

#include <cstdint>

namespace Orvik::Desktops
{

enum class WindowType : std::uint8_t
{
    Overlapped = 1, ///< an ordinary window with a frame
    Popup,          ///< a dialog
    ToolPopup,      ///< without frame and task-bar entry
    Overlay,        ///< always on top, no task-bar entry, not activated until asked for, per-pixel alpha
    MessageOnly,    ///< without a surface
};

struct WindowSize
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

/// What a desktop makes a window from. The texts are UTF-8, not owned, and outlive the window.
struct WindowDescription
{
    const char* name;             ///< the title
    const char* className;        ///< as it was registered
    System::Math::Point position; ///< of the client area's top left corner, screen pixels
    WindowSize size;              ///< of the client area, pixels
    WindowType type;
    SurfaceKind surfaceKind;
};

} // namespace Orvik::Desktops
