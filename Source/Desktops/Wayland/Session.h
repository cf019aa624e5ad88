#pragma once

// Wayland's own.

#include "Core/System/Types/Rectangle.h"
#include "Desktops/NativeWindow.h"
#include "Desktops/Wayland/Globals.h"
#include "Desktops/Wayland/Seat.h"
#include "Desktops/Wayland/SharedMemory.h"
#include "Desktops/Wayland/WaylandConnection.h"

#include <memory>
#include <utility>
#include <vector>

namespace Orvik::Desktops::Wayland
{

class WindowSurface;

/// The connection and all that hangs on it. All that has an object of the protocol holds the session, so that it goes
/// last. The main thread.
struct Session
{
    explicit Session(std::shared_ptr<WaylandConnection> opened)
        : connection(std::move(opened)), globals(*connection), seat(globals.seat, globals.relativePointer)
    {
        // Which devices there are, and the keyboard's layout.
        [[maybe_unused]] const bool isReported = connection->Roundtrip() && connection->Roundtrip();
    }

    /// The surface of one of our windows; null if it is gone, or the handle isn't one.
    [[nodiscard]] WindowSurface* FindSurface(NativeWindow window) const;
    /// The same by the object of the protocol.
    [[nodiscard]] WindowSurface* FindSurface(const wl_surface* proxy) const;

    std::shared_ptr<WaylandConnection> connection;
    Globals globals;
    Seat seat;
    LentMemory lentMemory;
    std::vector<WindowSurface*> surfaces; ///< of all windows, which add and remove themselves
    WindowSurface* overlay = nullptr;     ///< the one that has claimed the pointer
    bool (*isEnding)() = nullptr;         ///< as `RunHandlers` says
};

} // namespace Orvik::Desktops::Wayland
