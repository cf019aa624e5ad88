#pragma once

namespace Orvik::System::Desktop
{

/// What is known of the desktop's graphics card before a driver is loaded.
struct GraphicsCard
{
    bool isReachable = false;
    const char* reason = ""; ///< why it is thought to be, or not to be
};

/// Looks whether OpenGL would be drawn by a graphics card here, rather than by a program that pretends to be one.
[[nodiscard]] GraphicsCard FindGraphicsCard();

} // namespace Orvik::System::Desktop
