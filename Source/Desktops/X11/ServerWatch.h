#pragma once

// X11's own.

namespace Orvik::Desktops::X11
{

/// Watches the connection to the X server, from a thread of its own, for the one way in which a lost server can hang
/// the process: a software renderer that is sending a picture when the server goes never stops sending. If a driver
/// call doesn't come back within a second of the loss, the process ends with exit code 1 and a line on standard error.
/// Everything else about a lost server is the main thread's. Call it once; `descriptor` is the connection's socket.
void WatchServer(int descriptor);

/// Marks a call that the driver talks to the server in. Scopes don't nest. The thread of the X connection.
class DriverCallScope
{
public:
    DriverCallScope() noexcept;
    ~DriverCallScope();
    DriverCallScope(const DriverCallScope&) = delete;
    DriverCallScope& operator=(const DriverCallScope&) = delete;
};

} // namespace Orvik::Desktops::X11
