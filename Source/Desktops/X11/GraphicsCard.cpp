#include "Desktops/X11/GraphicsCard.h"

#include "Desktops/X11/XConnection.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>

namespace Orvik::Desktops::X11
{
namespace
{

/// The ways in which a driver reaches the screen through the server: two general ones, and one vendor's own.
constexpr std::array<const char*, 3> s_extensions = {"DRI3", "DRI2", "NV-GLX"};

bool HasExtension(::Display* display, const char* name)
{
    int opcode = 0;
    int event = 0;
    int error = 0;
    return XQueryExtension(display, name, &opcode, &event, &error) != False;
}

/// A card that programs may draw with has a device file for that.
bool HasRenderNode()
{
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/dri", error))
    {
        if (entry.path().filename().string().starts_with("renderD") && access(entry.path().c_str(), R_OK | W_OK) == 0)
            return true;
    }
    return false;
}

} // namespace

GraphicsCard FindGraphicsCard()
{
    ::Display* const display = GetXDisplay();
    if (display == nullptr)
        return {false, "there is no X server"};
    const bool isOffered = std::any_of(s_extensions.begin(), s_extensions.end(),
                                       [display](const char* name) { return HasExtension(display, name); });
    if (!isOffered)
        return {false, "the X server offers no graphics card"};
    if (!HasRenderNode())
        return {false, "no graphics card can be opened"};
    return {true, "the X server offers a graphics card"};
}

} // namespace Orvik::Desktops::X11
