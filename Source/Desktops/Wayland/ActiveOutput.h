#pragma once

// Wayland's own.

#include "Desktops/Wayland/Output.h"

namespace Orvik::Desktops::Wayland
{

struct Session;

/// The display that the user works on: the one where the compositor puts a surface that asks for none. It is asked by
/// showing a pixel that can't be seen. Null if it doesn't say.
[[nodiscard]] const Output* FindActiveOutput(Session& session);

} // namespace Orvik::Desktops::Wayland
