#pragma once

#include "Desktops/GraphicsCard.h"

namespace Orvik::Desktops::Windows
{

/// Asks the session, the displays and the driver.
[[nodiscard]] GraphicsCard FindGraphicsCard();

} // namespace Orvik::Desktops::Windows
