#pragma once

// Wayland's own.

#include "Desktops/Wayland/Globals.h"
#include "Desktops/Wayland/WaylandConnection.h"

#include <memory>
#include <string>

namespace Orvik::Desktops::Wayland
{

/// The connection and all that hangs on it. Whatever has an object of the protocol holds the session, so that it goes
/// last.
struct Session
{
    explicit Session(std::shared_ptr<WaylandConnection> opened) : connection(std::move(opened)), globals(*connection) {}

    std::shared_ptr<WaylandConnection> connection;
    Globals globals;
};

} // namespace Orvik::Desktops::Wayland
