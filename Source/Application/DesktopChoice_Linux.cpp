#include "Application/DesktopChoice.h"

#include "Desktops/Wayland/WaylandDesktop.h"
#include "Desktops/X11/X11Desktop.h"

#include <cstdlib>
#include <string_view>

namespace Orvik::Desktops
{
namespace
{

constexpr const char* s_byHand = "ORVIK_DESKTOP says so";

/// The value of an environment variable, or an empty text if it isn't set.
std::string_view GetVariable(const char* name)
{
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

} // namespace

DesktopChoice ChooseDesktop()
{
    static Wayland::WaylandDesktop s_wayland;
    static X11::X11Desktop s_x11;
    const std::string_view wanted = GetVariable("ORVIK_DESKTOP");
    if (wanted == "wayland")
        return {s_wayland, s_byHand};
    if (wanted == "x11")
        return {s_x11, s_byHand};
    if (GetVariable("WAYLAND_DISPLAY").empty() && GetVariable("WAYLAND_SOCKET").empty())
        return {s_x11, "WAYLAND_DISPLAY isn't set"};
    const Failure failure = s_wayland.Connect();
    if (!failure)
        return {s_wayland, "the compositor that WAYLAND_DISPLAY names answers"};
    s_x11.SetWaylandFailure(*failure);
    return {s_x11, "WAYLAND_DISPLAY is set, but " + *failure};
}

} // namespace Orvik::Desktops
