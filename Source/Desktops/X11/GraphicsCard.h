#pragma once

#include "Desktops/GraphicsCard.h"

namespace Orvik::Desktops::X11
{

/// Asks the X server for the ways in which a driver reaches the screen, and the machine for a card.
[[nodiscard]] GraphicsCard FindGraphicsCard();

} // namespace Orvik::Desktops::X11
