#pragma once

#include "Core/System/Desktop/KeyCode.h"

#include <cstdint>

namespace Orvik::Desktops::Windows
{

using System::Desktop::KeyCode;

/// The key of a virtual key number, or `Undefined`.
[[nodiscard]] KeyCode GetKeyCode(std::uint32_t virtualKey) noexcept;

} // namespace Orvik::Desktops::Windows
