#include "Application/DesktopChoice.h"

#include "Desktops/Windows/WindowsDesktop.h"

namespace Orvik::Desktops
{

DesktopChoice ChooseDesktop()
{
    static Windows::WindowsDesktop s_windows;
    return {s_windows, "it is the only one on this system"};
}

} // namespace Orvik::Desktops
