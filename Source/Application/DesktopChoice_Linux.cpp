#include "Desktops/DesktopChoice.h"

#include "Desktops/X11/X11Desktop.h"

namespace Orvik::Desktops
{

DesktopChoice ChooseDesktop()
{
    static X11::X11Desktop s_x11;
    return {s_x11, "it is the only one on this system"};
}

} // namespace Orvik::Desktops
