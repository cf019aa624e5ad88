#pragma once

// Wayland's own.

#include "Desktops/GraphicsCard.h"

namespace Orvik::Desktops::Wayland
{

struct Session;

/// Asks the compositor which device its buffers are made on, and the machine whether programs may draw with it.
[[nodiscard]] GraphicsCard FindGraphicsCard(Session* session);

} // namespace Orvik::Desktops::Wayland
