#pragma once

namespace Orvik::Desktops
{

/// What is known about the desktop's graphics card before a driver is loaded.
struct GraphicsCard
{
    bool isReachable = false;
    const char* reason = ""; ///< the reason for the answer
};

} // namespace Orvik::Desktops
