#pragma once

namespace Orvik::Desktops
{

/// What is known about the desktop's graphics card before a driver is loaded.
struct GraphicsCard
{
    bool isReachable = false;
    const char* reason = ""; ///< why it is thought to be, or not to be
};

} // namespace Orvik::Desktops
