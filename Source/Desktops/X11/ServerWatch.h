#pragma once

// X11's own.

namespace Orvik::Desktops::X11
{

/// Watches the connection to the X server, from a thread of its own, for the one case in which a lost server can hang
/// the process: a software renderer that is sending a picture when the server ends never stops sending. If a driver
/// call doesn't return within a second of the loss, the process ends with exit code 1 and a line on standard error. The
/// main thread handles everything else about a lost server. Call it once; `descriptor` is the connection's socket.
void WatchServer(int descriptor);

/// Marks a call in which the driver talks to the server. Scopes don't nest. Thread of the X connection.
class DriverCallScope
{
public:
    DriverCallScope() noexcept;
    ~DriverCallScope();
    DriverCallScope(const DriverCallScope&) = delete;
    DriverCallScope& operator=(const DriverCallScope&) = delete;
};

} // namespace Orvik::Desktops::X11
