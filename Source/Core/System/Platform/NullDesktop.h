#pragma once

#include "Core/System/Device/DisplayDescriptor.h"
#include "Core/System/Math/Point.h"
#include "Core/System/Math/Rectangle.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace Orvik::System::Desktop
{
class Window;
} // namespace Orvik::System::Desktop

namespace Orvik::System::Platform
{

/// The desktop of the null halves: it is made of these values, takes every call, and remembers what was asked of it.
/// With it the logic above the desktop runs, and is tested, where there is no screen. One thread.
struct NullDesktop
{
    [[nodiscard]] static NullDesktop& GetInstance();

    /// Back to the start values.
    void Reset() { *this = NullDesktop(); }

    // Displays: what the display cache finds. Ids are given by the cache.
    std::vector<Device::Display::DisplayDescriptor> displays;
    std::uint16_t activeDisplayId = Device::Display::InvalidDisplayId;

    // The pointer.
    Math::Point cursorPosition;
    std::vector<Math::Point> cursorMoves; ///< every position that was set
    bool cursorFails = false;             ///< reading and moving fail
    bool cursorVisible = true;

    // Captures.
    bool captureInitializes = true;
    bool captureSucceeds = true;
    /// The pixel at a screen position, as blue | green << 8 | red << 16 | fourth byte << 24.
    std::function<std::uint32_t(std::int32_t x, std::int32_t y)> screenPixel;
    std::vector<Math::Rectangle> captures; ///< every region that was copied

    // Surfaces.
    bool hasGraphicsCard = true;
    bool surfacesCreate = true;
    std::vector<std::vector<Math::Rectangle>> presentations; ///< what each frame showed anew

    // Windows.
    bool windowRegisters = true;
    bool windowCreates = true;
    /// "RegisterClass", "UnregisterClass", "Create", "Destroy", "Show", "Hide", "SetClickThrough(true)",
    /// "SetClickThrough(false)" and "BringToFront", in the order of the calls. Pumping isn't remembered.
    std::vector<std::string> windowCalls;
    std::size_t answers = 0; ///< how often a window has handled what others wait for
    /// What the message pump finds, one a call. Each is run with the window that pumps.
    std::deque<std::function<void(Desktop::Window&)>> messages;
    std::string windowTitle; ///< the last one that was set
    std::uint64_t waits = 0; ///< how often a window has waited for a message
};

} // namespace Orvik::System::Platform
