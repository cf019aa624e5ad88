#pragma once

#include "Desktops/GraphicsCard.h"

namespace Orvik::Desktops::X11
{

/// Asks the X server how a driver can reach the screen, and the machine whether it has a card.
[[nodiscard]] GraphicsCard FindGraphicsCard();

} // namespace Orvik::Desktops::X11
