#pragma once

#include "Desktops/Desktop.h"

#include <string>

namespace Orvik::Desktops
{

struct DesktopChoice
{
    Desktop& desktop;
    std::string reason; ///< why it is this one
};

/// Decides which of the desktops that the operating system has is the one to run on. The one place that knows them all.
[[nodiscard]] DesktopChoice ChooseDesktop();

} // namespace Orvik::Desktops
