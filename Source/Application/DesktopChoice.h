#pragma once

#include "Desktops/Desktop.h"

#include <string>

namespace Orvik::Desktops
{

struct DesktopChoice
{
    Desktop& desktop;
    std::string reason; ///< why this one was chosen
};

/// Chooses one of the desktops that the operating system has. The only place that knows them all.
[[nodiscard]] DesktopChoice ChooseDesktop();

} // namespace Orvik::Desktops
