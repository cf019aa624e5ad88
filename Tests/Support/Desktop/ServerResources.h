#pragma once

namespace Orvik::Tests
{

class XSession;

/// How many things the X server keeps for the client that made the window: windows, pictures, cursors, memory. By the
/// X-Resource extension; 0 if the server hasn't got it, or there is no such window.
[[nodiscard]] unsigned int CountServerResources(const XSession& session, unsigned long window);

} // namespace Orvik::Tests
